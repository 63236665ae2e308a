// SPDX-License-Identifier: Apache-2.0

// zebdb-cds check: says whether the inventory may have changed since the last refresh, and why.

#include <memory>
#include <string>

#include <zeb_db.h>
#include <zebdb_cds_parser.h>

#include "change_detection/change_reasons.h"
#include "change_detection/private_view.h"
#include "change_detection/service.h"
#include "change_detection/shell_path.h"
#include "console/failure.h"
#include "console/output.h"
#include "sources/database_file.h"
#include "sources/library_log.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

struct check_options {
    std::string first;
    std::string second;
    std::string database;
    std::string root;
};

std::string changed_text(const check_options& options, _zeb_db_handle_t* handle) {
    std::string text = "changed\n";
    for (const std::string& reason : change_reasons(options.first, options.second, handle)) {
        text += "  " + reason + '\n';
    }
    return text;
}

int check(const check_options& options) {
    enter_private_view(options.root, {options.first, options.first + ".digest", options.second,
                                      options.second + ".digest", options.database});
    for (const std::string& path : {options.first, options.second}) {
        require_shell_path(path, longest_path_to_check);
    }
    require_inventory(options.database);
    _zeb_db_handle_t* handle = open_service(options.database);

    int changed = 0;
    {
        const library_log log;
        const int result = check_pci(options.first.c_str(), options.second.c_str(), &changed);
        if (result != 0 || log.database_failure()) {  // else keys that were not read count as vanished
            throw failure("cannot tell whether the inventory changed: " +
                          reason_for_no_answer(options.first, options.second, log));
        }
    }
    print(changed == 0 ? "unchanged\n" : changed_text(options, handle));
    return changed == 0 ? status_done : status_no;
}

}  // namespace

action define_check(command_line& arguments) {
    const auto options = std::make_shared<check_options>();
    arguments.argument("FIRST", options->first, "The first file, the CDS file as a rule");
    arguments.argument("SECOND", options->second, "The second file");
    add_database_option(arguments, options->database);
    add_root_option(arguments, options->root);
    return [options] { return check(*options); };
}
