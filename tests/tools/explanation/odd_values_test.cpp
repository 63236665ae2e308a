// SPDX-License-Identifier: Apache-2.0

#include "explanation/odd_values.h"

#include <gmock/gmock.h>

#include "tools/explanation/explanation_test.h"

using testing::IsEmpty;

namespace {

setting decimal(const std::string& name, const std::string& value) {
    return {name, value, cds_parser::setting_node::decimal_value};
}

}  // namespace

class OddValues : public explanation_test {
protected:
    static std::vector<odd_value> of(const std::string& component) {
        return explanations(cds_file(component)).front().odd;
    }

    // Of the only odd value, that is given to a processor or a function besides what it needs.
    static odd_value only(const std::vector<odd_value>& values) {
        EXPECT_EQ(values.size(), 1u);
        return values.empty() ? odd_value() : values.front();
    }
};

TEST_F(OddValues, AreNoneThatConvert) {
    EXPECT_THAT(of(processor("CPU 1", {integer("Core Count", " 0x1F "), hex("Voltage", "8a"), integer("Status", "-1"),
                                       hex("Processor ID", "7fffffffffffffff"), integer("Family", "4294967295")})),
                IsEmpty());
}

TEST_F(OddValues, AreNoneWithBlanksAtTheirEnds) {
    EXPECT_THAT(of(processor("CPU 1", {integer("Core Count", " &#9;&#13;&#10;8 &#9;&#13;&#10;")})), IsEmpty());
}

TEST_F(OddValues, AreNoneOfDecimalNumbersThatConvert) {
    EXPECT_THAT(of(processor("CPU 1", {decimal("Core Count", "1.5"), decimal("Voltage", "1e3")})), IsEmpty());
}

TEST_F(OddValues, AreDecimalNumbersThatDoNotConvert) {
    for (const char* value : {"many", "1.5x", "true"}) {
        EXPECT_EQ(only(of(processor("CPU 1", {decimal("Core Count", value)}))).what, oddity::no_number) << value;
    }
    EXPECT_EQ(only(of(processor("CPU 1", {decimal("Processor ID", "1e999")}))).what, oddity::too_large);
}

TEST_F(OddValues, AreNumbersWithoutDigits) {
    for (const char* value : {" ", "  "}) {
        EXPECT_EQ(only(of(processor("CPU 1", {integer("Core Count", value)}))).what, oddity::no_number) << value;
    }
}

TEST_F(OddValues, AreNoneBesideANumberThatIsTooLarge) {
    EXPECT_EQ(only(of(processor("CPU 1", {hex("Processor ID", "BFEBFBFF000906E9"), integer("Core Count", "8"),
                                          integer("Family", "6"), integer("Voltage", "1")})))
                  .setting,
              "Processor ID");
}

TEST_F(OddValues, AreNoneThatNoColumnTakes) {
    EXPECT_THAT(of(module("A1", "S1", {integer("Capacity", "N/A")})), IsEmpty());
}

TEST_F(OddValues, AreNoTruthsButFour) {
    for (const char* value : {"true", "false", "1", "0"}) {
        EXPECT_THAT(of(processor("CPU 1", {boolean("Status", value)})), IsEmpty()) << value;
    }
    for (const char* value : {"yes", "TRUE", "10"}) {
        EXPECT_EQ(only(of(processor("CPU 1", {boolean("Status", value)}))).what, oddity::no_number) << value;
    }
}

TEST_F(OddValues, AreTextsWhereANumberIsTaken) {
    const odd_value odd = only(of(processor("CPU 1", {text("Core Count", "8")})));
    EXPECT_EQ(odd.what, oddity::text_for_number);
    EXPECT_EQ(odd.group, "cpu_info");
    EXPECT_EQ(odd.setting, "Core Count");
    EXPECT_EQ(odd.column, "CoreCount");
    EXPECT_EQ(odd.value, "text_value '8'");
    EXPECT_EQ(odd.stored, inventory_value(std::int64_t{0}));
}

TEST_F(OddValues, AreNumbersThatDoNotConvert) {
    for (const char* value : {"N/A", "12abc", "1 2"}) {
        EXPECT_EQ(only(of(processor("CPU 1", {integer("Core Count", value)}))).what, oddity::no_number) << value;
    }
    for (const char* value : {"xyz", "g"}) {
        EXPECT_EQ(only(of(processor("CPU 1", {hex("Core Count", value)}))).what, oddity::no_number) << value;
    }
}

TEST_F(OddValues, AreNumbersWithMoreBitsThanTheirColumn) {
    EXPECT_EQ(only(of(processor("CPU 1", {hex("Core Count", "100000001")}))).what, oddity::too_large);
    EXPECT_EQ(only(of(processor("CPU 1", {hex("Processor ID", "BFEBFBFF000906E9")}))).what, oddity::too_large);
    for (const char* value : {"-2147483649", "4294967296"}) {
        EXPECT_EQ(only(of(processor("CPU 1", {integer("Core Count", value)}))).what, oddity::too_large) << value;
    }
    EXPECT_THAT(of(processor("CPU 1", {integer("Core Count", "-2147483648")})), IsEmpty());
}

TEST_F(OddValues, AreNumbersThatTheLoaderReplaces) {
    const odd_value odd =
        only(of(function("1", {hex("Vendor ID", "1000"), hex("Device ID", "97"), hex("Class Code", "10700"),
                               integer("Location", "0"), integer("Slot Number", "5")})));
    EXPECT_EQ(odd.what, oddity::replaced);
    EXPECT_EQ(odd.setting, "Slot Number");
    EXPECT_EQ(odd.stored, inventory_value(std::int64_t{0}));
}

TEST_F(OddValues, AreToldOfWhatHasNoRowToo) {
    const odd_value odd =
        only(of(cds_component("pci_device_info", {integer("Bus Number", "1"), integer("Device Number", "0"),
                                                  integer("Function Number", "0"), text("Device ID", "97")})));
    EXPECT_EQ(odd.what, oddity::text_for_number);
    EXPECT_EQ(odd.setting, "Device ID");
    EXPECT_EQ(odd.stored, inventory_value());
}

TEST_F(OddValues, AreNoneInColumnsOfText) {
    EXPECT_THAT(of(processor("CPU 1", {integer("Serial Number", "abc")})), IsEmpty());
}

TEST_F(OddValues, AreNotThoseThatTheVerdictBlames) {
    EXPECT_THAT(of(cds_component("pci_bridge_info", {text("Bus Number", "1"), integer("Device Number", "0"),
                                                     integer("Function Number", "0")})),
                IsEmpty());
}
