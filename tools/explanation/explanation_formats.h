// SPDX-License-Identifier: Apache-2.0

/// The forms in which explanations are printed.
#ifndef TOOLS_EXPLANATION_EXPLANATION_FORMATS_H
#define TOOLS_EXPLANATION_EXPLANATION_FORMATS_H

#include <string>
#include <vector>

#include "console/text_table.h"
#include "explanation/explanation.h"

/// For people: some lines for each component and one that sums up.
std::string explanation_text(const std::vector<explanation>& explanations, const text_style& style);

/// For programs: {"schema": 1, "summary": {...}, "components": [...]}.
std::string explanation_json(const std::vector<explanation>& explanations);

#endif
