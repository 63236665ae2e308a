// SPDX-License-Identifier: Apache-2.0

/// The subcommands.
#ifndef TOOLS_SUBCOMMANDS_SUBCOMMAND_H
#define TOOLS_SUBCOMMANDS_SUBCOMMAND_H

#include <functional>
#include <vector>

#include "subcommands/command_line.h"
#include "subcommands/exit_status.h"  // IWYU pragma: export

/// Does the work once the command line is read; gives the exit status.
using action = std::function<int()>;

struct subcommand {
    const char* name;
    const char* purpose;
    /// Declares the subcommand's arguments.
    action (*define)(command_line& arguments);
    /// What one may type.
    const char* examples[2];
};

action define_bmc_address(command_line& arguments);
action define_check(command_line& arguments);
action define_completion(command_line& arguments);
action define_diff(command_line& arguments);
action define_dump(command_line& arguments);
action define_explain(command_line& arguments);
action define_export(command_line& arguments);
action define_fields(command_line& arguments);
action define_load(command_line& arguments);
action define_refresh(command_line& arguments);
action define_report(command_line& arguments);
action define_save_digest(command_line& arguments);
action define_show(command_line& arguments);
action define_tree(command_line& arguments);

/// All of them, in the order of the help.
const std::vector<subcommand>& subcommands();

#endif
