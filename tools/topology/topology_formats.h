// SPDX-License-Identifier: Apache-2.0

/// The forms in which a topology is printed.
#ifndef TOOLS_TOPOLOGY_TOPOLOGY_FORMATS_H
#define TOOLS_TOPOLOGY_TOPOLOGY_FORMATS_H

#include <ostream>
#include <vector>

#include "console/text_table.h"
#include "topology/pci_topology.h"

/// For people: a tree of nodes, segments, bridges and functions, fitted to the width of the style. It may change at any
/// time.
void write_topology_text(const std::vector<pci_part>& parts, const text_style& style, std::ostream& out);

/// For programs: one object, {"schema": 2, "parts": [...]}, with the parts in their order. It is nested no deeper
/// however deep the tree is, so that every reader can take it: "parent" is the place of the parent in the list, first
/// is 0.
void write_topology_json(const std::vector<pci_part>& parts, std::ostream& out);

#endif
