// One row of "PCIBridge" for each PCI bridge with a usable address.

#include <vonk_log.h>

#include "record.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/parser.h"

namespace cds_parser {
namespace {

constexpr column bridge_columns[] = {
    {"Vendor ID", "VendorId", column_type::uint},
    {"Device ID", "DevId", column_type::uint},
    {"Revision ID", "RevId", column_type::uint},
    {"Class Code", "ClsCode", column_type::uint},
    {"Primary Bus Number", "PriBusNo", column_type::uint},
    {"Secondary Bus Number", "SndBusNo", column_type::uint},
    {"Subordinate Bus Number", "SubBusNo", column_type::uint},
};

}  // namespace

int parser::parse_pci_bridge(_zeb_db_handle_t* handle, component* visited) {
    const setting_group* bridge = visited->get_setting_group("pci_bridge_info");
    if (bridge == nullptr) {
        return 0;
    }

    const std::int32_t segment = int32_of(*bridge, "Segment Number", 0);
    const std::int32_t bus = int32_of(*bridge, "Bus Number", -1);
    const std::int32_t device = int32_of(*bridge, "Device Number", -1);
    const std::int32_t function = int32_of(*bridge, "Function Number", -1);
    if (bus < 0 || device < 0 || function < 0) {
        last_row_id = -1;
        return 1;
    }

    zeb_db_content_clear(content);
    put_row_id(content, "ParentId", parent_id);
    put_int32(content, "NodeIndex", node_index);
    put_int32(content, "SegNo", segment);
    put_int32(content, "BusNo", bus);
    put_int32(content, "DevNo", device);
    put_int32(content, "FunNo", function);
    put_columns(content, *bridge, bridge_columns);

    const int rc = zeb_db_insert(handle, "PCIBridge", content, 0, &last_row_id);
    if (rc != 0) {
        vonk_log::logWarn("failed to insert PCI Bridge (seg_num=%d, bus_num=%d, dev_num=%d, fun_num=%d), rc=%d",
                          segment, bus, device, function, rc);
        return 0;
    }
    return 1;
}

}  // namespace cds_parser
