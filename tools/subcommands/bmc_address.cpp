// SPDX-License-Identifier: Apache-2.0

// zebdb-cds bmc-address: records the PCI address of the controller's own bridge and prints it.

#include <memory>
#include <string>

#include "change_detection/own_bridge.h"
#include "change_detection/private_view.h"
#include "change_detection/service.h"
#include "console/output.h"
#include "sources/database_file.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

struct bmc_options {
    std::string database;
    std::string root;
};

int bmc_address(const bmc_options& options) {
    enter_private_view(options.root, {options.database});
    require_inventory(options.database);
    const auto address = record_own_bridge(open_service(options.database));
    if (!address) {
        complain("'" + options.database + "' holds no bridge " + own_bridge_id() + ", which is the controller's own");
        return status_no;
    }
    print(*address + '\n');
    return status_done;
}

}  // namespace

action define_bmc_address(command_line& arguments) {
    const auto options = std::make_shared<bmc_options>();
    add_database_option(arguments, options->database);
    add_root_option(arguments, options->root);
    return [options] { return bmc_address(*options); };
}
