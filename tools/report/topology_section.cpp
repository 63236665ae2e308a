// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "report/page_template.h"
#include "report/part_json.h"
#include "report/reported_inventory.h"
#include "report/reported_tree.h"
#include "report/sections.h"
#include "report/topology_picture.h"
#include "rows/kinds.h"
#include "topology/pci_names.h"
#include "topology/pci_topology.h"
#include "topology/topology_phrases.h"

using nlohmann::json;

namespace {

// Groups beyond these are folded.
constexpr std::size_t most_open_groups = 8;

// Readers of HTML nest a few hundred elements; servers have less than ten bridges behind one another.
constexpr std::size_t deepest_nested = 100;

json recorded_json(const reported_inventory& reported, const pci_part& part) {
    json told = part_json(reported, part.row);
    told["purpose"] = purpose_text(part);
    told["name"] = name_text(part);
    told["slot"] = slot_text(part);
    return told;
}

json node_json(const reported_inventory& reported, const std::vector<pci_part>& parts, const tree_node& node) {
    json told = node.part ? recorded_json(reported, parts[*node.part]) : left_out_json(reported, node.explanation);
    told["left_out"] = !node.part.has_value();
    told["leads_on"] = !node.below.empty();
    if (node.depth > deepest_nested) {
        told["depth"] = node.depth;
    }
    return told;
}

// Each node stands before what is below it, so that from the last one on every node is complete when it is moved to
// where it belongs. What is deeper than is nested stands beside what it is below.
json nested(const reported_inventory& reported, const std::vector<pci_part>& parts, const tree_group& group) {
    std::vector<json> nodes;
    nodes.reserve(group.nodes.size());
    std::vector<std::size_t> owners(group.nodes.size());
    for (const tree_node& node : group.nodes) {
        nodes.push_back(node_json(reported, parts, node));
    }
    for (std::size_t i = 0; i < group.nodes.size(); ++i) {
        for (const std::size_t below : group.nodes[i].below) {
            owners[below] = group.nodes[i].depth < deepest_nested ? i : owners[i];
        }
    }
    for (std::size_t i = group.nodes.size(); i-- > 0;) {
        json& below = nodes[i]["nodes"];
        std::reverse(below.begin(), below.end());
        if (group.nodes[i].depth != 0) {
            nodes[owners[i]]["nodes"].push_back(std::move(nodes[i]));
        }
    }
    json roots = json::array();
    for (const std::size_t root : group.roots) {
        roots.push_back(std::move(nodes[root]));
    }
    return roots;
}

}  // namespace

std::string topology_section(const reported_inventory& reported) {
    pci_names names;
    const std::vector<pci_part> parts =
        pci_topology(reported.labelled_table(kinds::bridges), reported.labelled_table(kinds::devices), names);
    const std::vector<tree_group> groups = reported_tree(reported, parts);
    std::string all;
    for (const tree_group& group : groups) {
        all += filled("topology_group.html", {{"title", group.server + ", " + group.segment},
                                              {"count", counted(group.nodes.size(), "part", "parts")},
                                              {"open", groups.size() <= most_open_groups},
                                              {"picture", topology_picture(reported, parts, group)},
                                              {"nodes", nested(reported, parts, group)}});
    }
    return filled("topology.html", {{"groups", all}});
}
