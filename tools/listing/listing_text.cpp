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
#include "rows/pci_label_columns.h"
#include "rows/row_text.h"
#include "rows/table.h"

namespace {

struct shown_column {
    const char* heading;
    shown_text text;
    alignment aligned = alignment::left;
};

constexpr auto left = alignment::left;
constexpr auto right = alignment::right;

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
    {"Serial number", "SerialNo"},
    {"Asset tag", "AssetTag"},
};

const std::vector<shown_column> memory_columns = {
    {"Id", "Id", right},
    {"Node", "NodeIndex", right},
    {"Slot", "SlotNo", right},
    {"Locator", "DevLocator"},
    {"Bank", "BankLocator"},
    {"Size", "MemSize", right},
    {"Form factor", "FormFactor"},
    {"Type", "MemType"},
    {"Speed", "ClockSpeed", right},
    {"Manufacturer", "Manufacturer"},
    {"Part number", "PartNo"},
    {"Serial number", "SerialNo"},
    {"Asset tag", "AssetTag"},
    {"Capacity", "Capacity", right},
    {"Volatile", "MemCapacity", right},
    {"App direct", "AppDirCap", right},
    {"Firmware", "FirmwareVersion"},
    {"Array", "ArrayId", right},
};

const std::vector<shown_column> bridge_columns = {
    {"Id", "Id", right},
    {"Node", "NodeIndex", right},
    {"Parent", "ParentId", right},
    {"Address", row_texts::bridge_address},
    {"Vendor:dev", row_texts::bridge_id},
    {"Name", pci_label_columns::name},
    {"Revision", "RevId"},
    {"Class", "ClsCode"},
    {"Kind", pci_label_columns::kind},
    {"Primary bus", "PriBusNo"},
    {"Bus range", row_texts::bus_range},
};

const std::vector<shown_column> device_columns = {
    {"Id", "Id", right},
    {"Node", "NodeIndex", right},
    {"Bridge", "BridgeId", right},
    {"Address", row_texts::device_address},
    {"Slot", "SlotNo", right},
    {"Designation", "SlotDesignation"},
    {"Vendor:dev", row_texts::device_id},
    {"Name", pci_label_columns::name},
    {"Subsystem", row_texts::subsystem_id},
    {"Class", "ClsCode"},
    {"Kind", pci_label_columns::kind},
    {"Lanes", row_texts::lanes, right},
    {"Link speed", row_texts::link_speed, right},
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

// By the names of the database; where none are chosen, those that people want to see.
std::vector<shown_column> columns_for(const inventory_table& table, const listing_view& view) {
    if (view.columns.empty()) {
        return shown_columns.at(table.kind);
    }
    std::vector<shown_column> columns;
    for (const std::string& name : view.columns) {
        if (find_column(table, name)) {
            columns.push_back({name.c_str(), name.c_str(), left});
        }
    }
    return columns;
}

std::vector<text_column> filled_columns(const inventory_table& table, const listing_view& view) {
    std::vector<text_column> columns;
    for (const shown_column& shown : columns_for(table, view)) {
        text_column column = filled(shown, table);
        const bool is_wanted = view.wide || !view.columns.empty();
        if (is_wanted || !std::all_of(column.cells.begin(), column.cells.end(), is_empty)) {
            columns.push_back(std::move(column));
        }
    }
    return columns;
}

}  // namespace

std::string listing_text(const std::vector<inventory_table>& tables, const listing_view& view,
                         const text_style& style) {
    text_style fitting = style;
    fitting.width = view.wide ? 0 : style.width;
    std::string text;
    for (const inventory_table& table : tables) {
        text += text.empty() ? "" : "\n";
        text += heading_text(std::string(table.kind->title) + " (" + std::to_string(table.rows.size()) + ")", style);
        text += '\n';
        const std::vector<text_column> columns =
            table.rows.empty() ? std::vector<text_column>() : filled_columns(table, view);
        if (!columns.empty()) {
            text += table_text(columns, fitting);
        }
    }
    return text;
}
