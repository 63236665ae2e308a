// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "console/output.h"
#include "console/text_table.h"
#include "console/utf8.h"
#include "explanation/explanation.h"
#include "explanation/explanation_formats.h"
#include "explanation/explanation_phrases.h"
#include "explanation/odd_values.h"
#include "explanation/unused_settings.h"
#include "rows/table.h"
#include "sources/library_log.h"

namespace {

std::string counted(std::size_t count, const std::string& one, const std::string& many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string line(const char* label, const std::string& text) {
    return std::string("  ") + label + printable(text) + '\n';
}

std::string row_text(const inventory_table& row, row_columns shown) {
    std::string id;
    std::string columns;
    for (std::size_t column = 0; column < row.columns.size(); ++column) {
        const inventory_value& value = row.rows.front()[column];
        if (row.columns[column] == "Id") {
            id = std::to_string(std::get<std::int64_t>(value));
        } else if (is_put(value)) {
            columns += (columns.empty() ? "" : ", ") + row.columns[column];
        }
    }
    const std::string name = std::string(row.kind->record.table) + ' ' + id;
    return shown == row_columns::named ? name + ": " + columns : name;
}

std::string component_text(const explanation& told, row_columns columns, const text_style& style) {
    std::string text = heading_text(printable(told.title), style) + '\n' + line("at      ", told.path);
    if (told.row) {
        text += line("row     ", row_text(*told.row, columns));
    }
    const char* label = "no row  ";
    for (const std::string& reason : told.judged.reasons) {
        text += line(label, reason);
        label = "        ";
    }
    if (!told.judged.reasons.empty()) {
        for (const log_line& logged : told.log) {
            text += line("logged  ", logged.text);
        }
    }
    for (const odd_value& odd : told.odd) {
        text += line("wrong   ", oddity_text(odd) + ": " + stored_text(odd, told));
    }
    for (const unused_setting& unused : told.unused) {
        text += line("unused  ", unused_text(unused));
    }
    return text;
}

// What is to be said of one component of a group.
struct told_component {
    const explanation* told;
    std::vector<std::string> reasons;  // said once where they are those of the whole group
    std::vector<std::string> details;
};

// Components about which the same is to be said.
struct told_group {
    std::string said;
    std::vector<told_component> components;

    bool has_common_reasons() const {
        return std::all_of(components.begin(), components.end(),
                           [this](const told_component& each) { return each.reasons == components.front().reasons; });
    }
};

class groups {
public:
    void add(const std::string& said, told_component component) {
        auto found =
            std::find_if(all_.begin(), all_.end(), [&said](const told_group& each) { return each.said == said; });
        if (found == all_.end()) {
            found = all_.insert(all_.end(), {said, {}});
        }
        found->components.push_back(std::move(component));
    }

    std::string text(const std::string& label, const text_style& style) const {
        std::string text;
        for (const told_group& each : all_) {
            const std::string count = counted(each.components.size(), "component", "components");
            std::string heading = label;
            heading.append(", ").append(count).append(": ").append(printable(each.said));
            text += heading_text(heading, style) + '\n';
            const bool common = each.has_common_reasons();
            text += common ? lines("", each.components.front().reasons) : "";
            for (const told_component& component : each.components) {
                text += line("* ", component.told->title) + line("  at      ", component.told->path);
                text += (common ? "" : lines("  ", component.reasons)) + lines("  ", component.details);
            }
            text += '\n';
        }
        return text;
    }

private:
    static std::string lines(const char* indent, const std::vector<std::string>& texts) {
        std::string all;
        for (const std::string& each : texts) {
            all += line(indent, each);
        }
        return all;
    }

    std::vector<told_group> all_;
};

std::vector<std::string> logged_lines(const explanation& told) {
    std::vector<std::string> lines;
    std::transform(told.log.begin(), told.log.end(), std::back_inserter(lines),
                   [](const log_line& logged) { return "logged  " + logged.text; });
    return lines;
}

// What the loader knows of the component's settings and has no column for.
void add_settings_without_effect(groups& idle, const explanation& told) {
    std::map<std::string, std::string> settings_by_rule;
    for (const unused_setting& unused : told.unused) {
        if (const char* rule = rule_against(unused)) {
            const bool has_one_group = unused.why == idleness::not_persistent;
            std::string& settings = settings_by_rule[rule];
            settings += settings.empty() ? "" : ", ";
            settings += has_one_group ? in_quotes(unused.name) : quoted_in(unused.name, unused.group);
        }
    }
    for (const auto& [rule, settings] : settings_by_rule) {
        idle.add(rule, {&told, {}, {"unused  " + settings}});
    }
}

}  // namespace

std::string problems_text(const std::vector<explanation>& explanations, const text_style& style) {
    groups left_out;
    groups wrong;
    groups idle;
    for (const explanation& told : explanations) {
        if (!told.judged.reasons.empty()) {
            left_out.add(told.judged.reasons.front(),
                         {&told, {told.judged.reasons.begin() + 1, told.judged.reasons.end()}, logged_lines(told)});
        }
        for (const odd_value& odd : told.odd) {
            groups& among = odd.what == oddity::replaced ? idle : wrong;
            among.add(oddity_text(odd), {&told, {}, {"value   " + stored_text(odd, told)}});
        }
        for (const unused_setting& unused : told.unused) {
            if (unused.similar != nullptr) {
                wrong.add("no column takes " + unused_text(unused), {&told, {}, {}});
            }
        }
        add_settings_without_effect(idle, told);
    }
    return left_out.text("No row", style) + wrong.text("Looks wrong", style) + idle.text("No effect", style) +
           totals_text(explanations);
}

std::string components_text(const std::vector<explanation>& explanations, row_columns columns,
                            const text_style& style) {
    std::string text;
    for (const explanation& told : explanations) {
        text += (text.empty() ? "" : "\n") + component_text(told, columns, style);
    }
    return text;
}

std::string totals_text(const std::vector<explanation>& explanations) {
    const explanation_counts counts = count(explanations);
    const std::string odd = counts.odd_values == 0
                                ? ""
                                : "; " + counted(counts.odd_values, "value that looks", "values that look") + " wrong";
    return counted(counts.components, "component", "components") +
           " to record: " + counted(counts.rows, "row", "rows") + ", " +
           std::to_string(counts.components - counts.rows) + " without a row; " +
           counted(counts.unused_settings, "setting", "settings") + " that no column takes" + odd + '\n';
}
