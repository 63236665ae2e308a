// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "explanation/explanation.h"
#include "report/sections.h"
#include "tools/report/reported.h"

using testing::ElementsAre;

namespace {

explanation component_told(const std::string& name, const std::vector<std::string>& groups, fate became,
                           const std::vector<std::string>& reasons) {
    explanation told = {};
    told.path = "/" + name;
    told.title = "part " + name;
    told.name = name;
    told.groups = groups;
    told.judged.became = became;
    told.judged.reasons = reasons;
    return told;
}

explanation refused(const std::string& name, const std::vector<std::string>& reasons) {
    return component_told(name, {"cpu_info"}, fate::refused, reasons);
}

std::string groups_of_reasons(const std::vector<explanation>& explanations) {
    const std::string section = left_out_section(reported_components(explanations));
    return part_of_page(section, "<details", "</section>");
}

std::vector<std::string> titles_of_reasons(const std::vector<explanation>& explanations) {
    return found_in(groups_of_reasons(explanations), "<h3>([^<]*)</h3>");
}

}  // namespace

TEST(LeftOutSection, SaysTheReasonOfAllOnce) {
    EXPECT_EQ(groups_of_reasons({refused("A1", {"why", "more"}), refused("A2", {"why"})}),
              "<details class=\"group\" open>\n"
              "<summary><h3>2 components left no row</h3> <code>refused</code></summary>\n"
              "<p class=\"reason\">why</p>\n"
              "<ul class=\"members\">\n"
              "<li class=\"item left-out part\" id=\"A1\" data-kind=\"component\" data-place=\"A1\" "
              "data-reason=\"refused\"><span class=\"value\">part A1</span>\n"
              "<code class=\"path\">/A1</code>\n<p>more</p>\n</li>\n"
              "<li class=\"item left-out part\" id=\"A2\" data-kind=\"component\" data-place=\"A2\" "
              "data-reason=\"refused\"><span class=\"value\">part A2</span>\n"
              "<code class=\"path\">/A2</code>\n</li>\n"
              "</ul>\n</details>\n");
}

TEST(LeftOutSection, SaysDifferentReasonsOfEach) {
    const std::string groups = groups_of_reasons({refused("A1", {"one"}), refused("A2", {"other"}), refused("A3", {})});
    EXPECT_EQ(part_of_page(groups, "</summary>", "<ul"), "</summary>\n\n");
    EXPECT_THAT(found_in(groups, "<p>([^<]*)</p>"), ElementsAre("one", "other"));
}

TEST(LeftOutSection, SaysNoReasonWhereThereIsNone) {
    EXPECT_EQ(part_of_page(groups_of_reasons({refused("A1", {}), refused("A2", {})}), "</summary>", "<li"),
              "</summary>\n\n<ul class=\"members\">\n");
}

TEST(LeftOutSection, CountsComponentsByReason) {
    const explanation fan = component_told("F1", {}, fate::no_known_group, {"no known group"});
    explanation lost = refused("A1", {});
    lost.rule = omission::nothing_known;
    EXPECT_THAT(titles_of_reasons({fan}), ElementsAre("1 component has a group that is not recorded"));
    EXPECT_THAT(titles_of_reasons({fan, refused("A2", {}), fan, lost}),
                ElementsAre("2 components have a group that is not recorded", "1 component left no row",
                            "1 has no setting that is known"));
}

TEST(LeftOutSection, TellsOfNoComponentsWithoutReason) {
    explanation recorded = refused("A1", {});
    recorded.row = inventory_table{&kinds::processors, {"NodeIndex"}, {{inventory_value()}}};
    EXPECT_EQ(left_out_section(reported_components({recorded})),
              "<section id=\"section-left-out\" aria-label=\"Left out\">\n<h2>Left out</h2>\n"
              "<p class=\"none\">Nothing was left out.</p>\n</section>\n");
}

TEST(LeftOutSection, SaysThatADatabaseHoldsOnlyWhatWasRecorded) {
    EXPECT_EQ(left_out_section(reported_rows({})),
              "<section id=\"section-left-out\" aria-label=\"Left out\">\n<h2>Left out</h2>\n"
              "<p class=\"none\">What was left out is not known: this is a database, which holds only what was "
              "recorded. A page about the CDS file tells.</p>\n</section>\n");
}
