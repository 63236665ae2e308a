// SPDX-License-Identifier: Apache-2.0

/// Reading the command line and doing what it says.
#ifndef TOOLS_SUBCOMMANDS_RUN_H
#define TOOLS_SUBCOMMANDS_RUN_H

/// Runs the subcommand that the command line of a program names; gives the exit status. Throws failure, and what else
/// keeps a subcommand from its work.
int run(int argc, char** argv);

#endif
