// SPDX-License-Identifier: Apache-2.0

#include "sources/file_format.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/scratch_file.h"

namespace {

bool is_database(const std::string& content) {
    std::istringstream in(content);
    return begins_as_database(in);
}

}  // namespace

TEST(FileFormat, OfADatabaseIsToldByItsFirstBytes) {
    EXPECT_TRUE(is_database(std::string("SQLite format 3\0more", 20)));
    EXPECT_FALSE(is_database("SQLite format 3"));
    EXPECT_FALSE(is_database("<component/>"));
    EXPECT_FALSE(is_database(""));
}

TEST(FileFormat, OfAPackedFileIsToldByItsFirstBytes) {
    EXPECT_TRUE(is_packed_file(scratch_file("\x1f\x8b\x08").path()));
    EXPECT_FALSE(is_packed_file(scratch_file("\x1f").path()));
    EXPECT_FALSE(is_packed_file(scratch_file("<component/>").path()));
    EXPECT_FALSE(is_packed_file("missing"));
}
