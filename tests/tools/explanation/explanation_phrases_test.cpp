// SPDX-License-Identifier: Apache-2.0

#include "explanation/explanation_phrases.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

unused_setting speed_unused(idleness why, const char* similar = nullptr) {
    return {"memory_info", "Speed", why, similar};
}

odd_value odd_number(oddity what, const char* column = "SlotNo") {
    return {"pci_device_info", "Slot Number", column, what, "integer_value 'N/A'", {}};
}

}  // namespace

TEST(UnusedText, SaysWhyTheSettingIsNotTaken) {
    EXPECT_EQ(unused_text(speed_unused(idleness::unknown)), "'Speed' in memory_info");
    EXPECT_EQ(unused_text(speed_unused(idleness::unknown, "Max Speed")),
              "'Speed' in memory_info; 'Max Speed' may be meant");
    EXPECT_EQ(unused_text(speed_unused(idleness::other_record)),
              "'Speed' in memory_info, which this record does not take");
    EXPECT_EQ(unused_text(speed_unused(idleness::second_group)),
              "'Speed' in memory_info, which stands in a second group of that name");
    EXPECT_EQ(unused_text(speed_unused(idleness::not_persistent)),
              "'Speed' in memory_info, which this record does not take");
    EXPECT_EQ(unused_text(speed_unused(idleness::no_number)), "'Speed' in memory_info, which is negative or no number");
}

TEST(RuleAgainst, IsTheRuleByWhichASettingIsNotTaken) {
    EXPECT_EQ(rule_against(speed_unused(idleness::unknown)), nullptr);
    EXPECT_STREQ(rule_against(speed_unused(idleness::other_record)),
                 "another kind of record has columns for some settings");
    EXPECT_STREQ(rule_against(speed_unused(idleness::second_group)),
                 "of several groups of a name only the first is read");
    EXPECT_STREQ(
        rule_against(speed_unused(idleness::not_persistent)),
        "only a persistent module, which has bit 12 of 'Type Detail' and the 'Manufacturer' Intel, has columns "
        "for some settings");
    EXPECT_STREQ(rule_against(speed_unused(idleness::no_number)),
                 "some settings count as absent where they are negative or no number");
}

TEST(OddityText, SaysWhatIsOdd) {
    const std::string setting = "'Slot Number' in pci_device_info";
    EXPECT_EQ(oddity_text(odd_number(oddity::text_for_number)), setting + " is text where a number is taken");
    EXPECT_EQ(oddity_text(odd_number(oddity::no_number)), setting + " is no number");
    EXPECT_EQ(oddity_text(odd_number(oddity::too_large)), setting + " has more bits than its column");
}

TEST(OddityText, SaysWhyTheLoaderPutsAnotherNumber) {
    const std::string setting = "'Slot Number' in pci_device_info";
    EXPECT_EQ(oddity_text(odd_number(oddity::replaced)),
              setting + " does not count, because the slot of storage on the board is 0");
    EXPECT_EQ(oddity_text(odd_number(oddity::replaced, "ClsCode")),
              setting + " does not count, because the device is known to report a misleading one");
    EXPECT_EQ(oddity_text(odd_number(oddity::replaced, "Width")), setting + " is replaced by the loader");
}

TEST(StoredText, IsTheValueAndWhatTheColumnHolds) {
    odd_value odd = odd_number(oddity::no_number);
    EXPECT_EQ(stored_text(odd, {}), "integer_value 'N/A'");
}
