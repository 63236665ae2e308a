// SPDX-License-Identifier: Apache-2.0

/// The PCI topology with what was left out in its place.
#ifndef TOOLS_REPORT_REPORTED_TREE_H
#define TOOLS_REPORT_REPORTED_TREE_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "explanation/explanation.h"
#include "report/reported_inventory.h"
#include "topology/pci_topology.h"

/// A bridge or function, recorded or left out.
struct tree_node {
    std::optional<std::size_t> part;  ///< by its place among the parts; nothing when it was left out
    std::size_t explanation;          ///< by its place among the explanations when it was left out
    std::string address;
    std::size_t depth;  ///< below the root
    std::vector<std::size_t> below;
};

/// The parts of one server and one segment.
struct tree_group {
    std::string server;
    std::string segment;
    std::vector<tree_node> nodes;  ///< each before what is below it
    std::vector<std::size_t> roots;
};

/// Whether what was left out has a place in the tree.
bool is_in_tree(const explanation& told);

/// The parts are those of `reported`.
std::vector<tree_group> reported_tree(const reported_inventory& reported, const std::vector<pci_part>& parts);

#endif
