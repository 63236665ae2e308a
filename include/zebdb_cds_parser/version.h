// SPDX-License-Identifier: Apache-2.0

/// @file
/// The version of the library: at compile time that of these headers, at run time that of the library loaded. What may
/// change from one version to the next stands in docs/versions.md. For C and C++.
#ifndef ZEBDB_CDS_PARSER_VERSION_H
#define ZEBDB_CDS_PARSER_VERSION_H

#include "zebdb_cds_parser/export.h"

// The build takes its version from these three.
#define ZEBDB_CDS_PARSER_VERSION_MAJOR 1  ///< The interface: programs run with every library of the same number.
#define ZEBDB_CDS_PARSER_VERSION_MINOR 0  ///< What was added to the interface.
#define ZEBDB_CDS_PARSER_VERSION_PATCH 0  ///< What changed within.

/// A number that grows with the version, 2003004 for version 2.3.4.
#define ZEBDB_CDS_PARSER_VERSION \
    (ZEBDB_CDS_PARSER_VERSION_MAJOR * 1000000 + ZEBDB_CDS_PARSER_VERSION_MINOR * 1000 + ZEBDB_CDS_PARSER_VERSION_PATCH)

/// The version as text, "2.3.4".
#define ZEBDB_CDS_PARSER_VERSION_STRING                                                     \
    ZEBDB_CDS_PARSER_DOTTED(ZEBDB_CDS_PARSER_VERSION_MAJOR, ZEBDB_CDS_PARSER_VERSION_MINOR, \
                            ZEBDB_CDS_PARSER_VERSION_PATCH)
/// Three numbers with dots between them, as text; they may be macros.
#define ZEBDB_CDS_PARSER_DOTTED(major, minor, patch) ZEBDB_CDS_PARSER_DOTTED_WORDS(major, minor, patch)
/// Three words with dots between them, as text.
#define ZEBDB_CDS_PARSER_DOTTED_WORDS(major, minor, patch) #major "." #minor "." #patch

#ifdef __cplusplus
extern "C" {
#endif

/// The version of the library that is loaded, as ZEBDB_CDS_PARSER_VERSION_STRING was when that was built. The text is
/// the library's own, valid as long as it is loaded.
ZEBDB_CDS_PARSER_EXPORT const char* zebdb_cds_parser_version(void);

#ifdef __cplusplus
}
#endif

#endif
