// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "report/sections.h"
#include "tools/report/reported.h"
#include "tools/values.h"

using testing::ElementsAre;

namespace {

const std::string unknown_socket = "Slots whose names do not tell the socket";

inventory_table slots_named(const std::vector<std::string>& locators, const std::string& bank = "") {
    inventory_table table{&kinds::memory, {"NodeIndex", "DevLocator", "BankLocator"}, {}};
    for (const std::string& locator : locators) {
        table.rows.push_back({number(1), locator, bank});
    }
    return table;
}

inventory_table processors_named(const std::vector<std::vector<inventory_value>>& rows) {
    return {&kinds::processors, {"NodeIndex", "Socket", "Version"}, rows};
}

std::vector<std::string> titles_in(const std::vector<inventory_table>& tables) {
    return found_in(memory_section(reported_rows(tables)), "<h3 class=\"value\">([^<]*)</h3>");
}

std::string title_of_slot(const std::string& locator, const std::string& bank = "") {
    const std::vector<std::string> titles = titles_in({slots_named({locator}, bank)});
    return titles.size() == 1 ? titles.front() : "";
}

}  // namespace

TEST(MemorySection, ReadsSocketsFromLocators) {
    EXPECT_EQ(title_of_slot("PROC  1 DIMM 3"), "PROC 1");
    EXPECT_EQ(title_of_slot("CPU_2_DIMM_A"), "CPU 2");
    EXPECT_EQ(title_of_slot("Socket3-A"), "Socket3");
    EXPECT_EQ(title_of_slot("p4-A1"), "p4");
    EXPECT_EQ(title_of_slot("Board 1/Processor 12 DIMM 1"), "Processor 12");
}

TEST(MemorySection, ReadsNoSocketFromOtherLocators) {
    EXPECT_EQ(title_of_slot("XCPU 1"), unknown_socket);
    EXPECT_EQ(title_of_slot("CPU DIMM 1"), unknown_socket);
    EXPECT_EQ(title_of_slot(""), unknown_socket);
}

TEST(MemorySection, ReadsSocketsFromTheStartOfALocatorAlone) {
    EXPECT_EQ(title_of_slot(std::string(58, 'x') + " CPU 1"), "CPU 1");
    EXPECT_EQ(title_of_slot(std::string(59, 'x') + " CPU 1"), unknown_socket);
}

TEST(MemorySection, ReadsSocketsFromBanksWhereLocatorsTellNone) {
    EXPECT_EQ(title_of_slot("DIMM A", "CPU 2 Bank 1"), "CPU 2");
    EXPECT_EQ(title_of_slot("CPU 1 DIMM A", "CPU 2 Bank 1"), "CPU 1");
}

TEST(MemorySection, NamesTheProcessorOfASocket) {
    const inventory_table processors =
        processors_named({{number(1), "CPU 1", "Fast"}, {number(1), "Cpu-2", absent}, {number(1), "CPU 3", "Slow"}});
    EXPECT_THAT(titles_in({processors, slots_named({"cpu_1_A", "CPU 2 A", "CPU 4 A"})}),
                ElementsAre("CPU 1, Fast", "Cpu-2", "CPU 4"));
}

TEST(MemorySection, NamesNoProcessorWhereSeveralHaveTheName) {
    const inventory_table processors = processors_named({{number(1), "CPU 1", "Fast"}, {number(1), "CPU1", "Slow"}});
    EXPECT_THAT(titles_in({processors, slots_named({"CPU 1 A"})}), ElementsAre("CPU 1"));
}

TEST(MemorySection, NamesTheProcessorOfTheServer) {
    const inventory_table processors = processors_named({{number(2), "CPU 1", "Slow"}, {number(1), "CPU 1", "Fast"}});
    EXPECT_THAT(titles_in({processors, slots_named({"CPU 1 A", "DIMM A"})}), ElementsAre("CPU 1, Fast", "CPU 1, Fast"));
}

TEST(MemorySection, PutsSlotsToTheSocketsOfTheirServers) {
    const inventory_table slots{&kinds::memory,
                                {"NodeIndex", "DevLocator", "MemSize"},
                                {{number(1), "P1 A", number(1024)},
                                 {number(2), "P1 A", number(2048)},
                                 {number(1), "P2 A", absent},
                                 {number(1), "P1 B", number(0)},
                                 {number(1), "P1 C", number(512)}}};
    EXPECT_THAT(found_in(memory_section(reported_rows({slots})),
                         "<h3 class=\"value\">([^<]*)</h3> <span class=\"muted\">([^<]*)</span>"),
                ElementsAre("P1 | Node 1: 1536 MiB, 2 of 3 slots filled", "P1 | Node 2: 2 GiB, 1 of 1 slot filled",
                            "P2 | Node 1: 0 MiB, 0 of 1 slot filled"));
}

TEST(MemorySection, TellsWhatIsInASlot) {
    const inventory_table slots{&kinds::memory,
                                {"DevLocator", "BankLocator", "MemSize", "MemType", "ClockSpeed", "Capacity"},
                                {{" DIMM A ", " Bank 1 ", number(1024), number(26), number(2933), number(1)},
                                 {"DIMM B", "-", absent, number(26), absent, absent}}};
    EXPECT_THAT(found_in(memory_section(reported_rows({slots})), "<summary>(<span[^]*?)</summary>"),
                ElementsAre("<span class=\"slot-name value\">DIMM A</span>\n"
                            "<strong>1 GiB</strong> <span class=\"muted value\">DDR4, persistent</span> "
                            "<span class=\"muted value\">2933 MT/s</span>\n\n"
                            "<span class=\"bank muted value\">Bank 1</span>\n\n",
                            "<span class=\"slot-name value\">DIMM B</span>\n\n"
                            "<span class=\"muted\">empty</span>\n\n\n"));
}

TEST(MemorySection, OpensUpToSixteenSockets) {
    std::vector<std::string> locators;
    locators.reserve(17);
    for (int i = 1; i <= 16; ++i) {
        locators.push_back("P" + std::to_string(i));
    }
    EXPECT_EQ(found_in(memory_section(reported_rows({slots_named(locators)})), "<details class=\"group\"( open)?>"),
              std::vector<std::string>(16, " open"));
    locators.emplace_back("P17");
    EXPECT_EQ(found_in(memory_section(reported_rows({slots_named(locators)})), "<details class=\"group\"( open)?>"),
              std::vector<std::string>(17));
}

TEST(MemorySection, SaysThatThereAreNoSlots) {
    EXPECT_EQ(memory_section(reported_rows({})),
              "<section id=\"section-memory\" aria-label=\"Memory\">\n<h2>Memory slots</h2>\n"
              "<p class=\"none\">No memory slots are recorded.</p>\n</section>\n");
}
