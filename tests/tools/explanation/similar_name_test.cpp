// SPDX-License-Identifier: Apache-2.0

#include "explanation/similar_name.h"

#include <gtest/gtest.h>

namespace {

const std::vector<const char*> known = {"Serial Number", "Core Count", "Voltage", "L1 Cache Type", "L2 Cache Type"};

// With one changed character allowed for every five.
const char* similar(const std::string& name) {
    return most_similar(name, known, 5);
}

}  // namespace

TEST(SimilarName, IsTheSameInAnotherCase) {
    EXPECT_STREQ(similar("SERIAL number"), "Serial Number");
    EXPECT_STREQ(most_similar("ABYZ", {"abyz"}, 5), "abyz");
}

TEST(SimilarName, HasNoOtherCaseOfWhatIsNoLetter) {
    EXPECT_EQ(most_similar("a;", {"a["}, 5), nullptr);
    EXPECT_EQ(most_similar("a@", {"a`"}, 5), nullptr);
    EXPECT_EQ(most_similar("a[", {"a{"}, 5), nullptr);
}

TEST(SimilarName, IsTheSameWithOtherSeparators) {
    EXPECT_STREQ(similar("Serial_Number"), "Serial Number");
    EXPECT_STREQ(similar("SerialNumber"), "Serial Number");
    EXPECT_STREQ(similar("Serial - Number"), "Serial Number");
}

TEST(SimilarName, HasACharacterChangedOrMoreOrLess) {
    EXPECT_STREQ(similar("Core Coumt"), "Core Count");
    EXPECT_STREQ(similar("Core Coount"), "Core Count");
    EXPECT_STREQ(similar("ore Count"), "Core Count");
}

TEST(SimilarName, CountsEachOfThoseAsOneChange) {
    EXPECT_STREQ(similar("Vpltage"), "Voltage");
    EXPECT_STREQ(similar("Volttage"), "Voltage");
    EXPECT_STREQ(similar("Votage"), "Voltage");
    EXPECT_EQ(similar("xVoltge"), nullptr);
}

TEST(SimilarName, HasTwoSwappedCharactersForOneChange) {
    EXPECT_STREQ(similar("Voltgae"), "Voltage");
    EXPECT_STREQ(similar("oVltage"), "Voltage");
    EXPECT_EQ(similar("Voltaxx"), nullptr);
    EXPECT_EQ(similar("oVltgae"), nullptr);
    EXPECT_EQ(similar("Vxltgae"), nullptr);
}

TEST(SimilarName, IsTheNearest) {
    EXPECT_STREQ(similar("L2 Cache Typ"), "L2 Cache Type");
}

TEST(SimilarName, IsTheFirstOfEquallyNearOnes) {
    EXPECT_STREQ(similar("L4 Cache Type"), "L1 Cache Type");
}

TEST(SimilarName, MayTakeMoreChangesWhereFewerCharactersAreAskedForEach) {
    EXPECT_EQ(most_similar("Volt", {"Voltage"}, 5), nullptr);
    EXPECT_EQ(most_similar("Volta", {"Voltage"}, 5), nullptr);
    EXPECT_STREQ(most_similar("Volta", {"Voltage"}, 3), "Voltage");
}

TEST(SimilarName, IsNoneWhereNothingIsNear) {
    EXPECT_EQ(similar("Colour"), nullptr);
    EXPECT_EQ(similar("-"), nullptr);
    EXPECT_EQ(similar(""), nullptr);
    EXPECT_EQ(similar(std::string(100'000, 'S')), nullptr);
    EXPECT_EQ(most_similar("Serial Number", {}, 5), nullptr);
}
