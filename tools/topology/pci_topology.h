// SPDX-License-Identifier: Apache-2.0

/// The PCI bridges and functions of an inventory as the tree that they form.
#ifndef TOOLS_TOPOLOGY_PCI_TOPOLOGY_H
#define TOOLS_TOPOLOGY_PCI_TOPOLOGY_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "rows/table.h"
#include "topology/pci_names.h"

/// Why a part that names a bridge stands at the root all the same.
enum class pci_problem {
    none,
    missing_bridge,  ///< the inventory does not have that bridge
    circle,          ///< that bridge is, directly or not, behind the part itself
};

/// One bridge or function.
struct pci_part {
    inventory_row row;
    bool is_bridge;
    pci_problem problem;
    std::size_t depth = 0;                             ///< how many bridges it is behind
    std::optional<std::size_t> parent = std::nullopt;  ///< the nearest of them, by its place in the list
    std::optional<std::string> vendor_name = std::nullopt;
    std::optional<std::string> device_name = std::nullopt;
};

/// Every row of both tables, once: a bridge before what is behind it, the parts behind one bridge by address. Roots are
/// in the order of their node, problem and address. The parts refer to the tables; what their ids stand for is looked
/// up in `names`.
std::vector<pci_part> pci_topology(const inventory_table& bridges, const inventory_table& functions, pci_names& names);

/// Of those parts the ones at that address, as in "0000:3b:00.0", with the bridges that they are behind and with what
/// is behind them.
std::vector<pci_part> part_of_topology(const std::vector<pci_part>& parts, const std::string& address);

#endif
