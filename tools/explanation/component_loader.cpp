// SPDX-License-Identifier: Apache-2.0

#include "explanation/component_loader.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <string>

#include <zeb_db.h>
#include <zeb_db_workstation.h>
#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "rows/kinds.h"
#include "rows/table.h"
#include "sources/library_log.h"
#include "sources/memory_inventory.h"

namespace {

constexpr const char* title_of_rows = "the rows in memory";
constexpr const char* no_row = "cannot put a row into a database in memory";

// No locator of a file can hold these bytes.
constexpr char probe_locator[] = "\x01probe";

cds_parser::setting_node* new_locator(const char* name) {
    auto* locator = new cds_parser::setting_node(0);
    locator->name = name;
    locator->value = probe_locator;
    locator->value_type = cds_parser::setting_node::text_value;
    return locator;
}

// A memory device, whose row tells the parent under which it was loaded.
cds_parser::component* new_probe() {
    auto* group = new cds_parser::setting_group(0);
    group->name = "memory_info";
    group->add_setting(new_locator("Device Locator"));
    auto* probe = new cds_parser::component(0);
    probe->add_setting_group(group);
    return probe;
}

// Puts what is below a component aside and the probe in its place.
class probe_below {
public:
    explicit probe_below(cds_parser::component& above) : above_(above) {
        slots_.add_component(new_probe());
        aside_.push_back(&slots_);
        above_.child_slot_groups.swap(aside_);
    }
    ~probe_below() { above_.child_slot_groups.swap(aside_); }
    probe_below(const probe_below&) = delete;
    probe_below& operator=(const probe_below&) = delete;

private:
    cds_parser::component& above_;
    cds_parser::child_slot_group slots_{0};
    std::list<cds_parser::child_slot_group*> aside_;
};

std::int64_t id_in(const inventory_row& row, const char* column) {
    return std::get<std::int64_t>(row[column]);
}

}  // namespace

component_loader::component_loader() : rows_(read_memory(database_, title_of_rows)) {
    if (parser_.init() == 0) {
        throw std::bad_alloc();
    }
    cds_parser::component nothing(0);
    if (!load(nothing, no_parent).parent_below) {
        throw failure(no_row);
    }
}

loaded_component component_loader::load(cds_parser::component& loaded, std::int64_t parent) {
    loaded_component result = {};
    parser_.parent_id = parent;
    {
        const library_log log(log_display::hidden);
        const probe_below probe(loaded);
        result.succeeded = parser_.parse_component(database_.handle(), &loaded) != 0;
        result.log = log.lines();
    }
    result.parent_below = take_probe();
    if (!result.succeeded && !result.parent_below && zeb_db_first_failure() != nullptr) {
        throw failure(no_row);  // it may have been the probe's
    }
    result.row = take_new_row();
    return result;
}

void component_loader::begin_again() {
    for (const auto& [kind, last_id] : last_ids_) {
        if (last_id != 0 && zeb_db_delete(database_.handle(), kind->record.table, nullptr, nullptr, 0, 0) != 0) {
            throw failure("cannot take rows out of a database in memory");
        }
    }
    last_ids_.clear();
    parser_.clear();
    parser_.device_keys.clear();
    if (parser_.init() == 0) {
        throw std::bad_alloc();
    }
}

std::optional<std::int64_t> component_loader::take_probe() {
    const inventory_table added = rows_.read_after(kinds::memory, last_ids_[&kinds::memory]);
    for (std::size_t place = 0; place < added.rows.size(); ++place) {
        const inventory_row row(added, place);
        if (row["DevLocator"] == inventory_value(probe_locator)) {
            const std::string id = std::to_string(id_in(row, "Id"));
            const char* const arguments[] = {id.c_str()};
            if (zeb_db_delete(database_.handle(), kinds::memory.record.table, "Id = ?", arguments, 1, 0) != 0) {
                throw failure("cannot take a row out of a database in memory");
            }
            return id_in(row, "ArrayId");
        }
    }
    return std::nullopt;
}

std::optional<inventory_table> component_loader::take_new_row() {
    for (const inventory_kind* kind : kinds::all) {
        inventory_table added = rows_.read_after(*kind, last_ids_[kind]);
        if (!added.rows.empty()) {
            last_ids_[kind] = id_in(inventory_row(added, 0), "Id");
            return added;
        }
    }
    return std::nullopt;
}
