// SPDX-License-Identifier: Apache-2.0

/// What is said of single settings, for people.
#ifndef TOOLS_EXPLANATION_EXPLANATION_PHRASES_H
#define TOOLS_EXPLANATION_EXPLANATION_PHRASES_H

#include <string>

#include "explanation/explanation.h"
#include "explanation/odd_values.h"
#include "explanation/unused_settings.h"

/// As in "'Serial Number' in cpu_info".
std::string quoted_in(const std::string& setting, const std::string& group);

/// Which setting it is, and what may be meant by it.
std::string unused_text(const unused_setting& unused);

/// The rule by which no column takes a setting that the loader knows; null for one that it does not know.
const char* rule_against(const unused_setting& unused);

/// Which value it is, and what is odd about it.
std::string oddity_text(const odd_value& odd);

/// The value, and what the column holds.
std::string stored_text(const odd_value& odd, const explanation& told);

#endif
