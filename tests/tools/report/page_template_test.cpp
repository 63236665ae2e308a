// SPDX-License-Identifier: Apache-2.0

#include "report/page_template.h"

#include <gtest/gtest.h>

using nlohmann::json;

namespace {

std::string filled_text(const std::string& text, const json& values) {
    std::string out;
    page_template(text).fill(values, out);
    return out;
}

}  // namespace

TEST(PageTemplate, PutsTextsAndNumbersInTheirPlaces) {
    EXPECT_EQ(filled_text("<p>{{name}}: {{count}}</p>", {{"name", "slots"}, {"count", 24}}), "<p>slots: 24</p>");
}

TEST(PageTemplate, LeavesEmptyWhatIsNotThere) {
    EXPECT_EQ(filled_text("[{{name}}{{none}}]", {{"none", nullptr}}), "[]");
}

TEST(PageTemplate, EscapesTextButNotMarkup) {
    const json values = {{"name", "<b title=\"'&\">"}};
    EXPECT_EQ(filled_text("{{name}}", values), "&lt;b title=&quot;&#39;&amp;&quot;&gt;");
    EXPECT_EQ(filled_text("{{{name}}}", values), "<b title=\"'&\">");
}

TEST(PageTemplate, TakesNoTemplateFromAText) {
    EXPECT_EQ(filled_text("{{name}}", {{"name", "{{other}}"}, {"other", "x"}}), "{{other}}");
}

TEST(PageTemplate, RepeatsASectionForEachElementOfAList) {
    EXPECT_EQ(filled_text("{{#rows}}<{{place}}>{{/rows}}", {{"rows", {{{"place", "A1"}}, {{"place", "A2"}}}}}),
              "<A1><A2>");
    EXPECT_EQ(filled_text("{{#rows}}{{.}};{{/rows}}", {{"rows", {"one", "two"}}}), "one;two;");
    EXPECT_EQ(filled_text("{{#rows}}x{{/rows}}", {{"rows", json::array()}}), "");
}

TEST(PageTemplate, ShowsASectionWhereThereIsSomething) {
    const char* text = "{{#it}}yes{{/it}}{{^it}}no{{/it}}";
    for (const json& something : {json(true), json("text"), json(0), json::object()}) {
        EXPECT_EQ(filled_text(text, {{"it", something}}), "yes") << something;
    }
    for (const json& nothing : {json(false), json(""), json(), json::array()}) {
        EXPECT_EQ(filled_text(text, {{"it", nothing}}), "no") << nothing;
    }
}

TEST(PageTemplate, LooksForNamesInwardFirst) {
    EXPECT_EQ(filled_text("{{#in}}{{a}}{{b}}{{/in}}", {{"a", "1"}, {"b", "2"}, {"in", {{"a", "3"}}}}), "32");
}

TEST(PageTemplate, LeavesItsOwnLayoutOut) {
    EXPECT_EQ(filled_text("<ul>\n  {{#rows}}\n    <li>{{.}}</li>\n  {{/rows}}\n\n</ul>\n", {{"rows", {1, 2}}}),
              "<ul>\n<li>1</li>\n<li>2</li>\n</ul>\n");
}

TEST(PageTemplate, LooksForNamesInsideOnlyThere) {
    const json values = {{"a", "1"}, {"in", {{"a", "2"}}}, {"all", {{{"a", "3"}}, {{"b", "4"}}}}};
    EXPECT_EQ(filled_text("{{#in}}{{a}}{{/in}}{{a}}", values), "21");
    EXPECT_EQ(filled_text("{{#all}}{{a}}{{b}};{{/all}}{{a}}{{b}}", values), "3;14;1");
}

TEST(PageTemplate, LooksForNamesAroundATextToo) {
    EXPECT_EQ(filled_text("{{#in}}{{.}}{{a}}{{/in}}", {{"a", "1"}, {"in", "text"}}), "text1");
}

TEST(PageTemplate, KeepsLinesThatHoldMoreThanATag) {
    EXPECT_EQ(filled_text("{{#a}}x{{/a}}\n{{a}}\n{{{a}}}\n{{^b}}\n   \n{{/b}}\nend", {{"a", "1"}}), "x\n1\n1\nend");
    EXPECT_EQ(filled_text("{{#a}}x\ny{{/a}}\n", {{"a", "1"}}), "x\ny\n");
    EXPECT_EQ(filled_text("  {{>values.html}}\nend", {}), "<dl class=\"values\"></dl>\nend");
}

TEST(PageTemplate, KeepsLinesThatEndWithATag) {
    EXPECT_EQ(filled_text("<b>{{a}}\nend", {{"a", "1"}}), "<b>1\nend");
}

TEST(PageTemplate, TakesNoNameFromItsText) {
    EXPECT_EQ(filled_text("a{{b}}", {{"a", "1"}, {"b", "2"}}), "a2");
}

TEST(PageTemplate, LeavesEmptySectionsOfWhatIsNotThere) {
    EXPECT_EQ(filled_text("[{{#none}}x{{/none}}{{^none}}y{{/none}}]", json::object()), "[y]");
}

TEST(PageTemplate, TakesOtherFilesIn) {
    const json values = {{"all", {{{"column", "MemSize"}, {"text", "32 GiB"}, {"raw", "32768"}}}}};
    EXPECT_EQ(filled_text("{{>values.html}}", values), filled("values.html", values));
    EXPECT_NE(filled("values.html", values).find("<dt>MemSize</dt><dd>32 GiB <small>32768</small></dd>"),
              std::string::npos);
}

TEST(MarkupOfAText, IsOneLineWithoutControls) {
    EXPECT_EQ(markup_of(std::string("a\0b\n\x1b[1m\xff", 9)), "a\\x00b\\n\\x1b[1m\xEF\xBF\xBD");
    EXPECT_EQ(markup_of("\u202e"), "\\u202e");
}

TEST(ScriptOfADocument, IsEndedByNoString) {
    const std::string script = script_of({{"a", "</script><!--"}});
    EXPECT_EQ(script.find('<'), std::string::npos);
    EXPECT_EQ(json::parse(script)["a"], "</script><!--");
}
