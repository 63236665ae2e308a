// SPDX-License-Identifier: Apache-2.0

/// Names that somebody may have meant.
#ifndef TOOLS_EXPLANATION_SIMILAR_NAME_H
#define TOOLS_EXPLANATION_SIMILAR_NAME_H

#include <cstddef>
#include <string>
#include <vector>

/// The one of `known` that takes the fewest changed, added, left out or swapped characters to get to from `name`,
/// whatever the case and however the words are separated; the first one of equals. Null when all take more than one
/// for each `characters_a_change` characters.
const char* most_similar(const std::string& name, const std::vector<const char*>& known,
                         std::size_t characters_a_change);

#endif
