// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "explanation/explanation.h"
#include "report/sections.h"
#include "tools/report/reported.h"
#include "tools/values.h"

using testing::ElementsAre;

namespace {

// The tile of that title, from its value on.
std::string tile_of(const reported_inventory& reported, const std::string& title) {
    const std::string start = "<span class=\"tile-title\">" + title + "</span> ";
    const std::string tile = part_of_page(summary_section(reported), start, "\n</ul></li>");
    return tile.empty() ? "" : tile.substr(start.size());
}

std::vector<std::string> lines_of(const reported_inventory& reported, const std::string& title) {
    return found_in(tile_of(reported, title), "<li>([^<]*)</li>");
}

inventory_table rows_at(const inventory_kind& kind, const char* column, const std::vector<inventory_value>& places) {
    inventory_table table{&kind, {column}, {}};
    for (const inventory_value& place : places) {
        table.rows.push_back({place});
    }
    return table;
}

explanation not_recorded(const std::vector<std::string>& groups, fate became) {
    explanation told = {};
    told.groups = groups;
    told.judged.became = became;
    return told;
}

}  // namespace

TEST(SummarySection, CountsProcessorsByModel) {
    const inventory_table processors{&kinds::processors,
                                     {"Version", "CoreEnabled", "ThreadCount"},
                                     {{"Slow", number(4), number(8)},
                                      {" Fast ", number(16), number(32)},
                                      {"Fast", number(16), absent},
                                      {absent, absent, number(2)}}};
    EXPECT_EQ(tile_of(reported_rows({processors}), "Processors"),
              "<strong>4</strong></a>\n<ul>\n<li>2 \u00d7 Fast</li>\n<li>1 \u00d7 Slow</li>\n<li>1 \u00d7 </li>\n"
              "<li>36 cores, 42 threads</li>");
}

TEST(SummarySection, CountsModulesBySizeAndType) {
    const inventory_table slots{&kinds::memory,
                                {"MemSize", "MemType"},
                                {{number(1024), number(26)},
                                 {absent, number(26)},
                                 {number(2048), number(34)},
                                 {number(2048), number(34)},
                                 {number(0), number(26)}}};
    EXPECT_EQ(tile_of(reported_rows({slots}), "Memory"),
              "<strong>5 GiB</strong></a>\n<ul>\n<li>2 \u00d7 2 GiB DDR5</li>\n<li>1 \u00d7 1 GiB DDR4</li>\n"
              "<li>3 of 5 slots filled</li>");
}

TEST(SummarySection, CountsSlotsThatAreEmpty) {
    EXPECT_EQ(tile_of(reported_rows({rows_at(kinds::memory, "DevLocator", {"A1"})}), "Memory"),
              "<strong>0 MiB</strong></a>\n<ul>\n<li>0 of 1 slot filled</li>");
}

TEST(SummarySection, CountsFunctionsByBaseClass) {
    const inventory_table functions =
        rows_at(kinds::devices, "ClsCode",
                {number(0x010601), absent, number(0x110100), number(0x010802), number(0x120000), number(0x118000)});
    EXPECT_EQ(tile_of(reported_rows({functions, rows_at(kinds::bridges, "BusNo", {number(1)})}), "PCI functions"),
              "<strong>6</strong></a>\n<ul>\n"
              "<li>2 storage, 2 signal processing, 1 other, 1 accelerator</li>\n<li>behind 1 bridge</li>");
    EXPECT_THAT(lines_of(reported_rows({functions}), "PCI functions").back(), "behind 0 bridges");
    EXPECT_THAT(lines_of(reported_rows({}), "PCI functions"), ElementsAre("behind 0 bridges"));
}

TEST(SummarySection, CountsWhatWasLeftOutByReason) {
    explanation lost = not_recorded({"cpu_info"}, fate::incomplete);
    lost.rule = omission::no_address;
    const explanation refused = not_recorded({"cpu_info"}, fate::refused);
    const explanation fan = not_recorded({}, fate::no_known_group);
    const reported_inventory reported = reported_components({refused, lost, fan, lost});
    EXPECT_EQ(tile_of(reported, "Left out"),
              "<strong>3</strong></a>\n<ul>\n<li>1 refused</li>\n<li>2 have no address</li>");
    EXPECT_THAT(found_in(summary_section(reported), "<li class=\"tile( warn)?\"><a href=\"#section-left-out\">"),
                ElementsAre(" warn"));
}

