// SPDX-License-Identifier: Apache-2.0

#include "explanation/left_out.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include <zebdb_cds_parser.h>

#include "cds_parser/dispatch.h"
#include "cds_parser/pci_keys.h"
#include "cds_parser/pci_rules.h"
#include "cds_parser/record_columns.h"

namespace {

using cds_parser::child_slot_group;
using cds_parser::component;
using cds_parser::record_kind;
using cds_parser::setting_group;

template <class Element>
bool has_known_group(const Element& element) {
    return std::any_of(std::begin(cds_parser::record_kinds), std::end(cds_parser::record_kinds),
                       [&element](const record_kind* kind) { return element.setting_groups.count(kind->group) != 0; });
}

template <std::size_t Count>
std::optional<omission> unless_any_is_known(const setting_group& group, const cds_parser::column (&columns)[Count]) {
    const bool any = std::any_of(std::begin(columns), std::end(columns), [&group](const cds_parser::column& column) {
        return group.has_setting(column.setting);
    });
    return any ? std::nullopt : std::optional(omission::nothing_known);
}

// Goes through a tree as the loader does, and on where the loader stops.
class left_out_walk {
public:
    void visit(const component& visited) {
        if (const setting_group* info = cds_parser::main_server_info(visited)) {
            node_index_ = cds_parser::node_index_in(*info);
        }
        const record_kind* kind = cds_parser::kind_of(visited);
        first_of_card_ = nullptr;
        if (const auto why = kind == nullptr ? std::nullopt : omission_of(visited, *kind)) {
            found_.push_back({&visited, *why, first_of_card_});
        }
        const bool is_walked = cds_parser::is_walked(kind);
        go_below(visited, [&](const component& child) { is_walked ? visit(child) : pass_over(child); });
    }

    std::vector<left_out_element> take() { return std::move(found_); }

private:
    void pass_over(const component& passed) {
        if (has_known_group(passed)) {
            found_.push_back({&passed, omission::not_reached, nullptr});
        }
        go_below(passed, [&](const component& child) { pass_over(child); });
    }

    template <class Visit>
    void go_below(const component& above, Visit visit_child) {
        for (const child_slot_group* group : above.child_slot_groups) {
            if (has_known_group(*group)) {
                found_.push_back({group, omission::not_reached, nullptr});
            }
            for (const component* child : group->components) {
                visit_child(*child);
            }
        }
    }

    std::optional<omission> omission_of(const component& visited, const record_kind& kind) {
        const setting_group& info = *visited.get_setting_group(kind.group);
        if (&kind == &cds_parser::processor_record) {
            return unless_any_is_known(info, cds_parser::processor_columns);
        }
        if (&kind == &cds_parser::memory_record) {
            return unless_any_is_known(info, cds_parser::memory_columns);  // the others are taken only beside these
        }
        if (&kind == &cds_parser::bridge_record) {
            return has_address(cds_parser::read_address(info)) ? std::nullopt : std::optional(omission::no_address);
        }
        return omission_of_function(visited, cds_parser::read_function(info));
    }

    std::optional<omission> omission_of_function(const component& visited, const cds_parser::pci_function& function) {
        if (!has_address(function)) {
            return omission::no_address;
        }
        if (!has_valid_location(function)) {
            return omission::no_location;
        }
        if (!is_recorded_once(function)) {
            return std::nullopt;
        }
        const auto card = cds_parser::device_key(node_index_, function.location, function.slot);
        const auto [first, is_first] = cards_.try_emplace(card, &visited);
        first_of_card_ = first->second;
        return is_first ? std::nullopt : std::optional(omission::recorded_once);
    }

    std::int32_t node_index_ = -1;
    std::map<std::uint32_t, const component*> cards_;
    const component* first_of_card_ = nullptr;
    std::vector<left_out_element> found_;
};

}  // namespace

std::vector<left_out_element> left_out_of(const cds_parser::document& document) {
    left_out_walk all;
    all.visit(document.root);
    return all.take();
}
