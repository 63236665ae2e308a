// SPDX-License-Identifier: Apache-2.0

#include "rows/column_units.h"

#include <gtest/gtest.h>

#include "tools/values.h"

using namespace column_units;

namespace {

constexpr std::int64_t many = 129408;

}  // namespace

TEST(ColumnUnits, WriteADashForWhatIsAbsent) {
    for (const column_unit unit : {plain, key, class_code, revision, segment, bus, pci_id_part, megahertz,
                                   megatransfers, bytes, kibibytes, mebibytes, processor_id, memory_type}) {
        EXPECT_EQ(unit(absent), "-");
    }
}

TEST(ColumnUnits, WritePlainNumbersAsTheyAre) {
    EXPECT_EQ(plain(number(7)), "7");
    EXPECT_EQ(plain(std::uint64_t{18446744073709551615u}), "18446744073709551615");
}

TEST(ColumnUnits, WritePlainTextsPrintable) {
    EXPECT_EQ(plain("a\tb"), "a\\tb");
}

TEST(ColumnUnits, WritePciNumbersInHexadecimal) {
    EXPECT_EQ(key(number(0x13B)), "0x0000013b");
    EXPECT_EQ(class_code(number(0x20000)), "0x020000");
    EXPECT_EQ(revision(number(7)), "0x07");
    EXPECT_EQ(segment(number(1)), "0001");
    EXPECT_EQ(bus(number(0x3A)), "3a");
    EXPECT_EQ(bus(number(0x100)), "100");
    EXPECT_EQ(pci_id_part(number(0x8086)), "0x8086");
    EXPECT_EQ(processor_id(number(-1)), "0xffffffffffffffff");
}

TEST(ColumnUnits, WriteFrequencies) {
    EXPECT_EQ(megahertz(number(2100)), "2100 MHz");
    EXPECT_EQ(megatransfers(number(2933)), "2933 MT/s");
}

TEST(ColumnUnits, WriteSizesInTheLargestWholeUnit) {
    EXPECT_EQ(bytes(number(0)), "0 B");
    EXPECT_EQ(bytes(number(1025)), "1025 B");
    EXPECT_EQ(kibibytes(number(1024)), "1 MiB");
    EXPECT_EQ(mebibytes(number(32768)), "32 GiB");
    EXPECT_EQ(mebibytes(number(1536)), "1536 MiB");
    EXPECT_EQ(bytes(number(9999)), "9999 B");
    EXPECT_EQ(mebibytes(number(3 << 20)), "3 TiB");
    EXPECT_EQ(bytes(std::uint64_t{1} << 60), "1024 PiB");
}

TEST(ColumnUnits, WriteALongSizeWithOneDecimal) {
    EXPECT_EQ(kibibytes(number(25344)), "24.8 MiB");
    EXPECT_EQ(mebibytes(number(many)), "126.4 GiB");
    EXPECT_EQ(bytes(number(10'000)), "9.8 KiB");
    EXPECT_EQ(bytes(std::uint64_t{18446744073709551615u}), "16384.0 PiB");
}

TEST(ColumnUnits, WriteNamesBesideTheNumbersThatHaveOne) {
    EXPECT_EQ(memory_type(number(26)), "DDR4 (26)");
    EXPECT_EQ(memory_type(number(99)), "99");
    EXPECT_EQ(form_factor(number(9)), "DIMM (9)");
    EXPECT_EQ(link_speed(number(3)), "8 GT/s (3)");
}

TEST(ColumnUnits, WriteATextInThePlaceOfANumberOnlyWhereItMayBeOne) {
    EXPECT_EQ(memory_type("x"), "x");
    EXPECT_EQ(mebibytes("x"), "-");
    EXPECT_EQ(key("x"), "-");
}
