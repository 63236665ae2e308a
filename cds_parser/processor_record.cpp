// One row of "Processor" for each processor.

#include <vonk_log.h>

#include "record.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/parser.h"

namespace cds_parser {
namespace {

constexpr column processor_columns[] = {
    {"Socket Designation", "Socket", column_type::text},
    {"Processor Type", "ProcType", column_type::uint},
    {"Processor Family", "Family", column_type::uint},
    {"Processor Manufacturer", "Manufacturer", column_type::text},
    {"Processor ID", "ProcId", column_type::uint64},
    {"Processor Version", "Version", column_type::text},
    {"Voltage", "Voltage", column_type::uint},
    {"External Clock", "ExtClock", column_type::uint},
    {"Max Speed", "MaxSpeed", column_type::uint},
    {"Current Speed", "CurSpeed", column_type::uint},
    {"Status", "Status", column_type::uint},
    {"Processor Upgrade", "Upgrade", column_type::uint},
    {"Serial Number", "SerialNo", column_type::text},
    {"Asset Tag", "AssetTag", column_type::text},
    {"Part Number", "PartNo", column_type::text},
    {"Core Count", "CoreCount", column_type::uint},
    {"Core Enabled", "CoreEnabled", column_type::uint},
    {"Thread Count", "ThreadCount", column_type::uint},
    {"Processor Characteristics", "Characteristics", column_type::uint},
    {"L1 Cache Maximum Size", "L1CacheMaxSize", column_type::uint},
    {"L1 Cache Installed Size", "L1CacheInstalled", column_type::uint},
    {"L1 Cache Type", "L1CacheType", column_type::uint},
    {"L1 Cache Configuration", "L1CacheConfig", column_type::uint},
    {"L2 Cache Maximum Size", "L2CacheMaxSize", column_type::uint},
    {"L2 Cache Installed Size", "L2CacheInstalled", column_type::uint},
    {"L2 Cache Type", "L2CacheType", column_type::uint},
    {"L2 Cache Configuration", "L2CacheConfig", column_type::uint},
    {"L3 Cache Maximum Size", "L3CacheMaxSize", column_type::uint},
    {"L3 Cache Installed Size", "L3CacheInstalled", column_type::uint},
    {"L3 Cache Type", "L3CacheType", column_type::uint},
    {"L3 Cache Configuration", "L3CacheConfig", column_type::uint},
};

}  // namespace

int parser::parse_processor(_zeb_db_handle_t* handle, component* visited) {
    const setting_group* processor = visited->get_setting_group("cpu_info");
    if (processor == nullptr) {
        return 0;
    }

    zeb_db_content_clear(content);
    put_int32(content, "NodeIndex", node_index);
    if (put_columns(content, *processor, processor_columns) == 0) {
        return 1;
    }

    const int rc = zeb_db_insert(handle, "Processor", content, 0, &last_row_id);
    if (rc != 0) {
        const std::string socket = text_of(*processor, "Socket Designation");
        vonk_log::logErr("failed to insert Processor (%s), rc=%d", socket.c_str(), rc);
        return 0;
    }
    return 1;
}

}  // namespace cds_parser
