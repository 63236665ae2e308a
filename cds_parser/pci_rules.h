// SPDX-License-Identifier: Apache-2.0

/// What decides whether a PCI bridge or function leaves a row.
#ifndef CDS_PARSER_PCI_RULES_H
#define CDS_PARSER_PCI_RULES_H

#include "record_columns.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {

/// The address in the settings of a bridge.
pci_address read_address(const setting_group& info);

/// The values in the settings of a function, with what the loader corrects: the class code of devices that report a
/// misleading one, and the slot of storage on the board, which is 0.
pci_function read_function(const setting_group& info);

/// There is no row without one.
bool has_address(const pci_address& bridge);
bool has_address(const pci_function& function);

/// There is no row of a function without one, either.
bool has_valid_location(const pci_function& function);

/// Whether only the first function of the card is recorded.
bool is_recorded_once(const pci_function& function);

}  // namespace cds_parser

#endif
