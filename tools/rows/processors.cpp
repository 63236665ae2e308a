// SPDX-License-Identifier: Apache-2.0

#include <vector>

#include "cds_parser/record_columns.h"
#include "console/text_table.h"
#include "rows/column_units.h"
#include "rows/enumerations.h"
#include "rows/field_lines.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "rows/recorded_columns.h"
#include "rows/row_text.h"

namespace {

const std::vector<field_line>& processor_lines() {
    static const std::vector<field_line> lines = {
        field_lines::row_id,
        field_lines::node_index,
        {"Socket", "name of the socket"},
        {"ProcType", "type of the processor", "", column_units::plain, &enumerations::processor_type},
        {"Family", "family of the processor", "", column_units::plain, &enumerations::processor_family},
        {"Manufacturer", "who made it"},
        {"ProcId", "what CPUID gives: signature in the low, features in the high 32 bits", "",
         column_units::processor_id},
        {"Version", "model name"},
        {"Voltage", "voltage", "", column_units::plain, &enumerations::voltage},
        {"ExtClock", "external clock", "MHz", column_units::megahertz},
        {"MaxSpeed", "highest speed that the socket supports", "MHz", column_units::megahertz},
        {"CurSpeed", "speed at the start of the server", "MHz", column_units::megahertz},
        {"Status", "status of processor and socket", "", column_units::plain, &enumerations::processor_status},
        {"Upgrade", "kind of socket", "", column_units::plain, &enumerations::processor_upgrade},
        {"SerialNo", "serial number"},
        {"AssetTag", "asset tag"},
        {"PartNo", "part number"},
        {"CoreCount", "cores"},
        {"CoreEnabled", "cores that are enabled"},
        {"ThreadCount", "threads"},
        {"Characteristics", "characteristics", "", column_units::plain, &enumerations::processor_characteristics},
        {"L1CacheMaxSize", "largest size of the level 1 cache", "KiB", column_units::kibibytes},
        {"L1CacheInstalled", "size of the level 1 cache", "KiB", column_units::kibibytes},
        {"L1CacheType", "type of the level 1 cache", "", column_units::plain, &enumerations::cache_type},
        {"L1CacheConfig", "configuration of the level 1 cache", "", column_units::plain,
         &enumerations::cache_configuration},
        {"L2CacheMaxSize", "largest size of the level 2 cache", "KiB", column_units::kibibytes},
        {"L2CacheInstalled", "size of the level 2 cache", "KiB", column_units::kibibytes},
        {"L2CacheType", "type of the level 2 cache", "", column_units::plain, &enumerations::cache_type},
        {"L2CacheConfig", "configuration of the level 2 cache", "", column_units::plain,
         &enumerations::cache_configuration},
        {"L3CacheMaxSize", "largest size of the level 3 cache", "KiB", column_units::kibibytes},
        {"L3CacheInstalled", "size of the level 3 cache", "KiB", column_units::kibibytes},
        {"L3CacheType", "type of the level 3 cache", "", column_units::plain, &enumerations::cache_type},
        {"L3CacheConfig", "configuration of the level 3 cache", "", column_units::plain,
         &enumerations::cache_configuration},
    };
    return lines;
}

const std::vector<listed_column>& listed_processors() {
    static const std::vector<listed_column> columns = {
        {"Id", "Id", alignment::right},
        {"Node", "NodeIndex", alignment::right},
        {"Socket", "Socket"},
        {"Version", "Version"},
        {"Cores", row_texts::cores, alignment::right},
        {"Threads", "ThreadCount", alignment::right},
        {"Speed", "CurSpeed", alignment::right},
        {"L3 cache", "L3CacheInstalled", alignment::right},
        {"Processor id", "ProcId"},
        {"Serial number", "SerialNo"},
        {"Asset tag", "AssetTag"},
    };
    return columns;
}

}  // namespace

const kind_description& kinds::describe_processors() {
    static const std::vector<cds_parser::column> recorded = columns_in(cds_parser::processor_columns);
    static const kind_description description = {
        "processor",
        "Socket Designation",
        {{"NodeIndex", "Socket"}, {}},
        {{"", "Socket"}, {"node ", "NodeIndex"}},
        {{"", "Version"}, {"serial number ", row_texts::serial_number}},
        listed_processors(),
        recorded,
        fields_in(cds_parser::processor_record.group, recorded, processor_lines()),
    };
    return description;
}
