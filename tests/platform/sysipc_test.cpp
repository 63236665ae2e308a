// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>
#include <sysipc.h>

#include <type_traits>

namespace {

TEST(SysipcException, GivesItsMessage) {
    EXPECT_STREQ(sysipc::exception("line 1: wrong").what(), "line 1: wrong");
}

TEST(SysipcException, TakesTwoNumbersBesideItsMessage) {
    EXPECT_STREQ(sysipc::exception("wrong", 1, -2).what(), "wrong");
}

TEST(SysipcException, KeepsItsMessageInACopy) {
    const sysipc::exception copy = [] { return sysipc::exception(std::string(100, 'x')); }();
    EXPECT_EQ(copy.what(), std::string(100, 'x'));
}

TEST(SysipcException, IsCaughtAsAStandardException) {
    try {
        throw sysipc::exception("wrong");
    } catch (const std::exception& caught) {
        EXPECT_STREQ(caught.what(), "wrong");
    }
}

TEST(SysipcException, DoesNotComeFromATextByItself) {
    EXPECT_FALSE((std::is_convertible_v<std::string, sysipc::exception>));
}

}  // namespace
