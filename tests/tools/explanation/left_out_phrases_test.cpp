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

TEST(OmissionText, HasTheVerbOfTheNumber) {
    EXPECT_EQ(omission_text(omission::recorded_once, 1), "belongs to a card that is recorded once");
    EXPECT_EQ(omission_text(omission::recorded_once, 2), "belong to a card that is recorded once");
}
