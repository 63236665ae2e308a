// SPDX-License-Identifier: Apache-2.0

// Any bytes as a CDS file: read into a tree, dumped, recorded and explained.

#include <algorithm>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <sysipc.h>
#include <vonk_log_workstation.h>
#include <zebdb_cds_parser.h>

#include "explanation/explanation.h"
#include "fuzz/fuzz_target.h"
#include "rows/fields.h"
#include "rows/kinds.h"
#include "sources/inventory.h"
#include "sources/memory_inventory.h"

namespace {

using cds_parser::child_slot_group;
using cds_parser::component;
using cds_parser::document;
using cds_parser::setting_group;
using cds_parser::setting_node;

bool read(document& read_into, const std::string& text) {
    std::istringstream in(text);
    try {
        return read_into.parse(in);
    } catch (const sysipc::exception&) {
        return false;
    }
}

std::string dump_of(const document& dumped) {
    std::ostringstream out;
    dumped.dump(out, 2);
    return out.str();
}

// Dumps escape nothing, and what reads them makes one line end of a carriage return.
bool is_plain(const std::string& text) {
    return text.find_first_of("<&>\r") == std::string::npos;
}

bool is_plain(const setting_group& group) {
    return is_plain(group.name) && std::all_of(group.settings.begin(), group.settings.end(), [](const auto& entry) {
               const setting_node& setting = *entry.second;
               return is_plain(setting.name) && !setting.value.empty() && is_plain(setting.value);
           });
}

template <class Groups>
bool are_plain(const Groups& groups) {
    return std::all_of(groups.begin(), groups.end(), [](const auto& entry) { return is_plain(*entry.second); });
}

bool is_plain(const component& parent) {
    return are_plain(parent.setting_groups) &&
           std::all_of(parent.child_slot_groups.begin(), parent.child_slot_groups.end(), [](const auto* slots) {
               return are_plain(slots->setting_groups) &&
                      std::all_of(slots->components.begin(), slots->components.end(),
                                  [](const auto* child) { return is_plain(*child); });
           });
}

void require_that_a_dump_reads_the_same(const document& original) {
    const std::string dump = dump_of(original);
    if (!is_plain(original.root)) {
        return;
    }
    document again;
    require(read(again, dump), "a dump can be read");
    require(dump_of(again) == dump, "what is read of a dump gives the same dump");
}

using rows_by_kind = std::map<const inventory_kind*, std::vector<std::vector<inventory_value>>>;

rows_by_kind no_rows() {
    rows_by_kind rows;
    for (const inventory_kind* kind : kinds::all) {
        rows[kind] = {};
    }
    return rows;
}

rows_by_kind recorded_rows(document& recorded) {
    rows_by_kind rows = no_rows();
    for (const inventory_table& table : load_into_memory(recorded, "").read_all()) {
        rows[table.kind] = table.rows;
    }
    return rows;
}

rows_by_kind explained_rows(document& explained) {
    rows_by_kind rows = no_rows();
    for (explanation& told : explanations_of(explained, true)) {
        if (told.row) {
            forget_absent_values(*told.row);  // as who reads a database does
            rows[told.row->kind].push_back(told.row->rows.front());
        }
    }
    return rows;
}

void ignore(void*, vonk_log::level, const char*) {}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vonk_log::set_sink(ignore, nullptr);
    document tree;
    if (read(tree, text_of(data, size))) {
        require_that_a_dump_reads_the_same(tree);
        require(recorded_rows(tree) == explained_rows(tree), "the rows of a load are those of its explanation");
    }
    return 0;
}
