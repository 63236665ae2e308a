// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "tools/topology/topology_test.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::size_t count_of(const std::string& part, const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

// Of a tree of one function, what is said of that function.
std::string part_of(const std::string& tree) {
    const std::size_t begin = tree.rfind("- ") + 2;
    return tree.substr(begin, tree.find_last_not_of('\n') + 1 - begin);
}

}  // namespace

class TopologyText : public topology_test {};

TEST_F(TopologyText, HasNodesAndTheirSegmentsAndWhatIsBehindTheirBridges) {
    add_bridge(1, -1, 0, 0x1C, "SndBusNo = 0x3A, SubBusNo = 0x3F");
    add_bridge(2, 1, 0x3A, 2, "SndBusNo = 0x3B, SubBusNo = 0x3B");
    add_bridge(3, -1, 0, 0, "NodeIndex = 2, SndBusNo = 1, SubBusNo = 1");
    add_function(1, 2, 0x3B, 0);
    add_function(2, 2, 0x3B, 0, "FunctionNo = 1");
    add_function(3, 1, 0x3A, 3);
    add_function(4, -1, 0, 0x1F, "FunctionNo = 7");
    add_function(5, -1, 0, 0x2, "SegNo = 1");
    EXPECT_EQ(tree(),
              "Node 1\n"
              "+- Segment 0000\n"
              "|  +- 0000:00:1c.0 bridge [3a-3f]\n"
              "|  |  +- 0000:3a:02.0 bridge [3b-3b]\n"
              "|  |  |  +- 0000:3b:00.0 function\n"
              "|  |  |  `- 0000:3b:00.1 function\n"
              "|  |  `- 0000:3a:03.0 function\n"
              "|  `- 0000:00:1f.7 function\n"
              "`- Segment 0001\n"
              "   `- 0001:00:02.0 function\n"
              "Node 2\n"
              "`- Segment 0000\n"
              "   `- 0000:00:00.0 bridge [01-01]\n");
}

TEST_F(TopologyText, IsInTheOrderOfAddressesAndNotOfRows) {
    add_function(1, -1, 2, 0);
    add_function(2, -1, 1, 3);
    add_bridge(7, -1, 1, 2);
    add_function(3, -1, 1, 1, "FunctionNo = 2");
    add_function(4, 7, 0x10, 9);
    add_function(5, 7, 0x10, 8);
    add_function(6, -1, 1, 1, "FunctionNo = 1");
    add_function(8, -1, 0, 0, "SegNo = 2");
    add_function(9, -1, 9, 9, "SegNo = 1");
    EXPECT_EQ(tree(),
              "Node 1\n"
              "+- Segment 0000\n"
              "|  +- 0000:01:01.1 function\n"
              "|  +- 0000:01:01.2 function\n"
              "|  +- 0000:01:02.0 bridge\n"
              "|  |  +- 0000:10:08.0 function\n"
              "|  |  `- 0000:10:09.0 function\n"
              "|  +- 0000:01:03.0 function\n"
              "|  `- 0000:02:00.0 function\n"
              "+- Segment 0001\n"
              "|  `- 0001:09:09.0 function\n"
              "`- Segment 0002\n"
              "   `- 0002:00:00.0 function\n");
}

TEST_F(TopologyText, NamesWhatHasNoNode) {
    add_function(1, -1, 1, 0, "NodeIndex = 4294967295");
    EXPECT_THAT(tree(), StartsWith("No node\n`- Segment 0000\n"));
}

TEST_F(TopologyText, OfAnEmptyInventorySaysSo) {
    EXPECT_EQ(tree(), "No PCI bridges or functions.\n");
}

TEST_F(TopologyText, ShowsAPartWithoutAnAddress) {
    add_bridge(1, -1, 0, 0, "SegNo = NULL, BusNo = NULL, DevNo = NULL, FunNo = NULL");
    EXPECT_EQ(tree(), "Node 1\n`- Segment -\n   `- -:-:-.- bridge\n");
}

TEST_F(TopologyText, ShowsEveryRowOfOneAddress) {
    add_bridge(1, -1, 0, 1);
    add_bridge(2, -1, 0, 1);
    add_function(1, -1, 0, 1);
    add_function(2, 2, 1, 0);
    EXPECT_THAT(tree(), EndsWith("   +- 0000:00:01.0 bridge\n"
                                 "   +- 0000:00:01.0 bridge\n"
                                 "   |  `- 0000:01:00.0 function\n"
                                 "   `- 0000:00:01.0 function\n"));
}

