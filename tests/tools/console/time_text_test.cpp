// SPDX-License-Identifier: Apache-2.0

#include "console/time_text.h"

#include <gmock/gmock.h>

#include <chrono>
#include <ctime>
#include <limits>
#include <optional>

using testing::Optional;

namespace {

moment at(std::time_t second, int microseconds = 0) {
    return moment(std::chrono::seconds(second) + std::chrono::microseconds(microseconds));
}

}  // namespace

TEST(TimeText, IsForPeopleAndForPrograms) {
    EXPECT_EQ(time_text(1795082400), "2026-11-19 10:00:00 UTC");
    EXPECT_EQ(rfc3339_text(1795082400), "2026-11-19T10:00:00Z");
}

TEST(TimeText, IsEmptyForATimeThatNoCalendarHas) {
    EXPECT_EQ(time_text(std::numeric_limits<std::time_t>::max()), "");
}

TEST(TimeText, HasMicrosecondsWhereThereAreAny) {
    EXPECT_EQ(rfc3339_text(at(1795082400)), "2026-11-19T10:00:00Z");
    EXPECT_EQ(rfc3339_text(at(1795082400, 250'001)), "2026-11-19T10:00:00.250001Z");
    EXPECT_EQ(rfc3339_text(at(-1, 500'000)), "1969-12-31T23:59:59.500000Z");
}

TEST(TimeText, HasFourDigitsOfEveryYear) {
    EXPECT_EQ(rfc3339_text(at(-62'135'596'800)), "0001-01-01T00:00:00Z");
}

TEST(TimeByRfc3339, IsReadWithItsOffset) {
    EXPECT_THAT(rfc3339_time("2026-11-19T10:00:00Z"), Optional(at(1795082400)));
    EXPECT_THAT(rfc3339_time("2026-11-19t11:30:00+01:30"), Optional(at(1795082400)));
    EXPECT_THAT(rfc3339_time("2026-11-19 06:00:00-04:00"), Optional(at(1795082400)));
}

TEST(TimeByRfc3339, IsReadToTheMicrosecond) {
    EXPECT_THAT(rfc3339_time("2026-11-19T10:00:00.25Z"), Optional(at(1795082400, 250'000)));
    EXPECT_THAT(rfc3339_time("2026-11-19T10:00:00.123456789Z"), Optional(at(1795082400, 123'456)));
    EXPECT_THAT(rfc3339_time("1969-12-31T23:59:59.75Z"), Optional(at(-1, 750'000)));
}

TEST(TimeByRfc3339, MayHaveAnOffsetOfNearlyADay) {
    EXPECT_THAT(rfc3339_time("2026-11-19T10:00:00+23:59"), Optional(at(1795082400 - 86'340)));
}

TEST(TimeByRfc3339, IsInTheCalendar) {
    for (const char* text :
         {"2026-02-29T10:00:00Z", "2026-13-01T10:00:00Z", "2026-00-01T10:00:00Z", "2026-11-00T10:00:00Z",
          "2026-11-31T10:00:00Z", "2026-01-99T10:00:00Z", "2026-11-19T24:00:00Z", "2026-11-19T99:00:00Z",
          "2026-11-19T10:60:00Z", "2026-11-19T10:00:61Z", "2026-11-19T10:00:00+24:00", "2026-11-19T10:00:00+00:60"}) {
        EXPECT_EQ(rfc3339_time(text), std::nullopt) << text;
    }
}

TEST(TimeByRfc3339, IsComplete) {
    for (const char* text :
         {"", "2026-11-19", "2026-11-19T10:00:00", "2026-11-19T10:00Z", "1795082400", "now", "2026-11-19T10:00:00Z "}) {
        EXPECT_EQ(rfc3339_time(text), std::nullopt) << text;
    }
}

TEST(TimeOfAFile, IsCutToTheMicrosecond) {
    EXPECT_THAT(moment_of({1795082400, 123'456'789}), Optional(at(1795082400, 123'456)));
    EXPECT_THAT(moment_of({-1, 999'999'999}), Optional(at(-1, 999'999)));
}

TEST(TimeOfAFile, IsOneOfAYearThatCanBeWritten) {
    EXPECT_THAT(moment_of({253'402'300'799, 0}), Optional(at(253'402'300'799)));
    EXPECT_THAT(moment_of({-62'167'219'200, 0}), Optional(at(-62'167'219'200)));
    EXPECT_EQ(moment_of({253'402'300'800, 0}), std::nullopt);
    EXPECT_EQ(moment_of({-62'167'219'201, 0}), std::nullopt);
    EXPECT_EQ(moment_of({std::numeric_limits<std::time_t>::max(), 0}), std::nullopt);
}

TEST(TimeInSeconds, IsTheOneThatHasBegun) {
    EXPECT_EQ(second_of(at(1795082400, 999'999)), 1795082400);
    EXPECT_EQ(second_of(at(-1, 500'000)), -1);
}
