// SPDX-License-Identifier: Apache-2.0

/// Counts what is allocated, for leaks that the address sanitizer is told to let pass.
#ifndef TESTS_CDS_PARSER_LIVE_ALLOCATIONS_H
#define TESTS_CDS_PARSER_LIVE_ALLOCATIONS_H

/// How many objects the process, its libraries included, has made with `new` and not deleted yet.
long live_allocations();

#endif
