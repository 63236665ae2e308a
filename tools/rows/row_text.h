// SPDX-License-Identifier: Apache-2.0

/// How the columns of an inventory row are written for people. "-" stands for what there is not.
#ifndef TOOLS_ROWS_ROW_TEXT_H
#define TOOLS_ROWS_ROW_TEXT_H

#include <string>

#include "rows/table.h"

/// Writes what several columns of a row say together.
using row_text = std::string (*)(const inventory_row& row);

namespace row_texts {

std::string cores(const inventory_row& row);
std::string bridge_address(const inventory_row& row);
std::string bridge_id(const inventory_row& row);
std::string bus_range(const inventory_row& row);
std::string device_address(const inventory_row& row);
std::string device_id(const inventory_row& row);
std::string subsystem_id(const inventory_row& row);
std::string lanes(const inventory_row& row);
std::string link_speed(const inventory_row& row);

}  // namespace row_texts

/// One column of a row in its unit, or such a text. Tables of what is shown are made of these.
class shown_text {
public:
    constexpr shown_text(const char* column) : column_(column) {}  // NOLINT(google-explicit-constructor): see above
    constexpr shown_text(row_text text) : text_(text) {}           // NOLINT(google-explicit-constructor)

    std::string operator()(const inventory_row& row) const;

    /// Whether it is a column without a unit in rows of that kind.
    bool is_plain(const inventory_kind& kind) const;

private:
    const char* column_ = nullptr;
    row_text text_ = nullptr;
};

/// `text` without the blanks around it; empty when there are only dashes and blanks in it.
std::string stripped(const std::string& text);

#endif
