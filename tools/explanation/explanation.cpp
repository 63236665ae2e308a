// SPDX-License-Identifier: Apache-2.0

#include "explanation/explanation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <zebdb_cds_parser.h>

#include "cds_parser/dispatch.h"
#include "explanation/component_loader.h"
#include "explanation/component_title.h"
#include "explanation/counterfactual.h"
#include "explanation/left_out.h"
#include "explanation/left_out_phrases.h"
#include "explanation/odd_values.h"
#include "explanation/unused_settings.h"
#include "explanation/verdict.h"
#include "rows/pci_address_text.h"
#include "rows/redaction.h"
#include "rows/row_text.h"

namespace {

using cds_parser::child_slot_group;
using cds_parser::component;

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

// What keeps a component without a row is said there.
void forget_blamed(explanation& told) {
    const std::vector<std::string>& blamed = told.judged.missing;
    told.odd.erase(std::remove_if(told.odd.begin(), told.odd.end(),
                                  [&blamed](const odd_value& odd) {
                                      return std::find(blamed.begin(), blamed.end(), odd.setting) != blamed.end();
                                  }),
                   told.odd.end());
}

std::string obstacle_below(const explanation& told) {
    return "the loader does not look below the " + told.title +
           (told.judged.became == fate::failed ? ", whose row could not be written"
                                               : "; elsewhere this would have been looked at");
}

// Which components are told about, and whether all that there is to tell.
enum class scope { left_out, hardware, everything };

// Goes through a tree as the loader does, and on where the loader stops.
class walk {
public:
    walk(const std::vector<left_out_element>& left_out, scope told_about, component_loader& loader,
         counterfactual& doubts)
        : scope_(told_about), loader_(loader), doubts_(doubts) {
        loader_.begin_again();
        for (const left_out_element& each : left_out) {
            left_out_.emplace(each.element, &each);
            first_of_cards_.insert(each.first_of_card);
        }
    }

    void visit(component& visited, const std::string& path, std::int64_t parent) {
        if (is_left_alone(visited)) {
            go_below(visited, path,
                     [&](component& child, const std::string& child_path) { visit(child, child_path, parent); });
            return;
        }
        const loaded_component loaded = loader_.load(visited, parent);
        explanation told = begin(visited, path, parent);
        told.row = loaded.row;
        told.log = loaded.log;
        told.judged = verdict_on(visited, told.recorded_by, loaded, find_left_out(visited), doubts_);
        look_at_settings(told, visited);
        const std::string obstacle = obstacle_below(told);
        add(std::move(told));
        go_below(visited, path, [&](component& child, const std::string& child_path) {
            if (loaded.parent_below) {
                visit(child, child_path, *loaded.parent_below);
            } else {
                pass_over(child, child_path, parent, obstacle);
            }
        });
    }

    std::vector<explanation> take() { return std::move(explanations_); }

private:
    // Whether nothing that is told depends on what the loader makes of it.
    bool is_left_alone(const component& visited) const {
        return scope_ == scope::left_out && find_left_out(visited) == nullptr && first_of_cards_.count(&visited) == 0 &&
               cds_parser::main_server_info(visited) == nullptr &&
               (cds_parser::is_walked(cds_parser::kind_of(visited)) || visited.child_slot_groups.empty());
    }

    void look_at_settings(explanation& told, const component& explained) const {
        if (scope_ != scope::left_out) {
            told.unused = unused_settings(explained, told.recorded_by, told.row);
            told.odd = odd_values(explained, told.recorded_by, told.row);
            forget_blamed(told);
        }
    }

    void pass_over(component& passed, const std::string& path, std::int64_t parent, const std::string& obstacle) {
        explanation told = begin(passed, path, parent);
        told.judged = verdict_on_unreached(passed, !told.groups.empty(), obstacle);
        look_at_settings(told, passed);
        add(std::move(told));
        go_below(passed, path, [&](component& child, const std::string& child_path) {
            pass_over(child, child_path, parent, obstacle);
        });
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
        told.bridge = component_loader::no_parent;
        told.title = child_slot_group::TAG;
        told.rule = rule_against(slots);
        told.groups = recorded_groups(slots);
        told.judged = verdict_on_slots(told.groups);
        if (!told.groups.empty()) {
            add(std::move(told));
        }
    }

