// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <string>
#include <vector>

#include "console/time_text.h"
#include "explanation/explanation.h"
#include "export/observation.h"
#include "listing/listing_formats.h"
#include "rows/table.h"
#include "rows/value_json.h"
#include "sources/source_record.h"

using json = nlohmann::ordered_json;

namespace {

// Raised when a program that reads today's lines would misread tomorrow's.
constexpr int observation_schema = 1;

json source_json(const source_record& source) {
    const bool is_read = !source.sha256.empty();
    return {{"name", source.name},
            {"bytes", is_read ? json(source.bytes) : json()},
            {"sha256", is_read ? json(source.sha256) : json()}};
}

json left_out_json(const std::vector<left_out_component>& left_out) {
    json all = json::array();
    for (const left_out_component& each : left_out) {
        all.push_back({{"path", each.path}, {"title", each.title}, {"code", each.code}, {"reasons", each.reasons}});
    }
    return all;
}

// Whether they left rows or not.
std::size_t count_components(const observation& seen) {
    std::size_t count = seen.left_out.size();
    for (const inventory_table& table : seen.tables) {
        count += table.rows.size();
    }
    return count;
}

}  // namespace

std::string observation_line(const observation& seen) {
    json line = {
        {"schema", observation_schema},
        {"server", seen.server},
        {"observed_at", rfc3339_text(seen.observed_at)},
        {"source", source_json(seen.source)},
        {"status", seen.refusal ? "refused" : "loaded"},
        {"reason", seen.refusal ? json(*seen.refusal) : json()},
        {"components", count_components(seen)},
    };
    for (const inventory_table& table : seen.tables) {
        line[table.kind->name] = rows_json(table);
    }
    line["left_out"] = left_out_json(seen.left_out);
    return json_line(line);
}
