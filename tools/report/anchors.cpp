// SPDX-License-Identifier: Apache-2.0

#include "report/anchors.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "console/utf8.h"
#include "explanation/explanation.h"
#include "rows/kinds.h"
#include "rows/row_text.h"
#include "rows/table.h"

namespace {

std::string text_of(const inventory_value& value) {
    const std::string* text = text_in(value);
    return text == nullptr ? "" : *text;
}

std::string socket(const inventory_row& row) {
    return text_of(row["Socket"]);
}

std::string locator(const inventory_row& row) {
    return text_of(row["DevLocator"]);
}

const std::map<const inventory_kind*, row_text> place_texts = {
    {&kinds::processors, socket},
    {&kinds::memory, locator},
    {&kinds::bridges, row_texts::bridge_address},
    {&kinds::devices, row_texts::device_address},
};

// In an id there are no blanks of any kind; those of ASCII end one in a list of ids.
std::string without_blanks(const std::string& place) {
    std::string id = printable(place);
    std::replace(id.begin(), id.end(), ' ', '_');
    return id.empty() ? "unnamed" : id;
}

}  // namespace

anchors::anchors(const std::vector<inventory_table>& tables, const std::vector<explanation>& explanations,
                 const std::vector<std::string>& taken)
    : taken_(taken.begin(), taken.end()) {
    for (const inventory_table& table : tables) {
        std::vector<anchor>& rows = rows_[table.kind];
        for (std::size_t place = 0; place < table.rows.size(); ++place) {
            rows.push_back(give(place_texts.at(table.kind)(inventory_row(table, place))));
        }
    }
    for (const explanation& told : explanations) {
        explanations_.push_back(told.row ? anchor() : give(told.name));
    }
}

anchor anchors::give(const std::string& place) {
    const std::string wanted = without_blanks(place);
    std::size_t& count = counts_[wanted];
    std::string id = ++count == 1 ? wanted : wanted + '~' + std::to_string(count);
    while (!taken_.insert(id).second) {
        id = wanted + '~' + std::to_string(++count);
    }
    return {id, place};
}

std::string fragment_of(const std::string& id) {
    constexpr const char* plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:@!$&'()*+,;=/?";
    std::string fragment;
    for (const char character : id) {
        if (character != '\0' && std::strchr(plain, character) != nullptr) {
            fragment += character;
        } else {
            char escaped[4];
            std::snprintf(escaped, sizeof escaped, "%%%02X",
                          static_cast<unsigned>(static_cast<unsigned char>(character)));
            fragment += escaped;
        }
    }
    return fragment;
}
