// SPDX-License-Identifier: Apache-2.0

#include "report/reported_tree.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "explanation/explanation.h"
#include "report/reported_inventory.h"
#include "rows/fields.h"
#include "rows/kinds.h"
#include "rows/table.h"
#include "topology/pci_topology.h"
#include "topology/topology_phrases.h"

namespace {

std::string segment_of(const std::string& address) {
    return "Segment " + address.substr(0, address.find(':'));
}

// Puts the groups together: first as lists of what is below what, by places among the parts and what was left out.
class tree_builder {
public:
    tree_builder(const reported_inventory& reported, const std::vector<pci_part>& parts)
        : reported_(reported), parts_(parts) {
        for (std::size_t i = 0; i < parts.size(); ++i) {
            all_.push_back({i, 0, address_text(parts[i]), 0, {}});
        }
    }

    std::vector<tree_group> build() {
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            if (const auto parent = parts_[i].parent) {
                all_[*parent].below.push_back(i);
            } else {
                group_of(node_text(parts_[i].row), group_text(parts_[i])).roots.push_back(i);
            }
        }
        add_left_out();
        for (const pending_group& group : groups_) {
            finished_.push_back({group.server, group.segment, {}, {}});
            for (const std::size_t root : group.roots) {
                finish(root);
            }
        }
        return std::move(finished_);
    }

private:
    struct pending_group {
        std::string server;
        std::string segment;
        std::vector<std::size_t> roots;
    };

    pending_group& group_of(const std::string& server, const std::string& segment) {
        const auto found = std::find_if(groups_.begin(), groups_.end(), [&](const pending_group& each) {
            return each.server == server && each.segment == segment;
        });
        return found == groups_.end() ? *groups_.insert(groups_.end(), {server, segment, {}}) : *found;
    }

    // What stands behind no bridge belongs to the server that the row before it belongs to.
    void add_left_out() {
        const std::map<std::int64_t, std::size_t> bridges = bridges_by_id();
        const std::vector<explanation>& explanations = reported_.explanations;
        std::string server = parts_.empty() ? "No node" : node_text(parts_.front().row);
        for (std::size_t i = 0; i < explanations.size(); ++i) {
            const explanation& told = explanations[i];
            if (told.row) {
                inventory_table row = *told.row;
                forget_absent_values(row);
                server = node_text(inventory_row(row, 0));
            }
            if (!is_in_tree(told)) {
                continue;
            }
            const auto bridge = bridges.find(told.bridge);
            insert(bridge == bridges.end() ? group_of(server, segment_of(told.name)).roots : all_[bridge->second].below,
                   {std::nullopt, i, told.name, 0, {}});
        }
    }

    std::map<std::int64_t, std::size_t> bridges_by_id() const {
        std::map<std::int64_t, std::size_t> bridges;
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            const auto id = number_in(parts_[i].row["Id"]);
            if (parts_[i].is_bridge && id) {
                bridges.emplace(static_cast<std::int64_t>(*id), i);
            }
        }
        return bridges;
    }

    // Among the others by address. `siblings` may be a part of `all_`.
    void insert(std::vector<std::size_t>& siblings, tree_node node) {
        const auto behind = std::find_if(siblings.begin(), siblings.end(), [this, &node](std::size_t sibling) {
            return all_[sibling].address > node.address;
        });
        siblings.insert(behind, all_.size());
        all_.push_back(std::move(node));
    }

    // Bridges may be nested as deep as a database has rows, so that this does not call itself.
    void finish(std::size_t root) {
        tree_group& group = finished_.back();
        group.roots.push_back(group.nodes.size());
        struct waiting {
            std::size_t node;
            std::optional<std::size_t> parent;
        };
        std::vector<waiting> left = {{root, std::nullopt}};
        while (!left.empty()) {
            const waiting next = left.back();
            left.pop_back();
            const std::size_t place = group.nodes.size();
            tree_node node = all_[next.node];
            for (auto below = node.below.rbegin(); below != node.below.rend(); ++below) {
                left.push_back({*below, place});
            }
            node.below.clear();
            if (next.parent) {
                node.depth = group.nodes[*next.parent].depth + 1;
                group.nodes[*next.parent].below.push_back(place);
            }
            group.nodes.push_back(std::move(node));
        }
    }

    const reported_inventory& reported_;
    const std::vector<pci_part>& parts_;
    std::vector<tree_node> all_;
    std::vector<pending_group> groups_;
    std::vector<tree_group> finished_;
};

}  // namespace

bool is_in_tree(const explanation& told) {
    return is_left_out(told) && told.recorded_by != nullptr &&
           (told.recorded_by->kind == &kinds::bridges || told.recorded_by->kind == &kinds::devices);
}

std::vector<tree_group> reported_tree(const reported_inventory& reported, const std::vector<pci_part>& parts) {
    return tree_builder(reported, parts).build();
}
