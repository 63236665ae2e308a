// SPDX-License-Identifier: Apache-2.0

#include "cds_parser/load.h"
#include "refresh.h"
#include "zebdb_cds_parser/entry_points.h"

int parse_pci(const char* cds_path, unsigned aim_argument) {
    return refresh_inventory(cds_path, aim_argument, cds_parser::accept_every_document);
}
