// SPDX-License-Identifier: Apache-2.0

#include "rows/recorded_columns.h"

#include <map>
#include <vector>

#include "cds_parser/record_columns.h"
#include "rows/kinds.h"

namespace {

using cds_parser::column;

column as_column(const column& each) {
    return each;
}

template <class Record>
column as_column(const cds_parser::number_column<Record>& each) {
    return {each.setting, each.name, cds_parser::column_type::uint};
}

template <class... Tables>
std::vector<column> columns_in(const Tables&... tables) {
    std::vector<column> columns;
    const auto add = [&columns](const auto& table) {
        for (const auto& each : table) {
            columns.push_back(as_column(each));
        }
    };
    (add(tables), ...);
    return columns;
}

}  // namespace

const std::vector<column>& recorded_columns(const inventory_kind& kind) {
    using namespace cds_parser;
    static const std::map<const inventory_kind*, std::vector<column>> columns = {
        {&kinds::processors, columns_in(processor_columns)},
        {&kinds::memory, columns_in(memory_columns, persistent_memory_columns)},
        {&kinds::bridges, columns_in(bridge_address_columns, bridge_columns)},
        {&kinds::devices, columns_in(device_place_columns, device_kind_columns, device_columns)},
    };
    return columns.at(&kind);
}
