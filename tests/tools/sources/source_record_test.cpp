// SPDX-License-Identifier: Apache-2.0

#include "sources/source_record.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "sources/memory_database.h"
#include "sources/memory_inventory.h"
#include "support/replaced_stdin.h"
#include "support/scratch_file.h"

namespace {

source_record of_text(const std::string& text) {
    std::istringstream in(text);
    return digest_of(in);
}

std::string age(std::time_t seconds) {
    return age_text({"x.xml", 0, "", 1'000'000'000}, 1'000'000'000 + seconds);
}

}  // namespace

TEST(SourceRecord, HasTheSha256AndTheSizeOfItsBytes) {
    EXPECT_EQ(of_text("abc").sha256, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(of_text("").sha256, "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(of_text(std::string(1'000'000, 'a')).sha256,
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
    EXPECT_EQ(of_text(std::string(1'000'000, 'a')).bytes, 1'000'000u);
    EXPECT_EQ(of_text("abc").loaded_at, 0);
}

TEST(SourceRecord, IsAboutTheFileThatWasNamed) {
    const scratch_file file("abc");
    const source_record source = source_of(file.path(), input_file(file.path()));
    EXPECT_EQ(source.name, file.path());
    EXPECT_EQ(source.bytes, 3u);
    EXPECT_NE(source.loaded_at, 0);
}

TEST(SourceRecord, IsAboutTheFileThatIsStandardInput) {
    const scratch_file file("abc");
    const replaced_stdin standard_input(file.path());
    const input_file input("-");
    EXPECT_EQ(input.read_all(), "abc");
    EXPECT_EQ(source_of("-", input).bytes, 3u);
}

TEST(SourceRecord, IsReadBackFromTheDatabase) {
    const memory_database database;
    const inventory rows = read_memory(database, "rows");
    EXPECT_FALSE(rows.source().has_value());
    ASSERT_TRUE(write_source(database.handle(), {"old.xml", 1, "aa", 2}));
    ASSERT_TRUE(write_source(database.handle(), {"new.xml", 5'000'000'000, "bb", 3}));
    const auto source = rows.source();
    ASSERT_TRUE(source.has_value());
    EXPECT_EQ(source->name, "new.xml");
    EXPECT_EQ(source->bytes, 5'000'000'000u);
    EXPECT_EQ(source->sha256, "bb");
    EXPECT_EQ(source->loaded_at, 3);
}

TEST(AgeText, SaysHowOldTheRowsAre) {
    const std::string from = "2001-09-09 01:46:40 UTC, from 'x.xml'";
    EXPECT_EQ(age(0), "Loaded just now, " + from);
    EXPECT_EQ(age(2), "Loaded 2 seconds ago, " + from);
    EXPECT_EQ(age(119), "Loaded 119 seconds ago, " + from);
    EXPECT_EQ(age(120), "Loaded 2 minutes ago, " + from);
    EXPECT_EQ(age(7199), "Loaded 119 minutes ago, " + from);
    EXPECT_EQ(age(7200), "Loaded 2 hours ago, " + from);
    EXPECT_EQ(age(2 * 86400 - 1), "Loaded 47 hours ago, " + from);
    EXPECT_EQ(age(2 * 86400), "Loaded 2 days ago, " + from);
}

TEST(AgeText, SaysOnlyWhenWhereTheClockWasSetBack) {
    EXPECT_EQ(age(-5), "Loaded 2001-09-09 01:46:40 UTC, from 'x.xml'");
}

TEST(AgeText, SaysOnlyWhenWhereTheFileHasNoName) {
    EXPECT_EQ(age_text({"", 0, "", 0}, 0), "Loaded just now, 1970-01-01 00:00:00 UTC");
}

TEST(AgeText, CallsStandardInputByItsName) {
    EXPECT_EQ(age_text({"-", 0, "", 0}, 0), "Loaded just now, 1970-01-01 00:00:00 UTC, from standard input");
}
