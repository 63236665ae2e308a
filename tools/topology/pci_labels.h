// SPDX-License-Identifier: Apache-2.0

/// What the numbers of bridges and functions stand for.
#ifndef TOOLS_TOPOLOGY_PCI_LABELS_H
#define TOOLS_TOPOLOGY_PCI_LABELS_H

#include "rows/table.h"
#include "topology/pci_names.h"

/// Adds the columns of rows/pci_label_columns.h to a table of bridges or functions; any other is left alone.
void add_pci_labels(inventory_table& table, pci_names& names);

#endif
