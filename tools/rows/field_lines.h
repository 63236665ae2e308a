// SPDX-License-Identifier: Apache-2.0

/// What is written down of a field: what the loader's own tables do not tell of it.
#ifndef TOOLS_ROWS_FIELD_LINES_H
#define TOOLS_ROWS_FIELD_LINES_H

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "cds_parser/record_columns.h"
#include "rows/column_units.h"
#include "rows/enumerations.h"
#include "rows/field.h"

struct field_line {
    using absent_value = std::optional<std::int64_t>;

    const char* column;
    const char* meaning;
    const char* unit = "";
    column_unit text = column_units::plain;
    const enumeration* values = nullptr;
    const char* origin = nullptr;  ///< null for a setting
    const char* absent = nullptr;  ///< null for when that is absent
    absent_value stands_for_absent = std::nullopt;
};

/// Lines that several kinds have.
namespace field_lines {

constexpr field_line::absent_value no_index = std::numeric_limits<std::uint32_t>::max();  // -1 in 32 bits
constexpr field_line::absent_value no_row = -1;

inline constexpr field_line row_id = {"Id", "row id", "", column_units::plain, nullptr, "the database", ""};

inline constexpr field_line node_index = {
    "NodeIndex",
    "index of the server in its enclosure",
    "",
    column_units::plain,
    nullptr,
    "'slot_index' of the last component before it whose 'comp_type' is EFI_CT_MAIN_SERVER",
    "no main server stands before it",
    no_index};

constexpr field_line bridge_above(const char* column) {
    return {column,
            "row id of the bridge that it is behind; in diff the address of that bridge",
            "",
            column_units::plain,
            nullptr,
            "the nearest bridge above it that has a row",
            "it is behind no such bridge",
            no_row};
}

/// A part of an address, which no row is without.
constexpr field_line address_part(const char* column, const char* meaning, column_unit text) {
    return {column, meaning, "", text, nullptr, nullptr, ""};
}

}  // namespace field_lines

/// The fields that the lines are about; `group` is where their settings stand, and `recorded` tells which they are.
std::vector<field> fields_in(const char* group, const std::vector<cds_parser::column>& recorded,
                             const std::vector<field_line>& lines);

#endif