    explanation begin(const component& explained, const std::string& path, std::int64_t parent) {
        explanation told = {};
        told.path = path;
        told.bridge = parent;
        told.rule = rule_against(explained);
        told.groups = recorded_groups(explained);
        told.recorded_by = told.groups.empty() ? nullptr : doubts_.recorded_group(explained);
        told.title = component_title(explained, told.recorded_by);
        told.name = component_name(explained, told.recorded_by);
        return told;
    }

    // Null when there is no rule that keeps it out.
    const left_out_element* find_left_out(const cds_parser::element& element) const {
        const auto found = left_out_.find(&element);
        return found == left_out_.end() ? nullptr : found->second;
    }

    std::optional<omission> rule_against(const cds_parser::element& element) const {
        const left_out_element* found = find_left_out(element);
        return found == nullptr ? std::nullopt : std::optional(found->why);
    }

    bool is_told_about(const explanation& told) const {
        switch (scope_) {
            case scope::left_out:
                return is_left_out(told);
            case scope::hardware:
                return !told.groups.empty() || !told.judged.reasons.empty();
            case scope::everything:
                break;
        }
        return true;
    }

    void add(explanation told) {
        if (is_told_about(told)) {
            explanations_.push_back(std::move(told));
        }
    }

    std::map<const cds_parser::element*, const left_out_element*> left_out_;
    std::set<const component*> first_of_cards_;
    scope scope_;
    component_loader& loader_;
    counterfactual& doubts_;
    std::vector<explanation> explanations_;
};

std::vector<explanation> explain(cds_parser::document& document, const std::vector<left_out_element>& left_out,
                                 scope told_about, component_loader& loader, counterfactual& doubts) {
    walk explained(left_out, told_about, loader, doubts);
    explained.visit(document.root, std::string("/") + component::TAG, component_loader::no_parent);
    return explained.take();
}

}  // namespace

std::vector<explanation> explanations_of(cds_parser::document& document, bool all) {
    component_loader loader;
    counterfactual doubts;
    return explain(document, left_out_of(document), all ? scope::everything : scope::hardware, loader, doubts);
}

std::vector<left_out_component> left_out_components(cds_parser::document& document, component_loader& loader,
                                                    counterfactual& doubts) {
    const std::vector<left_out_element> left_out = left_out_of(document);
    std::vector<left_out_component> components;
    if (!left_out.empty()) {
        for (explanation& told : explain(document, left_out, scope::left_out, loader, doubts)) {
            components.push_back(
                {std::move(told.path), std::move(told.title), code_of(told), std::move(told.judged.reasons)});
        }
    }
    return components;
}

bool is_left_out(const explanation& told) {
    return !told.groups.empty() && !told.row;
}

const char* code_of(const explanation& told) {
    return told.rule ? name_of(*told.rule) : name_of(told.judged.became);
}

void redact(explanation& told) {
    if (told.row) {
        redact(*told.row);
    }
}

bool is_named(const explanation& told, const std::string& name) {
    return name == told.path || (!told.name.empty() && (stripped(name) == stripped(told.name) ||
                                                        full_pci_address(name) == std::optional(told.name)));
}

explanation_counts count(const std::vector<explanation>& explanations) {
    explanation_counts counts;
    for (const explanation& told : explanations) {
        counts.components += told.groups.empty() ? 0 : 1;
        counts.rows += told.row ? 1 : 0;
        counts.unused_settings += told.unused.size();
        counts.odd_values += static_cast<std::size_t>(std::count_if(
            told.odd.begin(), told.odd.end(), [](const odd_value& each) { return each.what != oddity::replaced; }));
    }
    return counts;
}
