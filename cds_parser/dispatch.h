// SPDX-License-Identifier: Apache-2.0

/// What the loader makes of a component.
#ifndef CDS_PARSER_DISPATCH_H
#define CDS_PARSER_DISPATCH_H

#include <cstdint>

#include "record_columns.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {

/// The kind of record that it becomes, by the groups that it carries; null for none of them.
const record_kind* kind_of(const component& visited);

/// Whether the loader looks at what is below a record of that kind, null for none.
constexpr bool is_walked(const record_kind* kind) {
    return kind == nullptr || kind == &bridge_record;
}

/// The group that tells the node index of everything from here on; null unless it is a main server.
const setting_group* main_server_info(const component& visited);

/// The node index in such a group.
std::int32_t node_index_in(const setting_group& info);

}  // namespace cds_parser

#endif
