// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "console/text_table.h"
#include "console/utf8.h"
#include "console/wrapping.h"
#include "topology/pci_topology.h"
#include "topology/topology_formats.h"
#include "topology/topology_phrases.h"

namespace {

// What stands before a line for each level above its own, depending on whether more comes at that level, and then for
// its own.
struct branches {
    const char* passing;
    const char* ended;
    const char* more;
    const char* last;
};

constexpr branches ascii_branches = {"|  ", "   ", "+- ", "`- "};
constexpr branches box_branches = {"\u2502  ", "   ", "\u251C\u2500 ", "\u2514\u2500 "};

// More bridges than this are never behind one another, because each has a bus of its own; what a damaged inventory has
// beyond is not drawn any further to the right, where nobody could read it and lines would grow without bound.
constexpr std::size_t deepest_drawn = 255;

struct tree_line {
    std::size_t level;  // 0 is a heading
    std::string text;
};

std::string line_text(const pci_part& part) {
    const std::string depth = part.depth > deepest_drawn ? "behind " + std::to_string(part.depth) + " bridges: " : "";
    return depth + address_text(part) + ' ' + description_text(part);
}

std::vector<tree_line> lines_of(const std::vector<pci_part>& parts) {
    constexpr std::size_t levels_above_roots = 2;
    std::vector<tree_line> lines;
    std::string node;
    std::string group;
    for (const pci_part& part : parts) {
        if (part.depth == 0) {
            if (node != node_text(part.row)) {
                node = node_text(part.row);
                group.clear();
                lines.push_back({0, node});
            }
            if (group != group_text(part)) {
                group = group_text(part);
                lines.push_back({1, group});
            }
        }
        lines.push_back({levels_above_roots + std::min(part.depth, deepest_drawn), line_text(part)});
    }
    return lines;
}

// For each line, whether the next one of its level comes only after a smaller level, if at all.
std::vector<bool> ends_of_branches(const std::vector<tree_line>& lines) {
    std::vector<bool> ends(lines.size());
    std::vector<bool> more;  // by level, what comes behind the line
    for (std::size_t i = lines.size(); i-- > 0;) {
        more.resize(lines[i].level + 1);
        ends[i] = !more.back();
        more.back() = true;
    }
    return ends;
}

std::string joined_branches(const std::vector<const char*>& all) {
    std::string text;
    for (const char* branch : all) {
        text += branch;
    }
    return text;
}

// In several lines, with `below` before all but the first, where one is too long; a deep tree leaves a little room.
void write_line(const std::string& text, const std::string& before, const std::string& below, const text_style& style,
                std::ostream& out) {
    constexpr std::size_t least_room = 20;
    if (style.width == 0 || length_of(before) + length_of(text) <= style.width) {
        out << before << text << '\n';
        return;
    }
    const std::size_t taken = length_of(below);
    const std::size_t room = style.width < taken + least_room ? least_room : style.width - taken;
    const char* start = before.c_str();
    for (const std::string& line : wrapped(text, room)) {
        out << start << line << '\n';
        start = below.c_str();
    }
}

}  // namespace

void write_topology_text(const std::vector<pci_part>& parts, const text_style& style, std::ostream& out) {
    if (parts.empty()) {
        out << "No PCI bridges or functions.\n";
        return;
    }
    const branches& drawn = style.utf8 ? box_branches : ascii_branches;
    const std::vector<tree_line> lines = lines_of(parts);
    const std::vector<bool> ends = ends_of_branches(lines);
    std::vector<const char*> above;  // what goes before a line for each level but that of headings
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto& [level, text] = lines[i];
        if (level == 0) {
            out << heading_text(text, style) << '\n';
            continue;
        }
        above.resize(level - 1);
        const std::string before = joined_branches(above);
        above.push_back(ends[i] ? drawn.ended : drawn.passing);
        const bool has_children = i + 1 < lines.size() && lines[i + 1].level > level;
        write_line(text, before + (ends[i] ? drawn.last : drawn.more),
                   joined_branches(above) + (has_children ? drawn.passing : drawn.ended), style, out);
    }
}
