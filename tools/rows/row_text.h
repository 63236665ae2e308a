// SPDX-License-Identifier: Apache-2.0

/// What several columns of an inventory row say together, for people. "-" stands for what there is not.
#ifndef TOOLS_ROWS_ROW_TEXT_H
#define TOOLS_ROWS_ROW_TEXT_H

#include <string>

#include "rows/table.h"

using row_text = std::string (*)(const inventory_row& row);

namespace row_texts {

std::string cores(const inventory_row& row);
/// Empty where what stands there is no serial number.
std::string serial_number(const inventory_row& row);
std::string bridge_address(const inventory_row& row);
std::string bridge_id(const inventory_row& row);
std::string bus_range(const inventory_row& row);
std::string device_address(const inventory_row& row);
std::string device_id(const inventory_row& row);
std::string subsystem_id(const inventory_row& row);
std::string lanes(const inventory_row& row);
std::string link_speed(const inventory_row& row);

}  // namespace row_texts

/// `text` without the blanks around it; empty when there are only dashes and blanks in it.
std::string stripped(const std::string& text);

#endif