TEST_F(TopologyText, ShowsWhatIsBehindAMissingBridgeUnderAHeading) {
    add_bridge(1, -1, 0, 1);
    add_bridge(2, 99, 5, 0);
    add_function(1, 2, 6, 0);
    add_function(2, 98, 4, 0);
    add_function(3, -1, 3, 0, "NodeIndex = 2");
    EXPECT_EQ(tree(),
              "Node 1\n"
              "+- Segment 0000\n"
              "|  `- 0000:00:01.0 bridge\n"
              "`- Behind a missing bridge\n"
              "   +- 0000:04:00.0 function\n"
              "   `- 0000:05:00.0 bridge\n"
              "      `- 0000:06:00.0 function\n"
              "Node 2\n"
              "`- Segment 0000\n"
              "   `- 0000:03:00.0 function\n");
}

TEST_F(TopologyText, TakesABridgeThatIsNamedByTextForMissing) {
    add_function(1, -1, 0, 1, "BridgeId = 'first'");
    EXPECT_THAT(tree(), HasSubstr("`- Behind a missing bridge\n   `- 0000:00:01.0 function\n"));
}

TEST_F(TopologyText, TakesARowThatNamesNoBridgeForARoot) {
    add_function(1, -1, 0, 1, "BridgeId = NULL");
    EXPECT_THAT(tree(), HasSubstr("`- Segment 0000\n   `- 0000:00:01.0 function\n"));
}

TEST_F(TopologyText, CutsACircleOfBridgesAtItsFirst) {
    add_bridge(1, 3, 3, 0);
    add_bridge(2, 1, 1, 0);
    add_bridge(3, 2, 2, 0);
    add_bridge(4, 2, 0, 0);
    add_function(1, 4, 9, 0);
    EXPECT_EQ(tree(),
              "Node 1\n"
              "`- Bridges in a circle\n"
              "   `- 0000:01:00.0 bridge\n"
              "      +- 0000:00:00.0 bridge\n"
              "      |  `- 0000:09:00.0 function\n"
              "      `- 0000:02:00.0 bridge\n"
              "         `- 0000:03:00.0 bridge\n");
}

TEST_F(TopologyText, CutsABridgeThatIsBehindItself) {
    add_bridge(1, 1, 3, 0);
    add_function(1, 1, 4, 0);
    EXPECT_EQ(tree(),
              "Node 1\n"
              "`- Bridges in a circle\n"
              "   `- 0000:03:00.0 bridge\n"
              "      `- 0000:04:00.0 function\n");
}

TEST_F(TopologyText, ShowsTheFirstOfTwoBridgesOfOneIdWithWhatIsBehindThem) {
    execute("DROP TABLE PCIBridge; CREATE TABLE PCIBridge (Id, ParentId, NodeIndex, SegNo, BusNo, DevNo, FunNo)");
    add_bridge(1, -1, 2, 0);
    add_bridge(1, -1, 1, 0);
    add_function(1, 1, 3, 0);
    EXPECT_THAT(tree(), EndsWith("   +- 0000:01:00.0 bridge\n"
                                 "   |  `- 0000:03:00.0 function\n"
                                 "   `- 0000:02:00.0 bridge\n"));
}

TEST_F(TopologyText, ShowsRowsOfTablesThatLackColumns) {
    execute("DROP TABLE PCIBridge; CREATE TABLE PCIBridge (BusNo); INSERT INTO PCIBridge VALUES (7)");
    EXPECT_EQ(tree(), "No node\n`- Segment -\n   `- -:07:-.- bridge\n");
}

TEST_F(TopologyText, IndentsNoFurtherThanBusesGo) {
    execute(
        "INSERT INTO PCIBridge (Id, ParentId, NodeIndex, SegNo, BusNo, DevNo, FunNo) "
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 10000) "
        "SELECT i, CASE i WHEN 1 THEN -1 ELSE i - 1 END, 1, 0, i, 0, 0 FROM n");
    const std::string shown = tree();
    EXPECT_EQ(count_of("bridge\n", shown), 10'000u);
    const std::string indent(256 * 3, ' ');
    EXPECT_EQ(count_of("\n" + indent + "+- 0000:100:00.0 bridge\n", shown), 1u);
    EXPECT_EQ(count_of("\n" + indent + "`- behind 9999 bridges: 0000:2710:00.0 bridge\n", shown), 1u);
}

