// SPDX-License-Identifier: Apache-2.0

#include "report/topology_picture.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "console/utf8.h"
#include "explanation/explanation.h"
#include "report/anchors.h"
#include "report/change_marks.h"
#include "report/page_template.h"
#include "report/part_json.h"
#include "report/reported_inventory.h"
#include "report/reported_tree.h"
#include "rows/pci_label_columns.h"
#include "rows/table.h"
#include "topology/pci_topology.h"
#include "topology/topology_phrases.h"

using nlohmann::json;

namespace {

// In pixels. A part stands on the line of the first one below it.
constexpr std::size_t line_height = 26;
constexpr std::size_t box_width = 84;
constexpr std::size_t box_height = 20;
constexpr std::size_t column_width = 112;
constexpr std::size_t margin = 8;
constexpr std::size_t character_width = 7;

constexpr std::size_t most_characters = 92;
constexpr std::size_t deepest_drawn = 24;  // further right nobody looks; servers have less than ten

std::string shortened(const std::string& text) {
    const std::string start = first_characters(text, most_characters);
    return start.size() == text.size() ? text : start + "\u2026";
}

// Without the segment, which the picture has at its left.
std::string short_address(const std::string& address) {
    return address.substr(address.find(':') + 1);
}

// Colours tell a few kinds apart; the words beside them tell all.
std::string family_of(const pci_part& part) {
    const std::string* kind = text_in(part.row[pci_label_columns::kind]);
    const std::string base = kind == nullptr ? "" : kind->substr(0, kind->find(" ("));
    for (const char* family : {"storage", "network", "display"}) {
        if (base == family) {
            return family;
        }
    }
    return base == "accelerator" || base == "coprocessor" || base == "processor" ? "compute" : "other";
}

class drawing {
public:
    drawing(const reported_inventory& reported, const std::vector<pci_part>& parts, const tree_group& group)
        : reported_(reported), parts_(parts), group_(group), lines_(group.nodes.size()) {}

    json picture() {
        place_on_lines();
        json nodes = json::array();
        json edges = json::array();
        for (std::size_t i = 0; i < group_.nodes.size(); ++i) {
            nodes.push_back(node_json(i));
            add_edges(edges, i);
        }
        for (const std::size_t root : group_.roots) {
            edges.push_back(edge_json(margin + box_width, middle(0), margin + column_width, middle(lines_[root])));
        }
        const std::size_t height = line_count_ * line_height + 2 * margin;
        return {{"width", width_},
                {"height", height},
                {"segment", group_.segment.substr(group_.segment.rfind(' ') + 1)},
                {"title", group_.server + ", " + group_.segment},
                {"margin", margin},
                {"root_y", middle(0) - box_height / 2},
                {"root_text_y", middle(0) + 4},
                {"root_text_x", margin + box_width / 2},
                {"box_width", box_width},
                {"box_height", box_height},
                {"nodes", nodes},
                {"edges", edges}};
    }

private:
    // Each node stands before what is below it.
    void place_on_lines() {
        for (std::size_t i = 0; i < group_.nodes.size(); ++i) {
            lines_[i] = line_count_;
            if (group_.nodes[i].below.empty()) {
                ++line_count_;
            }
        }
    }

    static std::size_t middle(std::size_t line) { return margin + line * line_height + line_height / 2; }

    static std::size_t left_of(const tree_node& node) {
        return margin + (std::min(node.depth, deepest_drawn) + 1) * column_width;
    }

    json node_json(std::size_t place) {
        const tree_node& node = group_.nodes[place];
        json drawn = node.part ? part_node(parts_[*node.part]) : left_out_node(node.explanation);
        const std::string label = node.below.empty() ? shortened(drawn["text"]) : "";
        const std::size_t left = left_of(node);
        const std::size_t middle_y = middle(lines_[place]);
        drawn["short"] = short_address(node.address);
        drawn["x"] = left;
        drawn["y"] = middle_y - box_height / 2;
        drawn["text_x"] = left + box_width / 2;
        drawn["text_y"] = middle_y + 4;
        drawn["label_x"] = left + box_width + 8;
        drawn["label"] = label;
        width_ = std::max(width_, left + box_width + length_of(label) * character_width + 4 * margin);
        return drawn;
    }

    json part_node(const pci_part& part) const {
        json drawn = {{"family", part.is_bridge ? "bridge" : family_of(part)},
                      {"href", fragment_of(reported_.names.of(part.row).id)},
                      {"text", part.is_bridge ? "nothing behind it" : description_text(part)},
                      {"full", address_text(part) + ' ' + shortened(description_text(part))}};
        if (const change_mark* mark = reported_.marks.of(part.row)) {
            drawn["change"] = mark_json(*mark);
            drawn["text"] = std::string(mark->mark) + ' ' + mark->word + ": " + drawn["text"].get<std::string>();
        }
        return drawn;
    }

    json left_out_node(std::size_t place) const {
        const explanation& told = reported_.explanations[place];
        return {{"family", "left-out"},
                {"href", fragment_of(reported_.names.of_explanation(place).id)},
                {"text", why_text(told)},
                {"full", shortened(told.title) + ", " + why_text(told)}};
    }

    void add_edges(json& edges, std::size_t place) const {
        const tree_node& node = group_.nodes[place];
        for (const std::size_t below : node.below) {
            if (left_of(group_.nodes[below]) > left_of(node)) {
                edges.push_back(edge_json(left_of(node) + box_width, middle(lines_[place]),
                                          left_of(group_.nodes[below]), middle(lines_[below])));
            }
        }
    }

    static json edge_json(std::size_t from_x, std::size_t from_y, std::size_t to_x, std::size_t to_y) {
        return {{"from_x", from_x},
                {"from_y", from_y},
                {"bend", to_x - (column_width - box_width) / 2},
                {"to_x", to_x},
                {"to_y", to_y}};
    }

    const reported_inventory& reported_;
    const std::vector<pci_part>& parts_;
    const tree_group& group_;
    std::vector<std::size_t> lines_;  // by node
    std::size_t line_count_ = 0;
    std::size_t width_ = 0;
};

}  // namespace

std::string topology_picture(const reported_inventory& reported, const std::vector<pci_part>& parts,
                             const tree_group& group) {
    return filled("topology.svg", drawing(reported, parts, group).picture());
}
