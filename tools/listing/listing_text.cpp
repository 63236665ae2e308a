// SPDX-License-Identifier: Apache-2.0

// Which columns people want to see, and in which order.

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "console/text_table.h"
#include "listing/listing_formats.h"
#include "rows/kinds.h"
#include "rows/row_text.h"
#include "rows/table.h"

namespace {

enum class presence {
    always,
    if_any,  // only in a table that has something in it
};

struct shown_column {
    const char* heading;
    shown_text text;
    alignment aligned = alignment::left;
    presence shown = presence::always;
};

constexpr auto left = alignment::left;
constexpr auto right = alignment::right;
constexpr auto if_any = presence::if_any;

const std::vector<shown_column> processor_columns = {
    {"Id", "Id", right},
    {"Node", "NodeIndex", right},
    {"Socket", "Socket"},
    {"Version", "Version"},
    {"Cores", row_texts::cores, right},
    {"Threads", "ThreadCount", right},
    {"Speed", "CurSpeed", right},
    {"L3 cache", "L3CacheInstalled", right},
    {"Processor id", "ProcId"},
    {"Serial number", "SerialNo", left, if_any},
    {"Asset tag", "AssetTag", left, if_any},
};

const std::vector<shown_column> memory_columns = {
    {"Id", "Id", right},
    {"Node", "NodeIndex", right},
    {"Slot", "SlotNo", right},
    {"Locator", "DevLocator"},
    {"Bank", "BankLocator", left, if_any},
    {"Size", "MemSize", right},
    {"Type", "MemType"},
    {"Speed", "ClockSpeed", right},
    {"Manufacturer", "Manufacturer"},
    {"Part number", "PartNo", left, if_any},
    {"Serial number", "SerialNo", left, if_any},
    {"Asset tag", "AssetTag", left, if_any},
    {"Capacity", "Capacity", right, if_any},
    {"Volatile", "MemCapacity", right, if_any},
    {"App direct", "AppDirCap", right, if_any},
    {"Firmware", "FirmwareVersion", left, if_any},
    {"Array", "ArrayId", right},
};

const std::vector<shown_column> bridge_columns = {
    {"Id", "Id", right},
    {"Node", "NodeIndex", right},
    {"Parent", "ParentId", right},
    {"Address", row_texts::bridge_address},
    {"Vendor:dev", row_texts::bridge_id},
    {"Revision", "RevId"},
    {"Class", "ClsCode"},
    {"Primary bus", "PriBusNo"},
    {"Bus range", row_texts::bus_range},
};

const std::vector<shown_column> device_columns = {
    {"Id", "Id", right},
    {"Node", "NodeIndex", right},
    {"Bridge", "BridgeId", right},
    {"Address", row_texts::device_address},
    {"Slot", "SlotNo", right},
    {"Designation", "SlotDesignation", left, if_any},
    {"Vendor:dev", row_texts::device_id},
    {"Subsystem", row_texts::subsystem_id, left, if_any},
    {"Class", "ClsCode"},
    {"Lanes", row_texts::lanes, right, if_any},
    {"PCIe", row_texts::link_generation, right, if_any},
    {"Device key", "DevKey"},
    {"Function key", "FunKey"},
};

const std::map<const inventory_kind*, std::vector<shown_column>> shown_columns = {
    {&kinds::processors, processor_columns},
    {&kinds::memory, memory_columns},
    {&kinds::bridges, bridge_columns},
    {&kinds::devices, device_columns},
};

bool is_empty(const std::string& cell) {
    return stripped(cell).empty();
}

text_column filled(const shown_column& shown, const inventory_table& table) {
    const bool is_free_text = shown.text.is_plain(*table.kind) && shown.aligned == left;
    text_column column{shown.heading, shown.aligned, is_free_text, {}};
    for (std::size_t row = 0; row < table.rows.size(); ++row) {
        column.cells.push_back(shown.text(inventory_row(table, row)));
    }
    return column;
}

std::vector<text_column> filled_columns(const inventory_table& table) {
    std::vector<text_column> columns;
    for (const shown_column& shown : shown_columns.at(table.kind)) {
        text_column column = filled(shown, table);
        if (shown.shown == presence::always || !std::all_of(column.cells.begin(), column.cells.end(), is_empty)) {
            columns.push_back(std::move(column));
        }
    }
    return columns;
}

}  // namespace

std::string listing_text(const std::vector<inventory_table>& tables, const text_style& style) {
    std::string text;
    for (const inventory_table& table : tables) {
        text += text.empty() ? "" : "\n";
        text += heading_text(std::string(table.kind->title) + " (" + std::to_string(table.rows.size()) + ")", style);
        text += '\n';
        if (!table.rows.empty()) {
            text += table_text(filled_columns(table), style);
        }
    }
    return text;
}
