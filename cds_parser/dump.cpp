// SPDX-License-Identifier: Apache-2.0

// Writes the element tree as indented text. The text is compared byte for byte, so nothing is escaped or trimmed.

#include <cstdint>
#include <ostream>
#include <string>

#include "zebdb_cds_parser/child_slot_group.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/document.h"
#include "zebdb_cds_parser/element.h"
#include "zebdb_cds_parser/setting_group.h"
#include "zebdb_cds_parser/setting_node.h"

namespace cds_parser {
namespace {

constexpr unsigned operator_indent_width = 2;

// Whoever reads along sees every line as soon as it is whole.
std::ostream& end_line(std::ostream& out) {
    return out << '\n' << std::flush;
}

// Writes lines at the depth of one element.
class line_writer {
public:
    line_writer(std::ostream& out, std::uint32_t level, unsigned indent_width)
        : out_(out), level_(level), indent_width_(indent_width) {
        out_.width(0);  // the caller's would pad the first text that is written
    }

    void opening(const char* tag) { indent(level_) << '<' << tag << '>' << end_line; }
    void closing(const char* tag) { indent(level_) << "</" << tag << '>' << end_line; }
    void leaf(const char* tag, const std::string& text) {
        indent(level_ + 1) << '<' << tag << '>' << text << "</" << tag << '>' << end_line;
    }

private:
    std::ostream& indent(std::uint32_t level) {
        for (std::uint64_t blank = std::uint64_t{level} * indent_width_; blank > 0 && out_; --blank) {
            out_.put(' ');
        }
        return out_;
    }

    std::ostream& out_;
    std::uint32_t level_;
    unsigned indent_width_;
};

template <class Container, class Children>
void dump_container(const Container& container, const Children& children, std::ostream& out, unsigned indent_width) {
    line_writer lines(out, container.level, indent_width);
    lines.opening(Container::TAG);
    for (const auto& entry : container.setting_groups) {
        entry.second->dump(out, indent_width);
    }
    for (const element* child : children) {
        if (child != nullptr) {
            child->dump(out, indent_width);
        }
    }
    lines.closing(Container::TAG);
}

}  // namespace

void setting_node::dump(std::ostream& out, unsigned int indent_width) const {
    line_writer lines(out, level, indent_width);
    lines.opening(TAG);
    lines.leaf("name", name);
    lines.leaf(map_value_type(value_type), value);
    lines.closing(TAG);
}

void setting_group::dump(std::ostream& out, unsigned int indent_width) const {
    line_writer lines(out, level, indent_width);
    lines.opening(TAG);
    lines.leaf("name", name);
    for (const auto& entry : settings) {
        entry.second->dump(out, indent_width);
    }
    lines.closing(TAG);
}

void child_slot_group::dump(std::ostream& out, unsigned int indent_width) const {
    dump_container(*this, components, out, indent_width);
}

void component::dump(std::ostream& out, unsigned int indent_width) const {
    dump_container(*this, child_slot_groups, out, indent_width);
}

void document::dump(std::ostream& out, unsigned int indent_width) const {
    out.width(0);
    out << R"(<?xml version="1.0" encoding="UTF-8"?>)" << end_line;
    root.dump(out, indent_width);
}

std::ostream& operator<<(std::ostream& out, const document& doc) {
    doc.dump(out, operator_indent_width);
    return out;
}

}  // namespace cds_parser
