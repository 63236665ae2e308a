// SPDX-License-Identifier: Apache-2.0

/// What is said of hardware that a load leaves out.
#ifndef TOOLS_EXPLANATION_LEFT_OUT_PHRASES_H
#define TOOLS_EXPLANATION_LEFT_OUT_PHRASES_H

#include <cstddef>
#include <string>
#include <vector>

#include "explanation/left_out.h"

/// A word for the rule, for programs.
const char* name_of(omission rule);

/// What is said of so many components that the rule keeps out, as in "have no location".
std::string omission_text(omission rule, std::size_t count);

/// How many there are and why, as in "13 components left no row: 9 have no location, 4 no address"; empty for none.
std::string left_out_text(const std::vector<left_out_element>& left_out);

#endif
