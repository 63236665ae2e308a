// SPDX-License-Identifier: Apache-2.0

#include "dispatch.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "record.h"
#include "record_columns.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {
namespace {

// Of several groups the first one here decides.
constexpr const record_kind* precedence[] = {&device_record, &bridge_record, &memory_record, &processor_record};

}  // namespace

const record_kind* kind_of(const component& visited) {
    const auto found = std::find_if(std::begin(precedence), std::end(precedence), [&visited](const record_kind* kind) {
        return visited.has_setting_group(kind->group);
    });
    return found == std::end(precedence) ? nullptr : *found;
}

const setting_group* main_server_info(const component& visited) {
    const setting_group* info = visited.get_setting_group("component_struct_info");
    return info != nullptr && is_text(*info, "comp_type", "EFI_CT_MAIN_SERVER") ? info : nullptr;
}

std::int32_t node_index_in(const setting_group& info) {
    return int32_of(info, "slot_index", 0);
}

}  // namespace cds_parser
