// SPDX-License-Identifier: Apache-2.0

/// Why a subcommand could not do its work.
#ifndef TOOLS_CONSOLE_FAILURE_H
#define TOOLS_CONSOLE_FAILURE_H

#include <stdexcept>

/// Ends the program with status 2; the text follows "zebdb-cds: " on standard error. It names what it is about, the
/// cause and, where it is not plain, what to do.
class failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// There is not enough memory, so that what could not be done is nobody's fault.
class lack_of_memory : public failure {
public:
    using failure::failure;
};

#endif
