#include "explanation/explanation.h"

#include <algorithm>
#include <utility>

#include "console/output.h"
#include "explanation/component_title.h"
#include "explanation/counterfactual.h"
#include "explanation/known_settings.h"

namespace {

using cds_parser::child_slot_group;
using cds_parser::component;
using cds_parser::setting_group;
using cds_parser::setting_node;

// Of a component or a child slot group.
template <class Element>
std::vector<std::string> recorded_groups(const Element& element) {
    std::vector<std::string> names;
    for (const auto& [name, group] : element.setting_groups) {
        if (find_known_group(name) != nullptr) {
            names.push_back(name);
        }
    }
    return names;
}

bool takes(const inventory_table& row, const known_setting& setting) {
    return is_put(inventory_row(row, 0)[setting.column]);
}

// Whether a setting of `group` gets into the row, or would get into one.
bool is_used(const known_setting& setting, const setting_group& group, const setting_group* recorded,
             const std::optional<inventory_table>& row) {
    return &group == recorded && (!row || takes(*row, setting));
}

std::vector<unused_setting> unused_settings(const component& explained, const known_group* recorded,
                                            const std::optional<inventory_table>& row) {
    const setting_group* read = recorded == nullptr ? nullptr : explained.get_setting_group(recorded->name);
    std::vector<unused_setting> unused;
    for (const auto& [name, group] : explained.setting_groups) {
        const known_group* known = find_known_group(name);
        if (known == nullptr) {
            continue;
        }
        for (const auto& [setting, node] : group->settings) {
            const known_setting* found = find_known_setting(*known, setting);
            if (found == nullptr) {
                unused.push_back({name, setting, false, similar_setting(*known, *group, setting)});
            } else if (!is_used(*found, *group, read, row)) {
                unused.push_back({name, setting, true, nullptr});
            }
        }
    }
    return unused;
}

std::vector<std::string> texts_of(const std::vector<log_line>& lines) {
    std::vector<std::string> texts;
    std::transform(lines.begin(), lines.end(), std::back_inserter(texts),
                   [](const log_line& line) { return line.text; });
    return texts;
}

// Where the loader logged what is wrong with a value, that need not be said again.
std::string blame(const setting_group& group, const std::string& setting, bool logged) {
    const setting_node* found = group.get_setting(setting.c_str());
    if (found == nullptr) {
        return "there is no setting " + in_quotes(setting) + " in " + group.name;
    }
    const std::string value =
        std::string(setting_node::map_value_type(found->value_type)) + ' ' + in_quotes(found->value);
    return "the setting " + in_quotes(setting) + " in " + group.name +
           (logged ? " is " : " is negative, too large or no number: ") + value;
}

std::vector<std::string> misspelt_groups(const component& explained) {
    std::vector<std::string> reasons;
    for (const auto& [name, group] : explained.setting_groups) {
        if (const char* similar = similar_group(name)) {
            reasons.push_back("the loader does not record " + in_quotes(name) + "; " + in_quotes(similar) +
                              " may be meant");
        }
    }
    return reasons;
}

// Goes through a tree as the loader does, and on where the loader stops.
class walk {
public:
    explicit walk(bool all) : all_(all) {}

    void visit(component& visited, const std::string& path, std::int64_t parent) {
        const loaded_component loaded = loader_.load(visited, parent);
        explanation told = begin(visited, path);
        told.log = loaded.log;
        told.row = loaded.row;
        judge(visited, loaded.succeeded, told);
        const std::string obstacle = "the loader does not look below the " + told.title +
                                     (told.became == fate::failed ? ", whose row could not be written" : "");
        add(std::move(told));
        go_below(visited, path, [&](component& child, const std::string& child_path) {
            if (loaded.parent_below) {
                visit(child, child_path, *loaded.parent_below);
            } else {
                pass_over(child, child_path, obstacle);
            }
        });
    }

