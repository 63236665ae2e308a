// SPDX-License-Identifier: Apache-2.0

// zebdb-cds completion: prints what completes the command in a shell.

#include <memory>
#include <string>

#include "console/output.h"
#include "subcommands/command_line.h"
#include "subcommands/completion_script.h"
#include "subcommands/subcommand.h"

action define_completion(command_line& arguments) {
    const auto shell = std::make_shared<std::string>();
    arguments.required_argument("SHELL", *shell, "zsh or fish; bash finds its own where the command is installed",
                                {"zsh", "fish"});
    return [shell] {
        print(*shell == "zsh" ? zsh_completion() : fish_completion());
        return status_done;
    };
}
