// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the shared library shows to its callers.
#ifndef ZEBDB_CDS_PARSER_EXPORT_H
#define ZEBDB_CDS_PARSER_EXPORT_H

/// Marks what is shown; everything else in the library is hidden.
#define ZEBDB_CDS_PARSER_EXPORT __attribute__((visibility("default")))

#endif
