// Which columns people want to see, and in which order.

#include <algorithm>
#include <iterator>

#include "console/text_table.h"
#include "listing/listing_formats.h"
#include "rows/row_text.h"

namespace {

enum class presence {
    always,
    if_any,  // only in a table that has something in it
};

struct shown_column {
    const char* heading;
    row_text text;
    const char* column = nullptr;  // none where `text` knows which
    alignment aligned = alignment::left;
    presence shown = presence::always;
};

constexpr auto left = alignment::left;
constexpr auto right = alignment::right;
constexpr auto if_any = presence::if_any;

constexpr shown_column processor_columns[] = {
    {"Id", row_texts::plain, "Id", right},
    {"Node", row_texts::index, "NodeIndex", right},
    {"Socket", row_texts::plain, "Socket"},
    {"Version", row_texts::plain, "Version"},
    {"Cores", row_texts::cores, nullptr, right},
    {"Threads", row_texts::plain, "ThreadCount", right},
    {"Speed", row_texts::megahertz, "CurSpeed", right},
    {"L3 cache", row_texts::kibibytes, "L3CacheInstalled", right},
    {"Processor id", row_texts::processor_id, "ProcId"},
    {"Serial number", row_texts::plain, "SerialNo", left, if_any},
    {"Asset tag", row_texts::plain, "AssetTag", left, if_any},
};

constexpr shown_column memory_columns[] = {
    {"Id", row_texts::plain, "Id", right},
    {"Node", row_texts::index, "NodeIndex", right},
    {"Slot", row_texts::index, "SlotNo", right},
    {"Locator", row_texts::plain, "DevLocator"},
    {"Bank", row_texts::plain, "BankLocator", left, if_any},
    {"Size", row_texts::mebibytes, "MemSize", right},
    {"Type", row_texts::memory_type, "MemType"},
    {"Speed", row_texts::megatransfers, "ClockSpeed", right},
    {"Manufacturer", row_texts::plain, "Manufacturer"},
    {"Part number", row_texts::plain, "PartNo", left, if_any},
    {"Serial number", row_texts::plain, "SerialNo", left, if_any},
    {"Asset tag", row_texts::plain, "AssetTag", left, if_any},
    {"Capacity", row_texts::bytes, "Capacity", right, if_any},
    {"Volatile", row_texts::bytes, "MemCapacity", right, if_any},
    {"App direct", row_texts::bytes, "AppDirCap", right, if_any},
    {"Firmware", row_texts::plain, "FirmwareVersion", left, if_any},
    {"Array", row_texts::index, "ArrayId", right},
};

constexpr shown_column bridge_columns[] = {
    {"Id", row_texts::plain, "Id", right},
    {"Node", row_texts::index, "NodeIndex", right},
    {"Parent", row_texts::index, "ParentId", right},
    {"Address", row_texts::bridge_address},
    {"Vendor:dev", row_texts::bridge_id},
    {"Revision", row_texts::revision, "RevId"},
    {"Class", row_texts::class_code, "ClsCode"},
    {"Primary bus", row_texts::bus, "PriBusNo"},
    {"Bus range", row_texts::bus_range},
};

constexpr shown_column device_columns[] = {
    {"Id", row_texts::plain, "Id", right},
    {"Node", row_texts::index, "NodeIndex", right},
    {"Bridge", row_texts::index, "BridgeId", right},
    {"Address", row_texts::device_address},
    {"Slot", row_texts::index, "SlotNo", right},
    {"Designation", row_texts::plain, "SlotDesignation", left, if_any},
    {"Vendor:dev", row_texts::device_id},
    {"Subsystem", row_texts::subsystem_id, nullptr, left, if_any},
    {"Class", row_texts::class_code, "ClsCode"},
    {"Lanes", row_texts::lanes, nullptr, right, if_any},
    {"PCIe", row_texts::link_generation, nullptr, right, if_any},
    {"Device key", row_texts::key, "DevKey"},
    {"Function key", row_texts::key, "FunKey"},
};

struct shown_table {
    const char* kind;
    const shown_column* first;
    const shown_column* last;
};

constexpr shown_table shown_tables[] = {
    {"processors", std::begin(processor_columns), std::end(processor_columns)},
    {"memory", std::begin(memory_columns), std::end(memory_columns)},
    {"bridges", std::begin(bridge_columns), std::end(bridge_columns)},
    {"devices", std::begin(device_columns), std::end(device_columns)},
};

bool is_empty(const std::string& cell) {
    return cell.find_first_not_of("- ") == std::string::npos;
}

text_column filled(const shown_column& shown, const inventory_table& table) {
    const bool is_free_text = shown.text == row_texts::plain && shown.aligned == left;
    text_column column{shown.heading, shown.aligned, is_free_text, {}};
    for (const std::vector<inventory_value>& values : table.rows) {
        column.cells.push_back(shown.text(inventory_row(table, values), shown.column));
    }
    return column;
}

std::vector<text_column> shown_columns_of(const inventory_table& table) {
    const auto chosen =
        std::find_if(std::begin(shown_tables), std::end(shown_tables),
                     [&table](const shown_table& each) { return std::string(each.kind) == table.kind->name; });
    std::vector<text_column> columns;
    for (const shown_column* shown = chosen->first; shown != chosen->last; ++shown) {
        text_column column = filled(*shown, table);
        if (shown->shown == presence::always || !std::all_of(column.cells.begin(), column.cells.end(), is_empty)) {
            columns.push_back(std::move(column));
        }
    }
    return columns;
}

}  // namespace

std::string inventory_text(const std::vector<inventory_table>& tables) {
    const text_style style = output_style();
    std::string text;
    for (const inventory_table& table : tables) {
        text += text.empty() ? "" : "\n";
        text += heading_text(std::string(table.kind->title) + " (" + std::to_string(table.rows.size()) + ")", style);
        text += '\n';
        if (!table.rows.empty()) {
            text += table_text(shown_columns_of(table), style);
        }
    }
    return text;
}
