#include <gmock/gmock.h>

#include <algorithm>

#include "support/topology_test.h"

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

struct kind_case {
    const char* class_code;
    const char* words;
};

constexpr kind_case kinds[] = {
    {"0x000000", "unclassified"},
    {"0x010000", "storage (SCSI)"},
    {"0x010400", "storage (RAID)"},
    {"0x010601", "storage (SATA)"},
    {"0x010700", "storage (SAS)"},
    {"0x010800", "storage (non-volatile memory)"},
    {"0x010802", "storage (NVMe)"},
    {"0x018000", "storage"},
    {"0x020000", "network (Ethernet)"},
    {"0x020700", "network (InfiniBand)"},
    {"0x030000", "display (VGA)"},
    {"0x030200", "display (3D)"},
    {"0x038000", "display"},
    {"0x040300", "multimedia (audio)"},
    {"0x050200", "memory (CXL)"},
    {"0x058000", "memory"},
    {"0x060100", "bridge (ISA)"},
    {"0x070002", "communication (serial port)"},
    {"0x080600", "system (IOMMU)"},
    {"0x0B4000", "processor (coprocessor)"},
    {"0x0C0330", "serial bus (USB)"},
    {"0x0C0400", "serial bus (Fibre Channel)"},
    {"0x0D8000", "wireless"},
    {"0x100000", "encryption"},
    {"0x110100", "signal processing (performance counters)"},
    {"0x120000", "accelerator"},
    {"0x130000", "instrumentation"},
    {"0x400000", "coprocessor"},
    {"0xFF0000", "unassigned"},
    {"0x7F0000", "class 0x7f0000"},
    {"0x1020000", "class 0x1020000"},
    {"-1", "class 0xffffffffffffffff"},
    {"'storage'", "function"},
    {"NULL", "function"},
};

}  // namespace

class Tree : public topology_test {};

