// SPDX-License-Identifier: Apache-2.0

#include "rows/value_json.h"

#include <gtest/gtest.h>

TEST(ValueJson, IsRaw) {
    EXPECT_EQ(value_json(std::int64_t{-1}).dump(), "-1");
    EXPECT_EQ(value_json(std::uint64_t{18446744073709551615u}).dump(), "18446744073709551615");
    EXPECT_EQ(value_json("a\"b").dump(), R"("a\"b")");
}

TEST(ValueJson, IsNullForAColumnThatWasNeverPut) {
    EXPECT_EQ(value_json({}).dump(), "null");
}

TEST(RowJson, HasEveryColumnInTheOrderOfTheTable) {
    const inventory_table table = {&kinds::memory, {"Id", "DevLocator", "ArrayId"}, {{std::int64_t{1}, "A1", {}}}};
    EXPECT_EQ(row_json(table, 0).dump(), R"({"Id":1,"DevLocator":"A1","ArrayId":null})");
}

TEST(JsonLine, IsOneLineOfUtf8) {
    EXPECT_EQ(json_line({{"name", "Z\u00fcri"}, {"nodes", {1, 2}}}), "{\"name\":\"Z\u00fcri\",\"nodes\":[1,2]}\n");
}

TEST(JsonText, IsHarmlessWhateverIsInIt) {
    EXPECT_EQ(json_text("\u202e\x1b\xff"), "\"\\u202e\\u001b\uFFFD\"\n");
}
