/// The forms in which explanations are printed.
#ifndef TOOLS_EXPLANATION_EXPLANATION_FORMATS_H
#define TOOLS_EXPLANATION_EXPLANATION_FORMATS_H

#include <string>
#include <vector>

#include "explanation/explanation.h"

/// For people: some lines for each component and one that sums up.
std::string explanation_text(const std::vector<explanation>& explanations);

/// For programs: {"schema": 1, "summary": {...}, "components": [...]}.
std::string explanation_json(const std::vector<explanation>& explanations);

#endif
