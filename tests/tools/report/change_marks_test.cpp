// SPDX-License-Identifier: Apache-2.0

#include "report/change_marks.h"

#include <gtest/gtest.h>

#include "rows/kinds.h"
#include "tools/report/reported.h"

namespace {

inventory_table modules_of_makers(const std::vector<std::vector<inventory_value>>& rows) {
    return {&kinds::memory, {"DevLocator", "SerialNo", "Manufacturer"}, rows};
}

const std::vector<inventory_table> older_modules = {
    modules_of_makers({{"A1", "S1", "x"}, {"A2", "S2", "x"}, {"A3", "S3", "x"}, {"A4", "S4", "x"}, {"A5", "S5", "x"}})};
const std::vector<inventory_table> newer_modules = {
    modules_of_makers({{"A1", "S1", "x"}, {"A2", "S2", "y"}, {"A6", "S3", "x"}, {"A7", "S7", "x"}})};

}  // namespace

TEST(ChangeMarks, TellWhatBecameOfARow) {
    const comparison compared = compare(older_modules, newer_modules);
    const change_marks marks(&compared);
    const auto mark_of = [&marks](std::size_t place) { return marks.of(inventory_row(newer_modules[0], place)); };
    EXPECT_EQ(mark_of(0), nullptr);
    EXPECT_EQ(mark_of(1), &changed_mark);
    EXPECT_EQ(mark_of(2), &moved_mark);
    EXPECT_EQ(mark_of(3), &added_mark);
}

TEST(ChangeMarks, AreNoneWithoutAnOlderInventory) {
    EXPECT_EQ(change_marks(nullptr).of(inventory_row(newer_modules[0], 0)), nullptr);
}

TEST(ChangeMarks, AreAWordAndASign) {
    const auto text = [](const change_mark& mark) { return std::string(mark.word) + ' ' + mark.mark; };
    EXPECT_EQ(text(added_mark), "added +");
    EXPECT_EQ(text(removed_mark), "removed \u2212");
    EXPECT_EQ(text(changed_mark), "changed ~");
    EXPECT_EQ(text(moved_mark), "moved \u2192");
}

TEST(CountOfChanges, IsOfAllKindsOfChange) {
    EXPECT_EQ(count_changes(compare(older_modules, newer_modules)), 5u);
    EXPECT_EQ(count_changes(compare(older_modules, older_modules)), 0u);
}
