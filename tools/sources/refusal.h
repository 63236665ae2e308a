// SPDX-License-Identifier: Apache-2.0

/// Why the library refused a CDS file.
#ifndef TOOLS_SOURCES_REFUSAL_H
#define TOOLS_SOURCES_REFUSAL_H

#include <string>

#include "sources/input_file.h"
#include "sources/library_log.h"

/// The cause in one line, with the place in the file where there is one and what to do where there is something to do.
std::string cause_of_refusal(const input_file& input, const library_log& log);

#endif
