// SPDX-License-Identifier: Apache-2.0

#include "rows/part_text.h"

#include <map>
#include <string>
#include <vector>

#include "rows/column_units.h"
#include "rows/enumerations.h"
#include "rows/kinds.h"
#include "rows/row_text.h"
#include "rows/serial_number.h"
#include "rows/table.h"

namespace {

struct phrase {
    const char* before;
    shown_text text;
};

struct kind_phrases {
    std::vector<phrase> place;
    std::vector<phrase> part;
};

std::string serial_number(const inventory_row& row) {
    const std::string* text = text_in(row["SerialNo"]);
    return text != nullptr && real_serial_number(*text) ? column_units::plain(*text) : "";
}

// Without its number, which is of no help in a sentence.
std::string memory_type(const inventory_row& row) {
    const auto number = number_in(row["MemType"]);
    const char* name = number ? name_of(enumerations::memory_type, *number) : nullptr;
    return name == nullptr ? column_units::plain(row["MemType"]) : name;
}

const kind_phrases& phrases_of(const inventory_kind& kind) {
    using namespace row_texts;
    static const std::map<const inventory_kind*, kind_phrases> phrases = {
        {&kinds::processors,
         {{{"", "Socket"}, {"node ", "NodeIndex"}}, {{"", "Version"}, {"serial number ", serial_number}}}},
        {&kinds::memory,
         {{{"", "DevLocator"}, {"", "BankLocator"}, {"node ", "NodeIndex"}},
          {{"", "MemSize"},
           {"", memory_type},
           {"", "Manufacturer"},
           {"", "PartNo"},
           {"serial number ", serial_number}}}},
        {&kinds::bridges,
         {{{"", bridge_address}, {"node ", "NodeIndex"}},
          {{"", bridge_id}, {"class ", "ClsCode"}, {"to bus ", bus_range}}}},
        {&kinds::devices,
         {{{"", device_address}, {"node ", "NodeIndex"}},
          {{"", device_id}, {"class ", "ClsCode"}, {"slot ", "SlotNo"}, {"", "SlotDesignation"}}}},
    };
    return phrases.at(&kind);
}

std::string joined_text(const std::vector<phrase>& phrases, const inventory_row& row) {
    std::string joined;
    for (const phrase& each : phrases) {
        const std::string text = stripped(each.text(row));
        if (!text.empty()) {
            joined += (joined.empty() ? "" : ", ") + (each.before + text);
        }
    }
    return joined;
}

}  // namespace

std::string place_text(const inventory_row& row) {
    const std::string text = joined_text(phrases_of(row.kind()).place, row);
    return text.empty() ? "unnamed" : text;
}

std::string part_text(const inventory_row& row) {
    if (number_in(row["MemSize"]) == 0) {
        return "empty slot";
    }
    return joined_text(phrases_of(row.kind()).part, row);
}
