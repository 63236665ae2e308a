// SPDX-License-Identifier: Apache-2.0

// zebdb-cds save-digest: saves the digests of the two files that a check compares.

#include <memory>
#include <string>

#include <zebdb_cds_parser.h>

#include "change_detection/private_view.h"
#include "change_detection/shell_path.h"
#include "console/failure.h"
#include "console/output.h"
#include "sources/library_log.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

struct save_options {
    std::string first;
    std::string second;
    std::string root;
};

int save_digest(const save_options& options) {
    enter_private_view(options.root,
                       {options.first, options.first + ".digest", options.second, options.second + ".digest"});
    for (const std::string& path : {options.first, options.second}) {
        require_shell_path(path, longest_path_to_save);
    }
    const library_log log;
    if (save_pci_digest(options.first.c_str(), options.second.c_str()) != 0) {
        throw failure("cannot save the digests: " + log.problem() + "; make their folders writable");
    }
    print("Saved " + in_quotes(options.first + ".digest") + " and " + in_quotes(options.second + ".digest") + '\n');
    return status_done;
}

}  // namespace

action define_save_digest(command_line& arguments) {
    const auto options = std::make_shared<save_options>();
    arguments.argument("FIRST", options->first, "The first file, the CDS file as a rule");
    arguments.argument("SECOND", options->second, "The second file");
    add_root_option(arguments, options->root);
    return [options] { return save_digest(*options); };
}
