// SPDX-License-Identifier: Apache-2.0

/// Tests that compare two inventories.
#ifndef TESTS_TOOLS_DIFFERENCE_DIFFERENCE_TEST_H
#define TESTS_TOOLS_DIFFERENCE_DIFFERENCE_TEST_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "difference/difference.h"
#include "difference/difference_formats.h"
#include "rows/table.h"
#include "support/cds_hardware.h"
#include "tools/loaded_inventory.h"

class difference_test : public testing::Test {
protected:
    /// Makes two inventories of these components.
    void write_both(const std::string& old_components, const std::string& new_components) {
        old_tables = loaded_inventory(cds_file(old_components)).read_all();
        new_tables = loaded_inventory(cds_file(new_components)).read_all();
    }

    comparison difference() const { return compare(old_tables, new_tables); }

    void expect_same(const std::string& text) const {
        EXPECT_TRUE(difference().is_same());
        EXPECT_EQ(difference_text(difference(), {}), text);
    }

    void expect_different(const std::string& text) const {
        EXPECT_FALSE(difference().is_same());
        EXPECT_EQ(difference_text(difference(), {}), text);
    }

    /// Puts a value into a column of every row of a kind.
    static void put(std::vector<inventory_table>& tables, const inventory_kind& kind, const std::string& column,
                    const inventory_value& value) {
        for (inventory_table& table : tables) {
            for (std::vector<inventory_value>& row : table.rows) {
                if (table.kind == &kind) {
                    row[*find_column(table, column)] = value;
                }
            }
        }
    }

    std::vector<inventory_table> old_tables;
    std::vector<inventory_table> new_tables;
};

#endif
