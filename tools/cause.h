/// Why the library refused a CDS file.
#ifndef TOOLS_CAUSE_H
#define TOOLS_CAUSE_H

#include <string>

#include "input_file.h"
#include "log_tap.h"

/// The cause in one line, with the place in the file where there is one and what to do where there is something to do.
std::string cause_of_failure(const input_file& input, const log_tap& log);

#endif
