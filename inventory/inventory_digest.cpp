// SPDX-License-Identifier: Apache-2.0

// The digest files that the digest script writes: the first line is the digest.

#include <fstream>
#include <string>

#include "zebdb_cds_parser/entry_points.h"

namespace {

void read_first_line(const char* path, std::string& line) {
    std::ifstream file(path);
    if (file.is_open()) {
        std::getline(file, line);
    }
}

}  // namespace

void read_inventory_digest(std::string& system_digest, std::string& pci_digest) {
    read_first_line("/var/vonk/sys_inventory.digest", system_digest);
    read_first_line("/var/vonk/pci_inventory.digest", pci_digest);
}