TEST(SummarySection, WarnsOfNothingWhereNothingWasLeftOut) {
    EXPECT_THAT(found_in(summary_section(reported_components({})), "<li class=\"tile([^\"]*)\"><a href=\"#([^\"]*)\">"),
                ElementsAre(" | section-memory", " | section-processors", " | section-pci", " | section-left-out"));
}

TEST(SummarySection, OfADatabaseHasNothingAboutWhatWasLeftOut) {
    EXPECT_THAT(found_in(summary_section(reported_rows({})), "<a href=\"#([^\"]*)\">"),
                ElementsAre("section-memory", "section-processors", "section-pci"));
}

TEST(SummarySection, CountsChangesByKind) {
    const std::vector<inventory_table> some = {
        rows_at(kinds::processors, "Socket", {"P1", "P2"}), rows_at(kinds::memory, "DevLocator", {"A1"}),
        rows_at(kinds::bridges, "BusNo", {number(1), number(2)}), rows_at(kinds::devices, "BusNo", {number(3)})};
    const reported_inventory reported = reported_rows_since({}, some);
    EXPECT_EQ(tile_of(reported, "Changes"),
              "<strong>6</strong></a>\n<ul>\n<li>2 processors added</li>\n"
              "<li>1 memory slot added</li>\n<li>2 PCI bridges added</li>\n"
              "<li>1 PCI function added</li>");
    EXPECT_THAT(lines_of(reported_rows_since(some, {}), "Changes"),
                ElementsAre("2 processors removed", "1 memory slot removed", "2 PCI bridges removed",
                            "1 PCI function removed"));
}

TEST(SummarySection, MarksChangesWhereThereAreSome) {
    const std::string changes = "<li class=\"tile( news)?\"><a href=\"#section-changes\">";
    const std::vector<inventory_table> some = {rows_at(kinds::processors, "Socket", {"P1"})};
    EXPECT_THAT(found_in(summary_section(reported_rows_since({}, some)), changes), ElementsAre(" news"));
    EXPECT_THAT(found_in(summary_section(reported_rows_since(some, some)), changes), ElementsAre(""));
}

TEST(VerdictOfAPage, OfADatabaseCountsParts) {
    const std::string unknown =
        " recorded; what was left out is not known, because a database holds only what was recorded";
    EXPECT_EQ(verdict_text(reported_rows({rows_at(kinds::processors, "Socket", {"P1"})})), "1 part" + unknown);
    EXPECT_EQ(verdict_text(reported_rows(
                  {rows_at(kinds::processors, "Socket", {"P1"}), rows_at(kinds::memory, "DevLocator", {"A1", "A2"})})),
              "3 parts" + unknown);
}

TEST(VerdictOfAPage, OfAFileCountsComponents) {
    explanation recorded = not_recorded({"cpu_info"}, fate::recorded);
    recorded.row = inventory_table{&kinds::processors, {}, {{}}};
    const explanation refused = not_recorded({"cpu_info"}, fate::refused);
    EXPECT_EQ(verdict_text(reported_components({recorded})), "1 of 1 component recorded, none left out");
    EXPECT_EQ(verdict_text(reported_components({recorded, refused, refused})),
              "1 of 3 components recorded, 2 left out");
}

TEST(VerdictOfAPage, CountsChanges) {
    const std::vector<inventory_table> one = {rows_at(kinds::processors, "Socket", {"P1"})};
    const std::vector<inventory_table> three = {rows_at(kinds::processors, "Socket", {"P1", "P2", "P3"})};
    const auto changes_since = [&one](const std::vector<inventory_table>& older) {
        const std::string verdict = verdict_text(reported_rows_since(older, one));
        return verdict.substr(verdict.rfind(", "));
    };
    EXPECT_EQ(changes_since(one), ", no change since older.db");
    EXPECT_EQ(changes_since({}), ", 1 change since older.db");
    EXPECT_EQ(changes_since(three), ", 2 changes since older.db");
}

TEST(VerdictOfAPage, NamesStandardInput) {
    reported_inventory reported = reported_rows_since({}, {});
    reported.older->source.file.name = "-";
    const std::string verdict = verdict_text(reported);
    EXPECT_EQ(verdict.substr(verdict.rfind(", ")), ", no change since standard input");
}
