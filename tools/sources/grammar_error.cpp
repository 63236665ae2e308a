#include "sources/grammar_error.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <vector>

#include <libxml/tree.h>
#include <sysipc.h>
#include <sysxml.h>

namespace {

struct rule {
    std::string element;
    std::vector<std::string> children;
    bool needs_name;
};

const rule rules[] = {
    {"component", {"setting_group", "child_slot_group"}, false},
    {"child_slot_group", {"setting_group", "component"}, false},
    {"setting_group", {"name", "setting"}, true},
    {"setting",
     {"name", "text_value", "hex_value", "integer_value", "decimal_value", "bool_value", "date_value", "time_value",
      "guid_value"},
     true},
};

std::string name_of(const xmlNode* node) {
    return node->name == nullptr ? "" : reinterpret_cast<const char*>(node->name);
}

// Text that begins on a line of its own counts as absent.
bool has_text(const xmlNode* element) {
    const xmlNode* first = element->children;
    return first != nullptr && first->content != nullptr && first->content[0] != '\0' && first->content[0] != '\n';
}

bool accepts(const rule& parent, const xmlNode* child) {
    return std::find(parent.children.begin(), parent.children.end(), name_of(child)) != parent.children.end();
}

// In the order in which the library reads: a missing name shows only behind the last child.
const xmlNode* first_offender(const xmlNode* element) {
    const auto applying = std::find_if(std::begin(rules), std::end(rules),
                                       [element](const rule& each) { return each.element == name_of(element); });
    if (applying == std::end(rules)) {
        return nullptr;
    }
    bool named = false;
    for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (child->type == XML_TEXT_NODE) {
            continue;
        }
        if (!accepts(*applying, child)) {
            return child;
        }
        if (const xmlNode* deeper = first_offender(child)) {
            return deeper;
        }
        named = named || (name_of(child) == "name" && has_text(child));
    }
    return applying->needs_name && !named ? element : nullptr;
}

// libxml2 numbers no lines of CDATA sections; the nearest node before one is known.
unsigned line_of(const xmlNode* node) {
    while (node != nullptr && node->line == 0) {
        node = node->prev != nullptr ? node->prev : node->parent;
    }
    return node == nullptr ? 0 : node->line;
}

}  // namespace

std::optional<unsigned> line_of_grammar_error(const std::string& path) {
    std::ifstream file(path);
    try {
        const sysxml::parser library;
        sysxml::document document(file, false);
        const xmlNode* offender = first_offender(document.root().get());
        constexpr unsigned uncounted = std::numeric_limits<decltype(offender->line)>::max();
        const unsigned line = line_of(offender);
        if (line != 0 && line != uncounted) {
            return line;
        }
    } catch (const sysipc::exception&) {
        // It was read once; what it is now does not matter.
    }
    return std::nullopt;
}