TEST_F(Tree, HasNodesAndTheirSegmentsAndWhatIsBehindTheirBridges) {
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

TEST_F(Tree, IsInTheOrderOfAddressesAndNotOfRows) {
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

TEST_F(Tree, NamesWhatHasNoNode) {
    add_function(1, -1, 1, 0, "NodeIndex = -1");
    EXPECT_THAT(tree(), StartsWith("No node\n`- Segment 0000\n"));
}

TEST_F(Tree, OfAnEmptyInventorySaysSo) {
    EXPECT_EQ(tree(), "No PCI bridges or functions.\n");
}

TEST_F(Tree, ShowsAPartWithoutAnAddress) {
    add_bridge(1, -1, 0, 0, "SegNo = NULL, BusNo = NULL, DevNo = NULL, FunNo = NULL");
    EXPECT_EQ(tree(), "Node 1\n`- Segment -\n   `- -:-:-.- bridge\n");
}

TEST_F(Tree, ShowsEveryRowOfOneAddress) {
    add_bridge(1, -1, 0, 1);
    add_bridge(2, -1, 0, 1);
    add_function(1, -1, 0, 1);
    add_function(2, 2, 1, 0);
    EXPECT_THAT(tree(), EndsWith("   +- 0000:00:01.0 bridge\n"
                                 "   +- 0000:00:01.0 bridge\n"
                                 "   |  `- 0000:01:00.0 function\n"
                                 "   `- 0000:00:01.0 function\n"));
}

TEST_F(Tree, ShowsWhatIsBehindAMissingBridgeUnderAHeading) {
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

TEST_F(Tree, TakesABridgeThatIsNamedByTextForMissing) {
    add_function(1, -1, 0, 1, "BridgeId = 'first'");
    EXPECT_THAT(tree(), HasSubstr("`- Behind a missing bridge\n   `- 0000:00:01.0 function\n"));
}

TEST_F(Tree, TakesARowThatNamesNoBridgeForARoot) {
    add_function(1, -1, 0, 1, "BridgeId = NULL");
    EXPECT_THAT(tree(), HasSubstr("`- Segment 0000\n   `- 0000:00:01.0 function\n"));
}

TEST_F(Tree, CutsACircleOfBridgesAtItsFirst) {
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

TEST_F(Tree, CutsABridgeThatIsBehindItself) {
    add_bridge(1, 1, 3, 0);
    add_function(1, 1, 4, 0);
    EXPECT_EQ(tree(),
              "Node 1\n"
              "`- Bridges in a circle\n"
              "   `- 0000:03:00.0 bridge\n"
              "      `- 0000:04:00.0 function\n");
}

TEST_F(Tree, ShowsTheFirstOfTwoBridgesOfOneIdWithWhatIsBehindThem) {
    execute("inventory.db",
            "DROP TABLE PCIBridge; CREATE TABLE PCIBridge (Id, ParentId, NodeIndex, SegNo, BusNo, DevNo, FunNo)");
    add_bridge(1, -1, 2, 0);
    add_bridge(1, -1, 1, 0);
    add_function(1, 1, 3, 0);
    EXPECT_THAT(tree(), EndsWith("   +- 0000:01:00.0 bridge\n"
                                 "   |  `- 0000:03:00.0 function\n"
                                 "   `- 0000:02:00.0 bridge\n"));
}

TEST_F(Tree, ShowsRowsOfTablesThatLackColumns) {
    execute("inventory.db", "DROP TABLE PCIBridge; CREATE TABLE PCIBridge (BusNo); INSERT INTO PCIBridge VALUES (7)");
    EXPECT_EQ(tree(), "No node\n`- Segment -\n   `- -:07:-.- bridge\n");
}

TEST_F(Tree, IndentsNoFurtherThanBusesGo) {
    execute("inventory.db",
            "INSERT INTO PCIBridge (Id, ParentId, NodeIndex, SegNo, BusNo, DevNo, FunNo) "
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 10000) "
            "SELECT i, CASE i WHEN 1 THEN -1 ELSE i - 1 END, 1, 0, i, 0, 0 FROM n");
    const std::string shown = tree();
    EXPECT_EQ(count_of("bridge\n", shown), 10'000u);
    const std::string indent(256 * 3, ' ');
    EXPECT_EQ(count_of("\n" + indent + "+- 0000:100:00.0 bridge\n", shown), 1u);
    EXPECT_EQ(count_of("\n" + indent + "`- behind 9999 bridges: 0000:2710:00.0 bridge\n", shown), 1u);
}

TEST_F(Tree, ShowsTheSlotAndItsDesignation) {
    add_function(1, -1, 0, 1, "SlotNo = 5");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function, slot 5");
    execute("inventory.db", "UPDATE PCIs SET SlotDesignation = '  PCIe Slot 5 '");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function, slot 5, PCIe Slot 5");
    execute("inventory.db", "UPDATE PCIs SET SlotNo = -1");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function, PCIe Slot 5");
}

TEST_F(Tree, LeavesOutDesignationsThatSayNothing) {
    add_function(1, -1, 0, 1, "SlotDesignation = ' '");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function");
}

TEST_F(Tree, KeepsControlCharactersFromTheTerminal) {
    add_function(1, -1, 0, 1, "SlotDesignation = 'a' || char(27) || '[2J' || char(10) || char(155) || 'b'");
    EXPECT_EQ(part_of(tree()), "0000:00:01.0 function, a\\x1b[2J\\n\\x9bb");
}

TEST_F(Tree, NamesTheKindOfAFunctionByItsClassCode) {
    std::string expected;
    int id = 0;
    for (const kind_case& each : kinds) {
        add_function(++id, -1, 0, 0, "DeviceNo = Id, ClsCode = " + std::string(each.class_code));
        expected += each.words + std::string("\n");
    }
    const std::string shown = tree();
    std::string words;
    for (std::size_t at = shown.find(".0 "); at != std::string::npos; at = shown.find(".0 ", at + 1)) {
        words += shown.substr(at + 3, shown.find('\n', at) - at - 2);
    }
    EXPECT_EQ(words, expected);
}
