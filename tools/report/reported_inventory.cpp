// SPDX-License-Identifier: Apache-2.0

#include "report/reported_inventory.h"

#include <algorithm>

#include "rows/kinds.h"
#include "rows/table.h"

const inventory_table& reported_inventory::labelled_table(const inventory_kind& kind) const {
    return *std::find_if(labelled.begin(), labelled.end(),
                         [&kind](const inventory_table& table) { return table.kind == &kind; });
}
