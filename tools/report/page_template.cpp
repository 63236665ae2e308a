// SPDX-License-Identifier: Apache-2.0

#include "report/page_template.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "console/utf8.h"
#include "report/embedded_files.h"
#include "rows/value_json.h"

using nlohmann::json;

struct page_template::node {
    node_type type;
    std::string text;  // the text itself, or a name
    nodes inner;       // of a section
};

namespace {

constexpr std::string_view opening = "{{";
constexpr std::string_view closing = "}}";

bool is_alone_on_its_line(std::string_view line) {
    return line.substr(0, opening.size()) == opening && line.find(closing) == line.size() - closing.size() &&
           std::string_view("#^/>").find(line[opening.size()]) != std::string_view::npos;
}

std::string without_layout(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        result += line;
        if (end == std::string_view::npos) {
            break;
        }
        if (!line.empty() && !is_alone_on_its_line(line)) {
            result += '\n';
        }
        text.remove_prefix(end + 1);
    }
    return result;
}

const json* find_value(const std::vector<const json*>& scopes, const std::string& name) {
    if (name == ".") {
        return scopes.back();
    }
    for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope) {
        const auto found = (*scope)->find(name);  // none in what is no object
        if (found != (*scope)->end()) {
            return &*found;
        }
    }
    return nullptr;
}

bool is_something(const json* value) {
    if (value == nullptr || value->is_null() || value->is_boolean()) {
        return value != nullptr && value->is_boolean() && value->get<bool>();
    }
    return value->is_string() ? !value->get_ref<const std::string&>().empty() : !value->is_array() || !value->empty();
}

std::string text_of(const json* value) {
    if (value == nullptr || value->is_null()) {
        return "";
    }
    return value->is_string() ? value->get_ref<const std::string&>() : value->dump();
}

struct escape {
    char character;
    const char* reference;
};

constexpr escape escapes[] = {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};

const char* reference_for(char character) {
    for (const escape& each : escapes) {
        if (each.character == character) {
            return each.reference;
        }
    }
    return nullptr;
}

const page_template& template_of(const std::string& file) {
    static std::map<std::string, page_template> read;
    auto found = read.find(file);
    if (found == read.end()) {
        found = read.emplace(file, page_template(embedded_file(file))).first;
    }
    return found->second;
}

}  // namespace

// Reads the text from its start to its end.
class page_template::reader {
public:
    explicit reader(std::string_view text) : rest_(text) {}

    // Until the section of that name ends; empty for the whole text.
    nodes read(const std::string& section = "") {
        nodes all;
        while (!rest_.empty()) {
            const std::size_t start = std::min(rest_.find(opening), rest_.size());
            all.push_back({node_type::text, std::string(rest_.substr(0, start)), {}});
            rest_.remove_prefix(start);
            if (rest_.empty()) {
                break;
            }
            const std::string tag = take_tag();
            if (tag == '/' + section) {
                break;
            }
            all.push_back(node_for(tag));
        }
        return all;
    }

private:
    std::string take_tag() {
        rest_.remove_prefix(opening.size());
        const std::size_t length = rest_.find(closing);
        std::string tag(rest_.substr(0, length));
        rest_.remove_prefix(length + closing.size());
        if (tag.front() == '{') {
            rest_.remove_prefix(1);
        }
        return tag;
    }

    node node_for(const std::string& tag) {
        const std::string name = tag.substr(1);
        switch (tag.front()) {
            case '{':
                return {node_type::markup, name, {}};
            case '#':
                return {node_type::section, name, read(name)};
            case '^':
                return {node_type::inverted, name, read(name)};
            case '>':
                return {node_type::file, name, {}};
            default:
                return {node_type::value, tag, {}};
        }
    }

    std::string_view rest_;
};

page_template::page_template(std::string_view text) {
    const std::string compact = without_layout(text);
    nodes_ = std::make_shared<const nodes>(reader(compact).read());
}

void page_template::fill(const json& values, std::string& out) const {
    scopes all = {&values};
    fill(*nodes_, all, out);
}

void page_template::fill(const nodes& filled, scopes& values, std::string& out) {
    for (const node& each : filled) {
        switch (each.type) {
            case node_type::text:
                out += each.text;
                break;
            case node_type::value:
                out += markup_of(text_of(find_value(values, each.text)));
                break;
            case node_type::markup:
                out += text_of(find_value(values, each.text));
                break;
            case node_type::section:
                fill_section(each, values, out);
                break;
            case node_type::inverted:
                if (!is_something(find_value(values, each.text))) {
                    fill(each.inner, values, out);
                }
                break;
            case node_type::file:
                fill(*template_of(each.text).nodes_, values, out);
                break;
        }
    }
}

void page_template::fill_section(const node& section, scopes& values, std::string& out) {
    const json* value = find_value(values, section.text);
    if (!is_something(value)) {
        return;
    }
    if (!value->is_array()) {
        values.push_back(value);
        fill(section.inner, values, out);
        values.pop_back();
        return;
    }
    for (const json& each : *value) {
        values.push_back(&each);
        fill(section.inner, values, out);
        values.pop_back();
    }
}

std::string filled(std::string_view file, const json& values) {
    std::string out;
    template_of(std::string(file)).fill(values, out);
    return out;
}

std::string markup_of(const std::string& text) {
    std::string markup;
    for (const char character : printable(text)) {
        const char* reference = reference_for(character);
        if (reference == nullptr) {
            markup += character;
        } else {
            markup += reference;
        }
    }
    return markup;
}

std::string script_of(const nlohmann::ordered_json& document) {
    std::string script;
    for (const char character : json_line(document)) {
        if (character == '<') {
            script += "\\u003c";
        } else {
            script += character;
        }
    }
    return script;
}
