// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "rows/pci_label_columns.h"
#include "rows/redaction.h"
#include "tools/listing/fans.h"
#include "tools/listing/listing_test.h"

using testing::HasSubstr;
using testing::Not;

class ListingText : public listing_test {};

TEST_F(ListingText, PrintsEveryKindAsATableForPeople) {
    EXPECT_EQ(
        listing_text(all(), {}, {}),
        "Processors (1)\n"
        "Id  Node  Socket  Version    Cores  Threads     Speed  L3 cache  Processor id        Serial number  "
        "Asset tag\n"
        " 1     1  CPU 1   Züri 9000  12/16       24  2100 MHz  24.8 MiB  0x000806f8bfebfbff  CPU-SECRET     "
        "CPU-TAG\n"
        "\n"
        "Memory (2)\n"
        "Id  Node  Slot  Locator       Size  Type           Speed  Manufacturer  Serial number   Capacity  App direct\n"
        " 1     1     3  DIMM A1     32 GiB  DDR4 (26)  2666 MT/s  Maker         DIMM-SECRET            -           -\n"
        " 2     1     -  DIMM A2  126.4 GiB  99                 -  Intel         -              126.4 GiB     126 GiB\n"
        "\n"
        "Bridges (2)\n"
        "Id  Node  Parent  Address       Vendor:dev  Revision  Class     Primary bus  Bus range\n"
        " 1     1       -  0000:00:1c.0  8086:a190   0xf9      0x060400  00           3a-3f\n"
        " 2     1       1  0000:3a:02.1  -           -         -         -            -\n"
        "\n"
        "Devices (2)\n"
        "Id  Node  Bridge  Address       Slot  Designation  Vendor:dev  Subsystem  Class     Lanes                 "
        "Link "
        "speed  Device key  Function key\n"
        " 1     1       1  0001:3b:1f.7     5  Slot 5       8086:1572   8086:0007  0x020000    4/8  8 GT/s (3) of 16 "
        "GT/s "
        "(4)  0x01010005  0x013b1f07\n"
        " 2     1       -  0000:00:02.0     -  -            -           -          -             -                     "
        "  "
        "   -  0x0101ffff  0x00000200\n");
}

TEST_F(ListingText, PrintsOneKind) {
    EXPECT_EQ(listing_text(only(kinds::bridges), {}, {}),
              "Bridges (2)\n"
              "Id  Node  Parent  Address       Vendor:dev  Revision  Class     Primary bus  Bus range\n"
              " 1     1       -  0000:00:1c.0  8086:a190   0xf9      0x060400  00           3a-3f\n"
              " 2     1       1  0000:3a:02.1  -           -         -         -            -\n");
}

TEST_F(ListingText, LeavesOutColumnsThatAreEmptyInEveryRow) {
    load(cds_file(cds_component("cpu_info", {text("Socket Designation", "CPU 1")})));
    EXPECT_EQ(listing_text(only(kinds::processors), {}, {}),
              "Processors (1)\n"
              "Id  Socket\n"
              " 1  CPU 1\n");
}

TEST_F(ListingText, HasEveryColumnWhereItIsWide) {
    load(cds_file(cds_component("cpu_info", {text("Socket Designation", "CPU 1")})));
    listing_view view;
    view.wide = true;
    text_style narrow;
    narrow.width = 20;
    EXPECT_EQ(listing_text(only(kinds::processors), view, narrow),
              "Processors (1)\n"
              "Id  Node  Socket  Version  Cores  Threads  Speed  L3 cache  Processor id  Serial number  Asset tag\n"
              " 1     -  CPU 1   -            -        -      -         -  -             -              -\n");
}

TEST_F(ListingText, HasTheColumnsThatAreChosenInTheirOrder) {
    listing_view view;
    view.columns = {"MemSize", "Attributes", "DevLocator", "Socket"};
    EXPECT_EQ(listing_text(only(kinds::memory), view, {}),
              "Memory (2)\n"
              "MemSize    Attributes  DevLocator\n"
              "32 GiB     -           DIMM A1\n"
              "126.4 GiB  -           DIMM A2\n");
}

TEST_F(ListingText, HasTheLabelsThatATableHas) {
    std::vector<inventory_table> tables = only(kinds::bridges);
    tables[0].columns.insert(tables[0].columns.end(), {pci_label_columns::name, pci_label_columns::kind});
    tables[0].rows[0].insert(tables[0].rows[0].end(), {"Maker Port", "bridge (PCI)"});
    tables[0].rows[1].insert(tables[0].rows[1].end(), {inventory_value(), inventory_value()});
    const std::string shown = listing_text(tables, {}, {});
    EXPECT_THAT(shown, HasSubstr("  8086:a190   Maker Port  0xf9      0x060400  bridge (PCI)  "));
}

