// SPDX-License-Identifier: Apache-2.0

#include "subcommands/options.h"

#include <string>

#include "subcommands/command_line.h"

void add_cds_file_argument(command_line& arguments, std::string& file) {
    arguments.argument("FILE", file, "The CDS file; - is standard input");
}

void add_database_option(command_line& arguments, std::string& path) {
    path = "inventory.db";
    arguments.path_option("--database", "PATH", path, "The inventory database", "ZEBDB_DATABASE");
}

void add_root_option(command_line& arguments, std::string& folder) {
    arguments.path_option("--root", "DIR", folder,
                          "Keep /var/DS, /var/vonk, /var/log, /tmp and /bin/pci_digest.sh below this folder instead of "
                          "using the machine's own");
}

void add_redact_flag(command_line& arguments, bool& value) {
    arguments.flag("--redact", value, "Hide serial numbers and asset tags");
}
