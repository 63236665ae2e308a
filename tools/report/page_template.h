// SPDX-License-Identifier: Apache-2.0

/// Pages with places to be filled.
#ifndef TOOLS_REPORT_PAGE_TEMPLATE_H
#define TOOLS_REPORT_PAGE_TEMPLATE_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

/// A text in which these stand for what is in an object:
///
///     {{name}}                the text or number of that name, as text of an element or a value of an attribute in
///                             double quotes
///     {{{name}}}              markup that is put there as it is
///     {{#name}}...{{/name}}   that once for each element of a list, once for an object, a text that is not empty, a
///                             number or true; names are looked for there first
///     {{^name}}...{{/name}}   that where it would not stand otherwise
///     {{>file}}               the embedded file of that name as a template; it may contain itself
///
/// What is not there is empty. Blanks at the start of lines are left out, and so are lines that only hold one of the
/// last four.
class page_template {
public:
    explicit page_template(std::string_view text);

    /// Appends the text with everything filled in.
    void fill(const nlohmann::json& values, std::string& out) const;

private:
    struct node;
    using nodes = std::vector<node>;
    using scopes = std::vector<const nlohmann::json*>;
    enum class node_type { text, value, markup, section, inverted, file };

    class reader;
    static void fill(const nodes& filled, scopes& values, std::string& out);
    static void fill_section(const node& section, scopes& values, std::string& out);

    std::shared_ptr<const nodes> nodes_;
};

/// The embedded file of that name, filled.
std::string filled(std::string_view file, const nlohmann::json& values);

/// `text`, which may hold any bytes, as text of an element or value of an attribute in double quotes: whatever is in
/// it, it is nothing but text there, on one line.
std::string markup_of(const std::string& text);

/// A JSON document as the content of a script element, which none of its strings can end.
std::string script_of(const nlohmann::ordered_json& document);

#endif
