#include "rows/part_text.h"

#include <algorithm>
#include <map>
#include <vector>

#include "console/utf8.h"
#include "rows/row_text.h"
#include "rows/serial_number.h"

namespace {

constexpr const char* none = "-";

struct phrase {
    const char* before;
    row_text text;
    const char* column = nullptr;  // none where `text` knows which
};

struct kind_text {
    std::vector<phrase> place;
    std::vector<phrase> part;
    std::map<std::string, row_text> columns;  // those that are not plain numbers
};

using namespace row_texts;

std::string serial_number(const inventory_row& row, const char* column) {
    const std::string* text = row.text(column);
    return text != nullptr && real_serial_number(*text) ? plain(row, column) : none;
}

const kind_text processor_text = {
    {{"", plain, "Socket"}, {"node ", index, "NodeIndex"}},
    {{"", plain, "Version"}, {"serial number ", serial_number, "SerialNo"}},
    {{"NodeIndex", index},
     {"ProcId", processor_id},
     {"ExtClock", megahertz},
     {"MaxSpeed", megahertz},
     {"CurSpeed", megahertz},
     {"L1CacheMaxSize", kibibytes},
     {"L1CacheInstalled", kibibytes},
     {"L2CacheMaxSize", kibibytes},
     {"L2CacheInstalled", kibibytes},
     {"L3CacheMaxSize", kibibytes},
     {"L3CacheInstalled", kibibytes}},
};

const kind_text memory_text = {
    {{"", plain, "DevLocator"}, {"", plain, "BankLocator"}, {"node ", index, "NodeIndex"}},
    {{"", mebibytes, "MemSize"},
     {"", memory_type, "MemType"},
     {"", plain, "Manufacturer"},
     {"", plain, "PartNo"},
     {"serial number ", serial_number, "SerialNo"}},
    {{"NodeIndex", index},
     {"SlotNo", index},
     {"MemSize", mebibytes},
     {"MemType", memory_type},
     {"MaxSpeed", megatransfers},
     {"ClockSpeed", megatransfers},
     {"Capacity", bytes},
     {"MemCapacity", bytes},
     {"AppDirCap", bytes},
     {"UnconfigCap", bytes},
     {"InaccCap", bytes},
     {"ReservedCap", bytes}},
};

const kind_text bridge_text = {
    {{"", bridge_address}, {"node ", index, "NodeIndex"}},
    {{"", bridge_id}, {"class ", class_code, "ClsCode"}, {"to bus ", bus_range}},
    {{"NodeIndex", index},
     {"VendorId", pci_id_part},
     {"DevId", pci_id_part},
     {"RevId", revision},
     {"ClsCode", class_code},
     {"PriBusNo", bus},
     {"SndBusNo", bus},
     {"SubBusNo", bus}},
};

const kind_text device_text = {
    {{"", device_address}, {"node ", index, "NodeIndex"}},
    {{"", device_id}, {"class ", class_code, "ClsCode"}, {"slot ", index, "SlotNo"}, {"", plain, "SlotDesignation"}},
    {{"NodeIndex", index},
     {"DevKey", key},
     {"FunKey", key},
     {"SlotNo", index},
     {"VendorId", pci_id_part},
     {"ClsCode", class_code},
     {"DeviceId", pci_id_part},
     {"RevId", revision},
     {"SubVendorId", pci_id_part},
     {"SubDeviceId", pci_id_part},
     {"HardwareId", key}},
};

const kind_text& text_of(const inventory_kind& kind) {
    static const std::map<std::string, const kind_text*> texts = {{"processors", &processor_text},
                                                                  {"memory", &memory_text},
                                                                  {"bridges", &bridge_text},
                                                                  {"devices", &device_text}};
    return *texts.at(kind.name);
}

bool says_something(const std::string& text) {
    return text.find_first_not_of("- ") != std::string::npos;
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

std::string joined_text(const std::vector<phrase>& phrases, const inventory_table& table, std::size_t row) {
    const inventory_row values(table, table.rows[row]);
    std::string joined;
    for (const phrase& each : phrases) {
        const std::string text = each.text(values, each.column);
        if (says_something(text)) {
            joined += (joined.empty() ? "" : ", ") + (each.before + trimmed(text));
        }
    }
    return joined;
}

}  // namespace

std::string place_text(const inventory_table& table, std::size_t row) {
    const std::string text = joined_text(text_of(*table.kind).place, table, row);
    return text.empty() ? "unnamed" : text;
}

std::string part_text(const inventory_table& table, std::size_t row) {
    if (inventory_row(table, table.rows[row]).number("MemSize") == 0) {
        return "empty slot";
    }
    return joined_text(text_of(*table.kind).part, table, row);
}

std::string plain_column_text(const inventory_table& table, std::size_t row, std::size_t column) {
    const std::string* text = std::get_if<std::string>(&table.rows[row][column]);
    return text != nullptr ? '"' + printable(*text) + '"'
                           : plain(inventory_row(table, table.rows[row]), table.columns[column].c_str());
}

std::string column_text(const inventory_table& table, std::size_t row, std::size_t column) {
    const auto& columns = text_of(*table.kind).columns;
    const auto unit = columns.find(table.columns[column]);
    if (unit == columns.end() || std::holds_alternative<std::string>(table.rows[row][column])) {
        return plain_column_text(table, row, column);
    }
    return unit->second(inventory_row(table, table.rows[row]), unit->first.c_str());
}
