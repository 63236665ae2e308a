// SPDX-License-Identifier: Apache-2.0

#include "zebdb_cds_parser/version.h"

const char* zebdb_cds_parser_version(void) {
    return ZEBDB_CDS_PARSER_VERSION_STRING;
}
