// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <string>

#include <nlohmann/json.hpp>

#include "report/page_template.h"
#include "report/part_json.h"
#include "report/reported_inventory.h"
#include "report/sections.h"
#include "rows/column_units.h"
#include "rows/kinds.h"
#include "rows/part_text.h"
#include "rows/row_text.h"
#include "rows/shown_text.h"
#include "rows/table.h"
#include "topology/topology_phrases.h"

using nlohmann::json;

namespace {

struct fact {
    const char* name;
    shown_text text;
};

const fact facts[] = {
    {"cores enabled", row_texts::cores},
    {"threads", "ThreadCount"},
    {"speed", "CurSpeed"},
    {"L3 cache", "L3CacheInstalled"},
};

json processor_json(const reported_inventory& reported, const inventory_row& row) {
    json processor = part_json(reported, row);
    processor["name"] = stripped(column_units::plain(row["Socket"]));
    processor["server"] = node_text(row);
    processor["version"] = stripped(column_units::plain(row["Version"]));
    processor["facts"] = json::array();
    for (const fact& each : facts) {
        const std::string text = text_of(each.text, row);
        if (text != column_units::none) {
            processor["facts"].push_back({{"name", each.name}, {"text", text}});
        }
    }
    return processor;
}

}  // namespace

std::string processors_section(const reported_inventory& reported) {
    const inventory_table& table = reported.labelled_table(kinds::processors);
    json processors = json::array();
    for (std::size_t place = 0; place < table.rows.size(); ++place) {
        processors.push_back(processor_json(reported, inventory_row(table, place)));
    }
    return filled("processors.html", {{"processors", processors}});
}
