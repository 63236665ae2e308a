// SPDX-License-Identifier: Apache-2.0

/// What the exit status of the command says.
#ifndef TOOLS_SUBCOMMANDS_EXIT_STATUS_H
#define TOOLS_SUBCOMMANDS_EXIT_STATUS_H

/// The work is done.
constexpr int status_done = 0;
/// The answer is no: changed, different, nothing found.
constexpr int status_no = 1;
/// There is no answer, see failure.
constexpr int status_failed = 2;

#endif
