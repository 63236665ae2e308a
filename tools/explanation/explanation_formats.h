// SPDX-License-Identifier: Apache-2.0

/// The forms in which explanations are printed.
#ifndef TOOLS_EXPLANATION_EXPLANATION_FORMATS_H
#define TOOLS_EXPLANATION_EXPLANATION_FORMATS_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "console/text_table.h"
#include "explanation/explanation.h"

enum class row_columns { hidden, named };

/// For people: what left no row, what looks wrong and what has no effect, by reason, and a line that sums up.
std::string problems_text(const std::vector<explanation>& explanations, const text_style& style);

/// For people: some lines for each component.
std::string components_text(const std::vector<explanation>& explanations, row_columns columns, const text_style& style);

/// The line that sums up.
std::string totals_text(const std::vector<explanation>& explanations);

/// For programs: {"schema": 2, "summary": {...}, "components": [...]}.
std::string explanation_json(const std::vector<explanation>& explanations);

/// The same before it is printed.
nlohmann::ordered_json explanation_document(const std::vector<explanation>& explanations);

#endif