TEST_F(TopologyText, ShowsTheSlotAndItsDesignation) {
    add_function(1, -1, 0, 1, "SlotNo = 5");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function, slot 5");
    execute("UPDATE PCIs SET SlotDesignation = '  PCIe Slot 5 '");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function, slot 5, PCIe Slot 5");
    execute("UPDATE PCIs SET SlotNo = 4294967295");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function, PCIe Slot 5");
}

TEST_F(TopologyText, LeavesOutDesignationsThatSayNothing) {
    add_function(1, -1, 0, 1, "SlotDesignation = ' '");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function");
}

TEST_F(TopologyText, KeepsControlCharactersFromTheTerminal) {
    add_function(1, -1, 0, 1, "SlotDesignation = 'a' || char(27) || '[2J' || char(10) || char(155) || 'b'");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function, a\\x1b[2J\\n\\x9bb");
}

TEST_F(TopologyText, NamesTheKindOfAFunction) {
    add_function(1, -1, 0, 1, "ClsCode = 0x010802");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 storage (NVMe)");
    execute("UPDATE PCIs SET ClsCode = 0x090000");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 input");
}

TEST_F(TopologyText, NamesAClassByItsCodeWhereThatHasNoName) {
    add_function(1, -1, 0, 1, "ClsCode = 0x7F0000");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 class 0x7f0000");
    execute("UPDATE PCIs SET ClsCode = -1");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 class 0xffffffffffffffff");
}

TEST_F(TopologyText, HasNoKindWithoutAClassCode) {
    add_function(1, -1, 0, 1, "ClsCode = 'storage'");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function");
}

TEST_F(TopologyText, HasBoxesAndBoldHeadingsAndLinesThatFitWhereTheStyleHas) {
    add_bridge(1, -1, 0, 1);
    add_function(1, 1, 1, 0, "SlotDesignation = 'xxxxxxxxxxxxxxxxxxxx'");
    add_function(2, 1, 1, 1);
    add_function(3, -1, 2, 0);
    text_style style;
    style.has_control_sequences = true;
    style.utf8 = true;
    style.width = 40;
    EXPECT_EQ(tree(style),
              "\033[1mNode 1\033[0m\n"
              "└─ Segment 0000\n"
              "   ├─ 0000:00:01.0 bridge\n"
              "   │  ├─ 0000:01:00.0 function,\n"
              "   │  │     xxxxxxxxxxxxxxxxxxxx\n"
              "   │  └─ 0000:01:01.0 function\n"
              "   └─ 0000:02:00.0 function\n");
}

TEST_F(TopologyText, FillsALineToItsEnd) {
    add_function(1, -1, 0, 1, "SlotDesignation = 'aaaa bbbb'");
    text_style style;
    style.width = 6 + 32;
    EXPECT_THAT(tree(style), EndsWith("   `- 0000:00:01.0 function, aaaa bbbb\n"));
    style.width -= 1;
    EXPECT_THAT(tree(style), EndsWith("   `- 0000:00:01.0 function, aaaa\n"
                                      "         bbbb\n"));
}

TEST_F(TopologyText, LeavesALittleRoomToADeepTree) {
    add_bridge(1, -1, 0, 1, "VendorId = 0x8086, DevId = 0x1573");
    add_function(1, 1, 1, 0, "SlotDesignation = 'xxxxxxxxxxxxxxxxxxxxxxxxx'");
    text_style style;
    style.width = 10;
    EXPECT_EQ(tree(style),
              "Node 1\n"
              "`- Segment 0000\n"
              "   `- 0000:00:01.0 bridge:\n"
              "      |  [8086:1573]\n"
              "      `- 0000:01:00.0\n"
              "            function,\n"
              "            xxxxxxxxxxxxxxxxxxxx\n"
              "            xxxxx\n");
}

TEST_F(TopologyText, LeadsToWhatIsBehindABridgeOfSeveralLines) {
    add_bridge(1, -1, 0, 1, "VendorId = 0x8086, DevId = 0x1573");
    add_bridge(2, -1, 0, 2, "VendorId = 0x8086, DevId = 0x1573");
    add_function(1, 1, 1, 0);
    text_style style;
    style.width = 32;
    EXPECT_EQ(tree(style),
              "Node 1\n"
              "`- Segment 0000\n"
              "   +- 0000:00:01.0 bridge:\n"
              "   |  |  [8086:1573]\n"
              "   |  `- 0000:01:00.0 function\n"
              "   `- 0000:00:02.0 bridge:\n"
              "         [8086:1573]\n");
}
