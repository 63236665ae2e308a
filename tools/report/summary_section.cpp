// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "difference/difference.h"
#include "explanation/explanation.h"
#include "explanation/left_out_phrases.h"
#include "report/change_marks.h"
#include "report/page_template.h"
#include "report/part_json.h"
#include "report/reported_inventory.h"
#include "report/sections.h"
#include "rows/column_units.h"
#include "rows/decoded_text.h"
#include "rows/kinds.h"
#include "rows/pci_label_columns.h"
#include "rows/row_text.h"
#include "rows/table.h"

using nlohmann::json;

namespace {

// How many there are of each text, the most frequent first, of equals the first.
class tally {
public:
    void add(const std::string& text) {
        const auto [found, is_new] = places_.emplace(text, counts_.size());
        if (is_new) {
            counts_.emplace_back(text, 0);
        }
        ++counts_[found->second].second;
    }

    std::vector<std::string> lines(const char* between) const {
        std::vector<std::pair<std::string, std::size_t>> sorted = counts_;
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](const auto& one, const auto& other) { return one.second > other.second; });
        std::vector<std::string> all;
        std::transform(sorted.begin(), sorted.end(), std::back_inserter(all),
                       [between](const auto& each) { return std::to_string(each.second) + between + each.first; });
        return all;
    }

private:
    std::map<std::string, std::size_t> places_;
    std::vector<std::pair<std::string, std::size_t>> counts_;
};

constexpr const char* times = " \u00d7 ";

std::uint64_t sum(const inventory_table& table, const char* column) {
    std::uint64_t total = 0;
    for (std::size_t place = 0; place < table.rows.size(); ++place) {
        total += number_in(inventory_row(table, place)[column]).value_or(0);
    }
    return total;
}

std::string decoded(const inventory_row& row, const char* column) {
    return decoded_text(row.kind(), column, row[column]);
}

json processors_tile(const inventory_table& table) {
    tally models;
    for (std::size_t place = 0; place < table.rows.size(); ++place) {
        models.add(stripped(decoded(inventory_row(table, place), "Version")));
    }
    std::vector<std::string> lines = models.lines(times);
    lines.push_back(std::to_string(sum(table, "CoreEnabled")) + " cores, " + std::to_string(sum(table, "ThreadCount")) +
                    " threads");
    return {{"title", "Processors"}, {"href", "section-processors"}, {"value", table.rows.size()}, {"lines", lines}};
}

json memory_tile(const inventory_table& table) {
    tally modules;
    std::size_t filled_slots = 0;
    for (std::size_t place = 0; place < table.rows.size(); ++place) {
        const inventory_row row(table, place);
        if (number_in(row["MemSize"]).value_or(0) != 0) {
            modules.add(decoded(row, "MemSize") + ' ' + decoded(row, "MemType"));
            ++filled_slots;
        }
    }
    std::vector<std::string> lines = modules.lines(times);
    lines.push_back(std::to_string(filled_slots) + " of " + counted(table.rows.size(), "slot", "slots") + " filled");
    const std::uint64_t mebibytes = sum(table, "MemSize");
    const std::string total = column_units::mebibytes(mebibytes);
    return {{"title", "Memory"}, {"href", "section-memory"}, {"value", total}, {"lines", lines}};
}

json topology_tile(const inventory_table& bridges, const inventory_table& devices) {
    tally kinds_of_device;
    for (std::size_t place = 0; place < devices.rows.size(); ++place) {
        const std::string* kind = text_in(inventory_row(devices, place)[pci_label_columns::kind]);
        kinds_of_device.add(kind == nullptr ? "other" : kind->substr(0, kind->find(" (")));
    }
    std::string kinds;
    for (const std::string& line : kinds_of_device.lines(" ")) {
        kinds += (kinds.empty() ? "" : ", ") + line;
    }
    std::vector<std::string> lines;
    if (!kinds.empty()) {
        lines.push_back(kinds);
    }
    lines.push_back("behind " + counted(bridges.rows.size(), "bridge", "bridges"));
    return {{"title", "PCI functions"}, {"href", "section-pci"}, {"value", devices.rows.size()}, {"lines", lines}};
}

