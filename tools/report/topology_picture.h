// SPDX-License-Identifier: Apache-2.0

/// The PCI topology as a picture.
#ifndef TOOLS_REPORT_TOPOLOGY_PICTURE_H
#define TOOLS_REPORT_TOPOLOGY_PICTURE_H

#include <string>
#include <vector>

#include "report/reported_inventory.h"
#include "report/reported_tree.h"
#include "topology/pci_topology.h"

/// A group of the tree as SVG: each part a link to its element.
std::string topology_picture(const reported_inventory& reported, const std::vector<pci_part>& parts,
                             const tree_group& group);

#endif
