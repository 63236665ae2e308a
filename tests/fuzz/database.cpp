// SPDX-License-Identifier: Apache-2.0

// Any bytes as an inventory database: listed, drawn and compared.

#include <sstream>
#include <string>
#include <vector>

#include "console/failure.h"
#include "console/text_table.h"
#include "difference/difference.h"
#include "difference/difference_formats.h"
#include "fuzz/fuzz_target.h"
#include "listing/listing_formats.h"
#include "rows/kinds.h"
#include "sources/inventory.h"
#include "sources/memory_inventory.h"
#include "topology/pci_names.h"
#include "topology/pci_topology.h"
#include "topology/topology_formats.h"

namespace {

void list(const std::vector<inventory_table>& tables) {
    listing_text(tables, {}, {});
    listing_json(tables);
    for (const inventory_table& table : tables) {
        listing_csv({table});
    }
}

void draw(const inventory& drawn) {
    const inventory_table bridges = drawn.read(kinds::bridges);
    const inventory_table functions = drawn.read(kinds::devices);
    pci_names names;
    const std::vector<pci_part> parts = pci_topology(bridges, functions, names);
    require(parts.size() == bridges.rows.size() + functions.rows.size(), "every bridge and function is drawn once");
    std::ostringstream out;
    write_topology_text(parts, {}, out);
    write_topology_json(parts, out);
}

void compare_with_itself(const std::vector<inventory_table>& tables) {
    const comparison compared = compare(tables, tables);
    require(compared.is_same(), "an inventory does not differ from itself");
    difference_text(compared, {});
    difference_json(compared);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const inventory opened = open_in_memory(text_of(data, size), "the inventory");
        const std::vector<inventory_table> tables = opened.read_all();
        list(tables);
        draw(opened);
        compare_with_itself(tables);
    } catch (const failure&) {
        return 0;
    }
    return 0;
}