    std::vector<explanation> take() { return std::move(explanations_); }

private:
    void pass_over(component& passed, const std::string& path, const std::string& obstacle) {
        explanation told = begin(passed, path);
        told.became = told.groups.empty() ? fate::no_known_group : fate::not_reached;
        told.reasons = told.groups.empty() ? misspelt_groups(passed) : std::vector<std::string>();
        if (!told.groups.empty() || !told.reasons.empty()) {
            told.reasons.push_back(obstacle);
        }
        told.unused = unused_settings(passed, told.recorded_by, told.row);
        add(std::move(told));
        go_below(passed, path,
                 [&](component& child, const std::string& child_path) { pass_over(child, child_path, obstacle); });
    }

    template <class Visit>
    void go_below(const component& above, const std::string& path, Visit visit_child) {
        std::size_t slots = 0;
        for (const child_slot_group* group : above.child_slot_groups) {
            const std::string slots_path = path + "/child_slot_group[" + std::to_string(++slots) + ']';
            explain_slots(*group, slots_path);
            std::size_t children = 0;
            for (component* child : group->components) {
                visit_child(*child, slots_path + "/component[" + std::to_string(++children) + ']');
            }
        }
    }

    // The hardware of a group that stands one level too high is missed like any other.
    void explain_slots(const child_slot_group& slots, const std::string& path) {
        explanation told = {};
        told.path = path;
        told.title = child_slot_group::TAG;
        told.groups = recorded_groups(slots);
        told.became = fate::not_reached;
        for (const std::string& group : told.groups) {
            told.reasons.push_back("the loader looks for " + group + " in components only");
        }
        if (!told.groups.empty()) {
            add(std::move(told));
        }
    }

    explanation begin(const component& explained, const std::string& path) {
        explanation told = {};
        told.path = path;
        told.groups = recorded_groups(explained);
        told.recorded_by = told.groups.empty() ? nullptr : counterfactual_.recorded_group(explained);
        told.title = component_title(explained, told.recorded_by);
        return told;
    }

    void judge(const component& judged, bool succeeded, explanation& told) {
        told.unused = unused_settings(judged, told.recorded_by, told.row);
        if (told.recorded_by == nullptr) {
            told.became = fate::no_known_group;
            told.reasons = misspelt_groups(judged);
        } else if (told.row) {
            told.became = fate::recorded;
        } else if (!told.log.empty()) {
            judge_log(judged, succeeded, told);
        } else {
            judge_silence(judged, told);
        }
    }

    // The last of the lines that the loader logs when it refuses a component says that it did.
    void judge_log(const component& judged, bool succeeded, explanation& told) {
        told.became = succeeded ? fate::refused : fate::failed;
        if (succeeded) {
            told.reasons = {told.log.back().text};
            find_missing(judged, told);
        } else {
            told.reasons = texts_of(told.log);
        }
    }

    void judge_silence(const component& judged, explanation& told) {
        find_missing(judged, told);
        told.became = told.missing.empty() ? fate::nothing_known : fate::incomplete;
        if (told.missing.empty()) {
            told.reasons.push_back(std::string("the loader knows none of the settings in ") + told.recorded_by->name);
        }
    }

    void find_missing(const component& judged, explanation& told) {
        const bool logged = !told.log.empty();
        told.missing = counterfactual_.settings_to_blame(judged, *told.recorded_by, logged);
        for (const std::string& setting : told.missing) {
            told.reasons.push_back(blame(*judged.get_setting_group(told.recorded_by->name), setting, logged));
        }
    }

    void add(explanation told) {
        if (all_ || !told.groups.empty() || !told.reasons.empty()) {
            explanations_.push_back(std::move(told));
        }
    }

    bool all_;
    component_loader loader_;
    counterfactual counterfactual_;
    std::vector<explanation> explanations_;
};

}  // namespace

std::vector<explanation> explanations_of(cds_parser::document& document, bool all) {
    walk explained(all);
    explained.visit(document.root, std::string("/") + component::TAG, component_loader::no_parent);
    return explained.take();
}

void redact(explanation& told) {
    if (told.row) {
        redact(*told.row);
    }
}

explanation_counts count(const std::vector<explanation>& explanations) {
    explanation_counts counts;
    for (const explanation& told : explanations) {
        counts.components += told.groups.empty() ? 0 : 1;
        counts.rows += told.row ? 1 : 0;
        counts.unused_settings += told.unused.size();
    }
    return counts;
}
