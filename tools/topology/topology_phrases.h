// SPDX-License-Identifier: Apache-2.0

/// What is said of the parts of a topology, for people.
#ifndef TOOLS_TOPOLOGY_TOPOLOGY_PHRASES_H
#define TOOLS_TOPOLOGY_TOPOLOGY_PHRASES_H

#include <string>

#include "rows/table.h"
#include "topology/pci_topology.h"

/// The server that it belongs to, as in "Node 1".
std::string node_text(const inventory_row& row);

/// What a root stands in, as in "Segment 0000".
std::string group_text(const pci_part& root);

/// As in "0000:3b:00.0".
std::string address_text(const pci_part& part);

/// What it is for, as in "storage (SATA)" or "bridge [01-02]".
std::string purpose_text(const pci_part& part);

/// Number and name of its slot, as in "slot 0, Embedded"; empty where it has neither.
std::string slot_text(const pci_part& part);

/// The names of vendor and device, or their numbers; empty where there are none.
std::string name_text(const pci_part& part);

/// Purpose, slot and name, as in "storage (SATA), slot 0, Embedded: Maker Controller".
std::string description_text(const pci_part& part);

#endif
