// SPDX-License-Identifier: Apache-2.0

/// Completion for shells, from the subcommands and options that the command itself declares.
#ifndef TOOLS_SUBCOMMANDS_COMPLETION_SCRIPT_H
#define TOOLS_SUBCOMMANDS_COMPLETION_SCRIPT_H

#include <string>

std::string zsh_completion();
std::string fish_completion();

#endif
