// SPDX-License-Identifier: Apache-2.0

#include "console/time_text.h"

#include <gmock/gmock.h>

using testing::Eq;
using testing::Optional;

TEST(TimeText, IsForPeopleAndForPrograms) {
    EXPECT_EQ(time_text(1795082400), "2026-11-19 10:00:00 UTC");
    EXPECT_EQ(rfc3339_text(1795082400), "2026-11-19T10:00:00Z");
}

TEST(TimeByRfc3339, IsReadWithItsOffset) {
    EXPECT_THAT(rfc3339_time("2026-11-19T10:00:00Z"), Optional(1795082400));
    EXPECT_THAT(rfc3339_time("2026-11-19t11:30:00.25+01:30"), Optional(1795082400));
    EXPECT_THAT(rfc3339_time("2026-11-19 06:00:00-04:00"), Optional(1795082400));
}

TEST(TimeByRfc3339, IsInTheCalendar) {
    for (const char* text : {"2026-02-29T10:00:00Z", "2026-13-01T10:00:00Z", "2026-11-19T24:00:00Z",
                             "2026-11-19T10:60:00Z", "2026-11-19T10:00:00+24:00"}) {
        EXPECT_EQ(rfc3339_time(text), std::nullopt) << text;
    }
}

TEST(TimeByRfc3339, IsComplete) {
    for (const char* text :
         {"", "2026-11-19", "2026-11-19T10:00:00", "2026-11-19T10:00Z", "1795082400", "now", "2026-11-19T10:00:00Z "}) {
        EXPECT_EQ(rfc3339_time(text), std::nullopt) << text;
    }
}
