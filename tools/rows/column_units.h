// SPDX-License-Identifier: Apache-2.0

/// How the values of a column are written for people. "-" stands for what there is not.
#ifndef TOOLS_ROWS_COLUMN_UNITS_H
#define TOOLS_ROWS_COLUMN_UNITS_H

#include <string>

#include "rows/table.h"

/// Writes a value of a column that is kept in a certain unit.
using column_unit = std::string (*)(const inventory_value& value);

namespace column_units {

inline constexpr const char* none = "-";

/// What has no unit: texts, printable, and bare numbers.
std::string plain(const inventory_value& value);
std::string key(const inventory_value& value);
std::string class_code(const inventory_value& value);
std::string revision(const inventory_value& value);
std::string segment(const inventory_value& value);
std::string bus(const inventory_value& value);
/// Half of a PCI id: the vendor's or the device's.
std::string pci_id_part(const inventory_value& value);
std::string megahertz(const inventory_value& value);
std::string megatransfers(const inventory_value& value);
/// Sizes, from columns that count in the unit of the name.
std::string bytes(const inventory_value& value);
std::string kibibytes(const inventory_value& value);
std::string mebibytes(const inventory_value& value);
std::string processor_id(const inventory_value& value);
/// Numbers of an enumeration, with their names.
std::string memory_type(const inventory_value& value);
std::string form_factor(const inventory_value& value);
std::string link_speed(const inventory_value& value);

}  // namespace column_units

/// A number with at least that many hexadecimal digits behind `prefix`.
std::string hexadecimal_text(const inventory_value& value, int digits, const char* prefix = "");

#endif