TEST_F(ListingText, PrintsTheKindsWithoutRowsOfAnEmptyInventory) {
    load(cds_file(""));
    EXPECT_EQ(listing_text(all(), {}, {}), "Processors (0)\n\nMemory (0)\n\nBridges (0)\n\nDevices (0)\n");
}

TEST_F(ListingText, KeepsControlCharactersFromTheTerminal) {
    execute("UPDATE Processor SET Version = 'a' || char(27) || '[2J' || char(10) || char(155) || 'b'");
    EXPECT_THAT(listing_text(only(kinds::processors), {}, {}), HasSubstr("  a\\x1b[2J\\n\\x9bb  "));
}

TEST_F(ListingText, WritesAReplacementCharacterForTextThatIsNotUtf8) {
    execute("UPDATE Processor SET Version = CAST(x'61FF62C3' AS TEXT)");
    EXPECT_THAT(listing_text(only(kinds::processors), {}, {}), HasSubstr("  a\uFFFDb\uFFFD  "));
}

TEST_F(ListingText, HidesWhatIsRedacted) {
    std::vector<inventory_table> tables = all();
    for (inventory_table& table : tables) {
        redact(table);
    }
    const std::string shown = listing_text(tables, {}, {});
    EXPECT_THAT(shown, Not(HasSubstr("CPU-SECRET")));
    EXPECT_THAT(shown, Not(HasSubstr("CPU-TAG")));
    EXPECT_THAT(shown, Not(HasSubstr("DIMM-SECRET")));
    EXPECT_THAT(shown, HasSubstr("[redacted]"));
    EXPECT_THAT(shown, HasSubstr("CPU 1"));
}

TEST_F(ListingText, WrapsFreeTextsWhereTheLineIsTooLong) {
    execute("UPDATE Processor SET Version = 'vvvvvvvvvvvvvvvvvvvvvvvvvvvvvv', SerialNo = 'ssssssssssssssssssss'");
    text_style style;
    style.width = 120;
    EXPECT_EQ(listing_text(only(kinds::processors), {}, style),
              "Processors (1)\n"
              "Id  Node  Socket  Version           Cores  Threads     Speed  L3 cache  Processor id        "
              "Serial number      Asset tag\n"
              " 1     1  CPU 1   vvvvvvvvvvvvvvvv  12/16       24  2100 MHz  24.8 MiB  0x000806f8bfebfbff  "
              "sssssssssssssssss  CPU-TAG\n"
              "                  vvvvvvvvvvvvvv                                                            sss\n");
}

TEST_F(ListingText, HasNoHeadingsOfColumnsWithoutRows) {
    load(cds_file(""));
    listing_view wide;
    wide.wide = true;
    EXPECT_EQ(listing_text(only(kinds::bridges), wide, {}), "Bridges (0)\n");
    listing_view chosen;
    chosen.columns = {"Id"};
    EXPECT_EQ(listing_text(only(kinds::bridges), chosen, {}), "Bridges (0)\n");
}

TEST_F(ListingText, HasBoldHeadingsWhereControlSequencesAreUnderstood) {
    load(cds_file(cds_component("cpu_info", {text("Socket Designation", "CPU 1")})));
    text_style style;
    style.has_control_sequences = true;
    EXPECT_EQ(listing_text(only(kinds::processors), {}, style),
              "\033[1mProcessors (1)\033[0m\n"
              "\033[1mId  Socket\033[0m\n"
              " 1  CPU 1\n");
}

class ListingTextOfFans : public testing::Test {
protected:
    static std::string of_width(std::size_t width) {
        text_style style;
        style.width = width;
        return listing_text({{&fans,
                              {"Name", "Speed", "Serial"},
                              {{"nnnnnnnn nnn", std::int64_t{123456789012}, std::int64_t{12345678901}}}}},
                            {}, style);
    }
};

TEST_F(ListingTextOfFans, WrapsFreeTexts) {
    EXPECT_EQ(of_width(39),
              "Fans (1)\n"
              "Name      Speed                  Serial\n"
              "nnnnnnnn  123456789012 MHz  12345678901\n"
              "nnn\n");
}

TEST_F(ListingTextOfFans, WrapsNeitherNumbersNorWhatHasAUnit) {
    EXPECT_EQ(of_width(38),
              "Fans (1)\n"
              "Name    nnnnnnnn nnn\n"
              "Speed   123456789012 MHz\n"
              "Serial  12345678901\n");
}

TEST(ListingTextOfAKind, IsThereForEveryOne) {
    for (const inventory_kind* kind : kinds::all) {
        const inventory_table table = {kind, {"Id"}, {{std::int64_t{17}}}};
        EXPECT_THAT(listing_text({table}, {}, {}), HasSubstr("17")) << kind->name;
    }
}
