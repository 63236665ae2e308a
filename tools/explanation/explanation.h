/// Why the components of a CDS file are in the inventory or are not.
#ifndef TOOLS_EXPLANATION_EXPLANATION_H
#define TOOLS_EXPLANATION_EXPLANATION_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "explanation/component_loader.h"
#include "explanation/known_settings.h"
#include "rows/table.h"
#include "sources/library_log.h"

/// What became of a component.
enum class fate {
    recorded,        ///< it has a row
    refused,         ///< the loader logged why it left no row
    failed,          ///< its row could not be written, and the loader logged why
    incomplete,      ///< settings without which there is no row are missing or unusable
    nothing_known,   ///< the loader knows none of its settings
    not_reached,     ///< the loader does not look where it stands
    no_known_group,  ///< it has no group that the loader records
};

struct unused_setting {
    std::string group;
    std::string name;
    bool is_known;        ///< the loader knows it, but takes it from other components only
    const char* similar;  ///< the known name that may be meant; null if there is none
};

struct explanation {
    std::string path;                 ///< in the file, as XPath has it
    std::string title;                ///< what the component is and which, for people
    std::vector<std::string> groups;  ///< those that the loader records, by name
    const known_group* recorded_by;   ///< the one of them that the loader would make a row of; null when there is none
    fate became;
    std::optional<inventory_table> row;  ///< that one row, with every column of its table
    std::vector<std::string> reasons;    ///< why there is no row, a phrase each; none when there is one
    std::vector<std::string> missing;    ///< the settings for want of which there is none
    std::vector<log_line> log;           ///< what the loader logged about it
    std::vector<unused_setting> unused;  ///< settings of `groups` that no column takes
};

/// For every component that has, or seems to be meant to have, a group that the loader records; with `all` for every
/// other one too. In document order. `document` is the same afterwards. Throws failure.
std::vector<explanation> explanations_of(cds_parser::document& document, bool all);

/// Puts a placeholder in place of serial numbers and asset tags.
void redact(explanation& told);

/// How many there are.
struct explanation_counts {
    std::size_t components = 0;       ///< that have a group which the loader records
    std::size_t rows = 0;             ///< that they left
    std::size_t unused_settings = 0;  ///< in their groups
};

explanation_counts count(const std::vector<explanation>& explanations);

#endif
