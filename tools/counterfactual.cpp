#include "counterfactual.h"

#include <memory>

namespace {

using cds_parser::component;
using cds_parser::setting_group;
using cds_parser::setting_node;

constexpr const char* usable_number = "1";

setting_node* new_setting(const std::string& name, const std::string& value, setting_node::setting_value_type type) {
    auto* made = new setting_node(0);
    made->name = name;
    made->value = value;
    made->value_type = type;
    return made;
}

// With every known setting, except that `as_it_is`, if there is one, is what `real` has.
setting_group* new_complete_group(const known_group& known, const setting_group& real, const known_setting* as_it_is) {
    auto* made = new setting_group(0);
    made->name = known.name;
    for (const known_setting& each : known.settings) {
        if (&each != as_it_is) {
            made->add_setting(new_setting(each.name, usable_number, setting_node::integer_value));
        } else if (const setting_node* found = real.get_setting(each.name)) {
            made->add_setting(new_setting(each.name, found->value, found->value_type));
        }
    }
    return made;
}

std::unique_ptr<component> complete_component(const component& real, const known_setting* as_it_is = nullptr) {
    auto made = std::make_unique<component>(0);
    for (const known_group& known : known_groups()) {
        if (const setting_group* group = real.get_setting_group(known.name)) {
            made->add_setting_group(new_complete_group(known, *group, as_it_is));
        }
    }
    return made;
}

}  // namespace

const known_group* counterfactual::recorded_group(const component& real) {
    const auto row = loader_.load(*complete_component(real), component_loader::no_parent).row;
    for (const known_group& known : known_groups()) {
        if (row && known.kind == row->kind) {
            return &known;
        }
    }
    return nullptr;
}

std::vector<std::string> counterfactual::settings_to_blame(const component& real, const known_group& group) {
    std::vector<std::string> blamed;
    for (const known_setting& suspect : group.settings) {
        const auto loaded = loader_.load(*complete_component(real, &suspect), component_loader::no_parent);
        if (!loaded.row && loaded.log.empty()) {
            blamed.emplace_back(suspect.name);
        }
    }
    return blamed;
}
