// SPDX-License-Identifier: Apache-2.0

// One row of "PCIBridge" for each PCI bridge with a usable address.

#include <vonk_log.h>
#include <zeb_db.h>

#include "pci_rules.h"
#include "record.h"
#include "record_columns.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/parser.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {
int parser::parse_pci_bridge(_zeb_db_handle_t* handle, component* visited) {
    const setting_group* bridge = visited->get_setting_group(bridge_record.group);
    if (bridge == nullptr) {
        return 0;
    }

    const pci_address address = read_address(*bridge);
    if (!has_address(address)) {
        last_row_id = -1;
        return 1;
    }

    zeb_db_content_clear(content);
    put_row_id(content, "ParentId", parent_id);
    put_int32(content, "NodeIndex", node_index);
    put_columns(content, address, bridge_address_columns);
    put_columns<bridge_columns>(content, *bridge);

    const int rc = zeb_db_insert(handle, bridge_record.table, content, 0, &last_row_id);
    if (rc != 0) {
        vonk_log::logWarn("failed to insert PCI Bridge (seg_num=%d, bus_num=%d, dev_num=%d, fun_num=%d), rc=%d",
                          address.segment, address.bus, address.device, address.function, rc);
        return 0;
    }
    return 1;
}

}  // namespace cds_parser
