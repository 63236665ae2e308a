/// The PCI bridges and functions of an inventory as the tree that they form.
#ifndef TOOLS_TOPOLOGY_PCI_TOPOLOGY_H
#define TOOLS_TOPOLOGY_PCI_TOPOLOGY_H

#include <cstddef>
#include <optional>
#include <vector>

#include "sources/inventory.h"

/// Why a part that names a bridge stands at the root all the same.
enum class pci_problem {
    none,
    missing_bridge,  ///< the inventory does not have that bridge
    circle,          ///< that bridge is, directly or not, behind the part itself
};

/// One bridge or function.
struct pci_part {
    const inventory_table* table;
    std::size_t row;
    bool is_bridge;
    std::size_t depth;                  ///< how many bridges it is behind
    std::optional<std::size_t> parent;  ///< the nearest of them, by its place in the list
    pci_problem problem;
};

/// Every row of both tables, once: a bridge before what is behind it, the parts behind one bridge by address. Roots are
/// in the order of their node, problem and address. The parts refer to the tables.
std::vector<pci_part> pci_topology(const inventory_table& bridges, const inventory_table& functions);

#endif
