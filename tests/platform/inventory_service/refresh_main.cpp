// SPDX-License-Identifier: Apache-2.0

// usage: refresh CDS-FILE
//
// One refresh in a process of its own, for tests that kill it or make it fail. 0 when it was committed, else 1.

#include <zebdb_cds_parser.h>

int main(int argc, char** argv) {
    return argc == 2 && parse_pci(argv[1], 0) == 0 ? 0 : 1;
}
