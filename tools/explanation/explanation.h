// SPDX-License-Identifier: Apache-2.0

/// Why the components of a CDS file are in the inventory or are not.
#ifndef TOOLS_EXPLANATION_EXPLANATION_H
#define TOOLS_EXPLANATION_EXPLANATION_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "explanation/component_loader.h"
#include "explanation/counterfactual.h"
#include "explanation/known_settings.h"
#include "explanation/left_out.h"
#include "explanation/odd_values.h"
#include "explanation/unused_settings.h"
#include "explanation/verdict.h"
#include "rows/table.h"
#include "sources/library_log.h"

struct explanation {
    std::string path;                 ///< in the file, as XPath has it
    std::string title;                ///< what the component is and which, for people
    std::string name;                 ///< the last part of that: an address, a locator; empty for none
    std::vector<std::string> groups;  ///< those that the loader records, by name
    const known_group* recorded_by;   ///< the one of them that the loader would make a row of; null without one
    verdict judged;                   ///< what became of it
    std::optional<omission> rule;     ///< by which it was left out, where it was by one
    std::int64_t bridge;              ///< row id of the nearest bridge above it, component_loader::no_parent for none
    std::optional<inventory_table> row;  ///< that one row, with every column of its table
    std::vector<log_line> log;           ///< what the loader logged about it
    std::vector<unused_setting> unused;  ///< settings of `groups` that no column takes
    std::vector<odd_value> odd;          ///< values of the one group that are not what its columns take
};

/// For every component that has, or seems to be meant to have, a group that the loader records; with `all` for every
/// other one too. In document order. `document` is the same afterwards. Throws failure.
std::vector<explanation> explanations_of(cds_parser::document& document, bool all);

/// A component to record that left no row, in the words of its explanation.
struct left_out_component {
    std::string path;
    std::string title;
    const char* code;
    std::vector<std::string> reasons;
};

/// All of them, in document order, as explanations_of() tells them. Costs little beside a load where they are few,
/// since nothing is found out about the others, and less where `loader` and `doubts` are those of earlier documents.
std::vector<left_out_component> left_out_components(cds_parser::document& document, component_loader& loader,
                                                    counterfactual& doubts);

/// Whether it is a component to record that left no row.
bool is_left_out(const explanation& told);

/// A word for why there is no row, for programs: that of the rule, or else what became of the component.
const char* code_of(const explanation& told);

/// Puts a placeholder in place of serial numbers and asset tags.
void redact(explanation& told);

/// Whether that is one of its names: its path, its PCI address, with or without the segment, or its locator.
bool is_named(const explanation& told, const std::string& name);

/// How many there are.
struct explanation_counts {
    std::size_t components = 0;       ///< that have a group which the loader records
    std::size_t rows = 0;             ///< that they left
    std::size_t unused_settings = 0;  ///< in their groups
    std::size_t odd_values = 0;       ///< in the groups that make the rows, but for those that are replaced
};

explanation_counts count(const std::vector<explanation>& explanations);

#endif
