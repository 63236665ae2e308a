// SPDX-License-Identifier: Apache-2.0

#ifndef ZEBDB_CDS_PARSER_EXPORT_H
#define ZEBDB_CDS_PARSER_EXPORT_H

/// Marks what the shared library shows to its callers; everything else in it is hidden.
#define ZEBDB_CDS_PARSER_EXPORT __attribute__((visibility("default")))

#endif
