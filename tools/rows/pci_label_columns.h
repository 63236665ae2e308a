// SPDX-License-Identifier: Apache-2.0

/// Columns that a table of bridges or functions may have besides those of the database: for people, what its numbers
/// stand for.
#ifndef TOOLS_ROWS_PCI_LABEL_COLUMNS_H
#define TOOLS_ROWS_PCI_LABEL_COLUMNS_H

namespace pci_label_columns {

inline constexpr const char* name = "(name)";  ///< of vendor and device
inline constexpr const char* kind = "(kind)";  ///< by the class code

}  // namespace pci_label_columns

#endif
