// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "report/sections.h"
#include "tools/report/reported.h"

using testing::ElementsAre;

namespace {

std::vector<std::string> unused_in(const std::string& section) {
    return found_in(section,
                    "<tr class=\"item\"><th scope=\"row\" class=\"value\">([^<]*)</th><td>([^<]*)</td>"
                    "<td class=\"number\">([^<]*)</td><td>([^<]*)</td></tr>");
}

}  // namespace

TEST(SettingsSection, CountsTheComponentsOfASetting) {
    const std::string section = section_of_page(
        page_about(processor("CPU 1", {integer("Colour", "1"), text("Core Cont", "2")}) +
                   processor("CPU 2", {integer("Colour", "1")}) + module("A1", "S1", {integer("Colour", "1")})),
        "settings");
    EXPECT_THAT(unused_in(section),
                ElementsAre("Colour | cpu_info | 2 | ", "Core Cont | cpu_info | 1 | &#39;Core Count&#39; may be meant",
                            "Colour | memory_info | 1 | "));
    EXPECT_THAT(found_in(section, "<h3>([^<]*)</h3>"), ElementsAre("4 settings that no column takes"));
}

TEST(SettingsSection, TellsTheRuleAgainstASetting) {
    const std::string section = section_of_page(page_about(module("A1", "S1", {hex("Capacity", "1")})), "settings");
    EXPECT_THAT(unused_in(section),
                ElementsAre("Capacity | memory_info | 1 | only a persistent module, which has bit 12 of &#39;Type "
                            "Detail&#39; and the &#39;Manufacturer&#39; Intel, has columns for some settings"));
}

TEST(SettingsSection, SaysThatColumnsTakeAll) {
    EXPECT_EQ(section_of_page(page_about(processor("CPU 1")), "settings"),
              "<section id=\"section-settings\" aria-label=\"Settings\">\n<h2>Settings that nothing takes</h2>\n"
              "<p class=\"none\">A column takes every setting.</p>\n");
}

TEST(SettingsSection, TellsOfOddValues) {
    const std::string section =
        section_of_page(page_about(processor("CPU 1", {text("Core Count", "many")})), "settings");
    EXPECT_EQ(section,
              "<section id=\"section-settings\" aria-label=\"Settings\">\n"
              "<h2>Settings that nothing takes</h2>\n"
              "<p class=\"none\">A column takes every setting.</p>\n"
              "<details class=\"group\">\n<summary><h3>Values that look wrong or do not count</h3></summary>\n"
              "<ul class=\"members\">\n"
              "<li class=\"item\"><span class=\"value\">processor &#39;CPU 1&#39;</span>: &#39;Core Count&#39; "
              "in cpu_info is text where a number is taken<br><span class=\"muted value\">text_value "
              "&#39;many&#39; is stored as 0 in CoreCount</span></li>\n</ul>\n</details>\n");
}

TEST(SettingsSection, SaysThatADatabaseHoldsNone) {
    EXPECT_EQ(settings_section(reported_rows({})),
              "<section id=\"section-settings\" aria-label=\"Settings\">\n<h2>Settings that nothing takes</h2>\n"
              "<p class=\"none\">A database does not hold them.</p>\n</section>\n");
}
