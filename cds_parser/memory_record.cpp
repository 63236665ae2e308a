// SPDX-License-Identifier: Apache-2.0

// One row of "Memory" for each memory device; persistent-memory modules get their capacities and place as well.

#include <cstddef>
#include <string>

#include <vonk_log.h>
#include <zeb_db.h>

#include "record.h"
#include "record_columns.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/parser.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {
namespace {

constexpr long long non_volatile = 0x1000;  // bit 12 of the type detail

bool is_persistent(const setting_group& memory) {
    return (int_of(memory, "Type Detail", 0) & non_volatile) != 0 && is_text(memory, "Manufacturer", "Intel");
}

}  // namespace

int parser::parse_memory(_zeb_db_handle_t* handle, component* visited) {
    const setting_group* memory = visited->get_setting_group(memory_record.group);
    if (memory == nullptr) {
        return 0;
    }

    const bool persistent = is_persistent(*memory);
    zeb_db_content_clear(content);
    put_row_id(content, "ArrayId", parent_id);
    put_int32(content, "NodeIndex", node_index);
    std::size_t found = put_columns<memory_columns>(content, *memory);
    if (persistent) {
        found += put_columns<persistent_memory_columns>(content, *memory);
    }
    if (found == 0) {
        return 1;
    }

    const int rc = zeb_db_insert(handle, memory_record.table, content, 0, &last_row_id);
    if (rc != 0) {
        const std::string bank = text_of(*memory, "Bank Locator");
        vonk_log::logWarn("failed to insert Memory (%s), rc=%d", bank.c_str(), rc);
        return 0;
    }
    return 1;
}

int parser::parse_memory_array(_zeb_db_handle_t*, component*) {
    return 1;
}

}  // namespace cds_parser
