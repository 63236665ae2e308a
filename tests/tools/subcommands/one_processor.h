// SPDX-License-Identifier: Apache-2.0

/// A CDS file that is loaded whole, for tests.
#ifndef TESTS_TOOLS_SUBCOMMANDS_ONE_PROCESSOR_H
#define TESTS_TOOLS_SUBCOMMANDS_ONE_PROCESSOR_H

#include <string>

#include "support/cds_text.h"

inline const std::string one_processor = cds_file(cds_component("cpu_info", {text("Socket Designation", "CPU 1")}));

#endif
