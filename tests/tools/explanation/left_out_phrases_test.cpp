// SPDX-License-Identifier: Apache-2.0

#include "explanation/left_out_phrases.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "explanation/left_out.h"

namespace {

std::vector<left_out_element> without_location(std::size_t count) {
    return std::vector<left_out_element>(count, {nullptr, omission::no_location, nullptr});
}

std::string text_with_addressless(std::size_t unplaced, std::size_t addressless) {
    std::vector<left_out_element> all = without_location(unplaced);
    all.insert(all.begin(), addressless, {nullptr, omission::no_address, nullptr});
    return left_out_text(all);
}

}  // namespace

TEST(LeftOutText, CountsTheReasons) {
    EXPECT_EQ(text_with_addressless(2, 1), "3 components left no row: 2 have no location, 1 has no address");
    EXPECT_EQ(text_with_addressless(2, 2), "4 components left no row: 2 have no location, 2 no address");
}

TEST(LeftOutText, IsAboutOneComponentAsWell) {
    EXPECT_EQ(left_out_text(without_location(1)), "1 component left no row: 1 has no location");
}

TEST(LeftOutText, IsEmptyWithoutAny) {
    EXPECT_EQ(left_out_text({}), "");
}

TEST(OmissionText, NamesEachRule) {
    EXPECT_EQ(omission_text(omission::no_location, 1), "has no location");
    EXPECT_EQ(omission_text(omission::no_location, 2), "have no location");
    EXPECT_EQ(omission_text(omission::no_address, 1), "has no address");
    EXPECT_EQ(omission_text(omission::no_address, 2), "have no address");
    EXPECT_EQ(omission_text(omission::nothing_known, 1), "has no setting that is known");
    EXPECT_EQ(omission_text(omission::nothing_known, 2), "have no setting that is known");
    EXPECT_EQ(omission_text(omission::not_reached, 1), "stands where the loader does not look");
    EXPECT_EQ(omission_text(omission::not_reached, 2), "stand where the loader does not look");
}

TEST(OmissionName, IsWhatProgramsReadOfEachRule) {
    EXPECT_STREQ(name_of(omission::no_location), "no_location");
    EXPECT_STREQ(name_of(omission::no_address), "no_address");
    EXPECT_STREQ(name_of(omission::nothing_known), "nothing_known");
    EXPECT_STREQ(name_of(omission::recorded_once), "recorded_once");
    EXPECT_STREQ(name_of(omission::not_reached), "not_reached");
}

TEST(OmissionText, HasTheVerbOfTheNumber) {
    EXPECT_EQ(omission_text(omission::recorded_once, 1), "belongs to a card that is recorded once");
    EXPECT_EQ(omission_text(omission::recorded_once, 2), "belong to a card that is recorded once");
}
