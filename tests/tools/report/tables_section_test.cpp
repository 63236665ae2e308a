// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "report/sections.h"
#include "tools/report/reported.h"
#include "tools/values.h"

namespace {

std::string table_of(const reported_inventory& reported, const std::string& title) {
    return part_of_page(tables_section(reported), "<summary><h3>" + title, "</details>");
}

}  // namespace

TEST(TablesSection, HasWhatIsListedOfEachRow) {
    const inventory_table modules{&kinds::memory,
                                  {"Id", "NodeIndex", "DevLocator", "MemSize", "PartNo", "SerialNo"},
                                  {{number(1), number(2), "A 1", number(1024), " - ", absent},
                                   {number(2), number(2), "A 2", absent, " - ", "S2"}}};
    EXPECT_EQ(table_of(reported_rows({modules}), "Memory"),
              "<summary><h3>Memory</h3> <span class=\"muted\">2</span></summary>\n"
              "<div class=\"scroll\" role=\"group\" aria-label=\"Memory\" tabindex=\"0\">\n"
              "<table class=\"sortable\">\n"
              "<thead><tr><th scope=\"col\">Place</th><th scope=\"col\" class=\"number\" title=\"row id\">Id</th>"
              "<th scope=\"col\" class=\"number\" title=\"index of the server in its enclosure\">Node</th>"
              "<th scope=\"col\" title=\"name of the slot\">Locator</th>"
              "<th scope=\"col\" class=\"number\" title=\"size; 0 is an empty slot\">Size</th>"
              "<th scope=\"col\" title=\"serial number\">Serial number</th></tr></thead>\n<tbody>\n"
              "<tr class=\"item\"><th scope=\"row\"><a class=\"value\" href=\"#A_1\">A 1</a></th>"
              "<td class=\"number\">1</td><td class=\"number\">2</td><td>A 1</td>"
              "<td class=\"number\">1 GiB <small>1024</small></td><td></td></tr>\n"
              "<tr class=\"item\"><th scope=\"row\"><a class=\"value\" href=\"#A_2\">A 2</a></th>"
              "<td class=\"number\">2</td><td class=\"number\">2</td><td>A 2</td><td></td><td>S2</td></tr>\n"
              "</tbody>\n</table>\n</div>\n");
}

TEST(TablesSection, MarksRowsThatHaveChanged) {
    const inventory_table older{&kinds::memory, {"DevLocator"}, {{"A1"}}};
    const inventory_table modules{&kinds::memory, {"DevLocator"}, {{"A1"}, {"A2"}}};
    EXPECT_EQ(part_of_page(table_of(reported_rows_since({older}, {modules}), "Memory"), "<tbody>", "</tbody>"),
              "<tbody>\n"
              "<tr class=\"item\"><th scope=\"row\"><a class=\"value\" href=\"#A1\">A1</a></th><td>A1</td></tr>\n"
              "<tr class=\"item\" data-change=\"added\"><th scope=\"row\"><a class=\"value\" href=\"#A2\">A2</a> "
              "<span class=\"badge added\">+ added</span></th><td>A2</td></tr>\n");
}

TEST(TablesSection, SaysThatThereAreNoRows) {
    EXPECT_EQ(table_of(reported_rows({}), "Bridges"),
              "<summary><h3>Bridges</h3> <span class=\"muted\">0</span></summary>\n"
              "<p class=\"none\">None are recorded.</p>\n");
}