json left_out_tile(const std::vector<explanation>& explanations) {
    std::map<const char*, std::pair<const explanation*, std::size_t>> by_code;
    std::vector<const char*> codes;
    std::size_t count = 0;
    for (const explanation& told : explanations) {
        if (is_left_out(told)) {
            auto& [example, members] = by_code[code_of(told)];
            if (members++ == 0) {
                example = &told;
                codes.push_back(code_of(told));
            }
            ++count;
        }
    }
    std::vector<std::string> lines;
    for (const char* code : codes) {
        const auto& [example, members] = by_code[code];
        const std::string why = example->rule ? omission_text(*example->rule, members) : code;
        lines.push_back(std::to_string(members) + ' ' + why);
    }
    return {
        {"title", "Left out"}, {"href", "section-left-out"}, {"value", count}, {"lines", lines}, {"warn", count != 0}};
}

struct part_name {
    const inventory_kind* kind;
    const char* one;
    const char* many;
};

constexpr part_name part_names[] = {
    {&kinds::processors, "processor", "processors"},
    {&kinds::memory, "memory slot", "memory slots"},
    {&kinds::bridges, "PCI bridge", "PCI bridges"},
    {&kinds::devices, "PCI function", "PCI functions"},
};

std::string counted_parts(std::size_t count, const inventory_kind& kind) {
    const auto* named = std::find_if(std::begin(part_names), std::end(part_names),
                                     [&kind](const part_name& each) { return each.kind == &kind; });
    return counted(count, named->one, named->many);
}

json changes_tile(const comparison& compared) {
    std::vector<std::string> lines;
    for (const table_difference& difference : compared.kinds) {
        for (const auto& [count, mark] : {std::make_pair(difference.rows.added.size(), added_mark),
                                          std::make_pair(difference.rows.removed.size(), removed_mark),
                                          std::make_pair(difference.changed.size(), changed_mark),
                                          std::make_pair(difference.moved.size(), moved_mark)}) {
            if (count != 0) {
                lines.push_back(counted_parts(count, *difference.new_table.kind) + ' ' + mark.word);
            }
        }
    }
    const std::size_t count = count_changes(compared);
    return {
        {"title", "Changes"}, {"href", "section-changes"}, {"value", count}, {"lines", lines}, {"news", count != 0}};
}

std::string recorded_text(const reported_inventory& reported) {
    if (!reported.is_explained) {
        std::size_t rows = 0;
        for (const inventory_table& table : reported.tables) {
            rows += table.rows.size();
        }
        return counted(rows, "part", "parts") +
               " recorded; what was left out is not known, because a database holds "
               "only what was recorded";
    }
    const explanation_counts counts = count(reported.explanations);
    const std::size_t left_out = counts.components - counts.rows;
    return std::to_string(counts.rows) + " of " + counted(counts.components, "component", "components") +
           " recorded, " + (left_out == 0 ? "none" : std::to_string(left_out)) + " left out";
}

std::string changes_text(const reported_inventory& reported) {
    if (!reported.older) {
        return "";
    }
    const std::size_t changes = count_changes(reported.older->compared);
    return ", " + (changes == 0 ? "no change" : counted(changes, "change", "changes")) + " since " +
           source_title(reported.older->source.file);
}

}  // namespace

std::string verdict_text(const reported_inventory& reported) {
    return recorded_text(reported) + changes_text(reported);
}

std::string summary_section(const reported_inventory& reported) {
    json tiles = json::array();
    if (reported.older) {
        tiles.push_back(changes_tile(reported.older->compared));
    }
    tiles.push_back(memory_tile(reported.labelled_table(kinds::memory)));
    tiles.push_back(processors_tile(reported.labelled_table(kinds::processors)));
    tiles.push_back(topology_tile(reported.labelled_table(kinds::bridges), reported.labelled_table(kinds::devices)));
    if (reported.is_explained) {
        tiles.push_back(left_out_tile(reported.explanations));
    }
    return filled("summary.html", {{"verdict", verdict_text(reported)}, {"tiles", tiles}});
}

const std::vector<std::string>& ids_of_the_page() {
    static const std::vector<std::string> ids = {
        "inventory",    "filter",          "filter-box",       "filter-result",
        "page-content", "section-changes", "section-memory",   "section-processors",
        "section-pci",  "section-tables",  "section-left-out", "section-settings",
    };
    return ids;
}
