// SPDX-License-Identifier: Apache-2.0

#include "change_detection/service.h"

#include <gtest/gtest.h>

namespace {

const inventory_marks before = {{1, "s"}, {1, "p"}};

}  // namespace

TEST(DigestsFailed, NotWhenNothingChanged) {
    EXPECT_FALSE(digests_failed(before, before));
}

TEST(DigestsFailed, NotWhenADigestChangedWithItsSequence) {
    EXPECT_FALSE(digests_failed(before, {{1, "s"}, {2, "q"}}));
    EXPECT_FALSE(digests_failed({}, {{1, "s"}, {1, "p"}}));
}

TEST(DigestsFailed, WhenASequenceChangedAndItsDigestDidNot) {
    EXPECT_TRUE(digests_failed(before, {{2, "s"}, {2, "p"}}));
    EXPECT_TRUE(digests_failed(before, {{1, "s"}, {2, "p"}}));
}

TEST(DigestsFailed, WhenThereIsNoDigest) {
    EXPECT_TRUE(digests_failed({}, {}));
    EXPECT_TRUE(digests_failed(before, {{1, "s"}, {1, ""}}));
}
