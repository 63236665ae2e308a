// SPDX-License-Identifier: Apache-2.0

/// The library's loader, one component at a time.
#ifndef TOOLS_EXPLANATION_COMPONENT_LOADER_H
#define TOOLS_EXPLANATION_COMPONENT_LOADER_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "rows/kinds.h"
#include "rows/table.h"
#include "sources/inventory.h"
#include "sources/library_log.h"
#include "sources/memory_database.h"

/// What the loader did with one component.
struct loaded_component {
    bool succeeded;                      ///< as it told
    std::optional<inventory_table> row;  ///< the one row that the component left, if it did
    std::vector<log_line> log;
    std::optional<std::int64_t> parent_below;  ///< the parent of what is below; nothing when the loader ignores that
};

/// Loads into a database in memory. Called for every component in the order of a walk, for those below another only
/// where that gave a parent for them, it leaves the rows of a load of the whole tree.
class component_loader {
public:
    /// The parent of a component that is below no bridge.
    static constexpr std::int64_t no_parent = -1;

    /// Throws failure when there is not enough memory.
    component_loader();

    /// Loads `loaded`, which is below the bridge with the row id `parent`, without what is below it. What the loader
    /// logs goes into the result only. Throws failure.
    loaded_component load(cds_parser::component& loaded, std::int64_t parent);

    /// Makes the next component the first one of another tree. Throws failure.
    void begin_again();

private:
    std::optional<std::int64_t> take_probe();
    std::optional<inventory_table> take_new_row();

    memory_database database_;
    inventory rows_;
    cds_parser::parser parser_;
    std::map<const inventory_kind*, std::int64_t> last_ids_;
};

#endif
