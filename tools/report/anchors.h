// SPDX-License-Identifier: Apache-2.0

/// The ids of a page's elements.
#ifndef TOOLS_REPORT_ANCHORS_H
#define TOOLS_REPORT_ANCHORS_H

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "explanation/explanation.h"
#include "rows/table.h"

/// Where a part is found on the page, and what it is called there.
struct anchor {
    std::string id;     ///< its place with "_" for each blank; from the second part of a place on with "~2" and so on
    std::string place;  ///< an address or a locator
};

/// The anchors of the rows, in their order, and then of what was left out: each is another one, whatever names the
/// parts have.
class anchors {
public:
    /// `taken` are the ids that the page itself uses.
    anchors(const std::vector<inventory_table>& tables, const std::vector<explanation>& explanations,
            const std::vector<std::string>& taken);

    const anchor& of(const inventory_row& row) const { return rows_.at(&row.kind())[row.place()]; }
    /// By the place among the explanations.
    const anchor& of_explanation(std::size_t place) const { return explanations_[place]; }

private:
    anchor give(const std::string& place);

    std::unordered_set<std::string> taken_;
    std::unordered_map<std::string, std::size_t> counts_;
    std::map<const inventory_kind*, std::vector<anchor>> rows_;
    std::vector<anchor> explanations_;
};

/// The address of an id within its page: what may stand behind "#".
std::string fragment_of(const std::string& id);

#endif
