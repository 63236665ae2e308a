// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "report/sections.h"
#include "tools/report/reported.h"
#include "tools/values.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using table_rows = std::vector<std::vector<inventory_value>>;

std::vector<inventory_table> modules_with(const std::vector<std::string>& columns, const table_rows& rows) {
    return {{&kinds::memory, columns, rows}};
}

// Each at a locator with a serial number.
std::vector<inventory_table> numbered_modules(const table_rows& rows) {
    return modules_with({"DevLocator", "SerialNo"}, rows);
}

std::string changes_since(const std::vector<inventory_table>& older, const std::vector<inventory_table>& given) {
    return changes_section(reported_rows_since(older, given));
}

std::vector<std::string> notes_since(const table_rows& older, const table_rows& given) {
    return found_in(changes_since(numbered_modules(older), numbered_modules(given)), "<p class=\"note\">([^<]*)</p>");
}

}  // namespace

TEST(ChangesSection, IsNoneWithoutAnOlderInventory) {
    EXPECT_EQ(changes_section(reported_rows({})), "");
}

TEST(ChangesSection, SaysThatNothingHasChanged) {
    EXPECT_EQ(changes_since({}, {}),
              "<section id=\"section-changes\" aria-label=\"Changes\">\n"
              "<h2>Changes <span class=\"since\">since <span class=\"value\">older.db</span></span></h2>\n"
              "<p class=\"none\">Nothing has changed.</p>\n</section>\n");
}

TEST(ChangesSection, NamesStandardInput) {
    const reported_inventory reported = reported_rows_since({}, {});
    reported.older->source.file.name = "-";
    EXPECT_THAT(changes_section(reported), HasSubstr("since <span class=\"value\">standard input</span>"));
}

TEST(ChangesSection, TellsOfAPartThatOnlyMoved) {
    const std::string section = changes_since(numbered_modules({{"A1", "S1"}}), numbered_modules({{"A 2", "S1"}}));
    EXPECT_EQ(part_of_page(section, "<h3>", "</section>"),
              "<h3>Memory</h3>\n<ul class=\"changes\">\n"
              "<li class=\"item change\"><span class=\"badge moved\">\u2192 moved</span>\n"
              "<a class=\"value\" href=\"#A_2\">A 2</a>\n"
              "<span class=\"from\">from <span class=\"value\">A1</span></span>\n"
              "<span class=\"muted value\">serial number S1</span>\n</li>\n</ul>\n");
}

TEST(ChangesSection, TellsValuesOldAndNew) {
    const std::vector<std::string> columns = {"DevLocator", "MemSize", "PartNo", "Extra"};
    const std::string section = changes_since(modules_with(columns, {{"A1", number(1024), absent, "x"}}),
                                              modules_with(columns, {{"A1", number(2048), "-", absent}}));
    EXPECT_THAT(found_in(section, "<tr>(<th scope=\"row\">.*)</tr>"),
                ElementsAre("<th scope=\"row\">MemSize<small>size; 0 is an empty slot</small></th>"
                            "<td class=\"old\"><del>1 GiB</del> <small>1024</small></td>"
                            "<td class=\"new\"><ins>2 GiB</ins> <small>2048</small></td>",
                            "<th scope=\"row\">PartNo<small>part number</small></th>"
                            "<td class=\"old\"><span class=\"muted\">none</span></td>"
                            "<td class=\"new\"><ins>-</ins></td>",
                            "<th scope=\"row\">Extra<small></small></th>"
                            "<td class=\"old\"><del>x</del></td>"
                            "<td class=\"new\"><span class=\"muted\">none</span></td>"));
}

TEST(ChangesSection, NotesRecordsOfOnePlace) {
    EXPECT_THAT(notes_since({{"A1", "S1"}, {"A1", "S2"}}, {{"A1", "S1"}}),
                ElementsAre("A1: 2 older records and 1 record here, matched in their order."));
    EXPECT_THAT(notes_since({}, {{"A1", "S1"}, {"A1", "S2"}}),
                ElementsAre("A1: 0 older records and 2 records here, matched in their order."));
    EXPECT_THAT(notes_since({{"A1", "S1"}, {"A1", "S2"}}, {{"A2", "S3"}}),
                ElementsAre("A1: 2 older records and 0 records here, matched in their order."));
}

TEST(ChangesSection, NotesSerialNumbersOfSeveralRecords) {
    EXPECT_THAT(
        notes_since({{"A1", "S1"}, {"A2", "S1"}}, {{"A3", "S1"}}),
        ElementsAre("One serial number in several records, so that what moved is not known: A1, A2 in the older "
                    "inventory, A3 in this one."));
}

TEST(ChangesSection, NotesOtherNodes) {
    const std::string section = changes_since(modules_with({"NodeIndex", "DevLocator"}, {{number(0), "A1"}}),
                                              modules_with({"NodeIndex", "DevLocator"}, {{number(1), "A1"}}));
    EXPECT_THAT(
        found_in(section, "<p class=\"note\">([^<]*)</p>"),
        ElementsAre("All parts stand at node 0 on one side and at node 1 on the other: nodes are not compared."));
}
