// SPDX-License-Identifier: Apache-2.0

#include "report/reported_inventory.h"

#include <algorithm>
#include <string>

#include "rows/kinds.h"
#include "rows/table.h"
#include "sources/input_file.h"
#include "sources/source_record.h"

std::string source_title(const source_record& file) {
    return is_standard_input(file.name) ? input_title(file.name) : file.name;
}

const inventory_table& reported_inventory::labelled_table(const inventory_kind& kind) const {
    return *std::find_if(labelled.begin(), labelled.end(),
                         [&kind](const inventory_table& table) { return table.kind == &kind; });
}
