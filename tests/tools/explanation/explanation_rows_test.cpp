// SPDX-License-Identifier: Apache-2.0

// The rows that an explanation tells of are those of a load.

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>

#include "rows/fields.h"
#include "tools/explanation/explanation_test.h"
#include "tools/loaded_inventory.h"

namespace {

using rows_by_kind = std::map<const inventory_kind*, std::vector<std::vector<inventory_value>>>;

rows_by_kind loaded_rows(const std::string& file) {
    rows_by_kind rows;
    for (const inventory_table& table : loaded_inventory(file).read_all()) {
        rows[table.kind] = table.rows;
    }
    return rows;
}

}  // namespace

class ExplainedRows : public explanation_test {
protected:
    static void expect_rows_of_a_load(const std::string& file) {
        rows_by_kind rows;
        for (const inventory_kind* kind : kinds::all) {
            rows[kind] = {};
        }
        for (explanation& told : explanations(file)) {
            if (told.row) {
                forget_absent_values(*told.row);  // as who reads a database does
                rows[told.row->kind].push_back(told.row->rows.front());
            }
        }
        EXPECT_EQ(rows, loaded_rows(file));
    }
};

TEST_F(ExplainedRows, AreThoseOfALoadWhateverLiesBetweenThem) {
    const std::string passed_over = cds_component("cpu_info", {}, server(module("X", ""), "7"));
    const std::string nameless = cds_component("pci_bridge_info", {}, module("C1", "") + bridge("9"));
    expect_rows_of_a_load(
        cds_file(module("A1", "S1") + passed_over + server(module("B1", ""), "2") +
                 bridge("1", {}, nameless + function("3") + module("D1", "") + bridge("4", {}, function("5"))) +
                 function("6") + module("E1", "") + cds_component("memory_info", {}) + module("F1", "")));
}

class ExplainedSample : public ExplainedRows, public testing::WithParamInterface<const char*> {};

TEST_F(ExplainedRows, AreBehindTheNearestBridgeAboveThem) {
    std::vector<std::int64_t> above;
    for (const explanation& told :
         explanations(cds_file(bridge("1", {}, bridge("2", {}, function("3")) + function("4")) + function("5")))) {
        above.push_back(told.bridge);
    }
    const std::int64_t none = component_loader::no_parent;
    EXPECT_THAT(above, testing::ElementsAre(none, 1, 2, 1, none));
}

TEST_F(ExplainedRows, AreBehindNoBridgeInAChildSlotGroup) {
    const std::vector<explanation> all = explanations(cds_component(cds_slots(cds_group("cpu_info"))));
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].bridge, component_loader::no_parent);
}

TEST_P(ExplainedSample, HasTheRowsOfALoad) {
    std::ifstream file(SAMPLES_DIR + std::string("/") + GetParam() + ".xml");
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    ASSERT_NE(content, "");
    expect_rows_of_a_load(content);
}

// gtest takes no dashes in names.
INSTANTIATE_TEST_SUITE_P(Of, ExplainedSample,
                         testing::Values("minimal", "no-hardware", "tolerated", "two-socket-server"),
                         [](const auto& tested) {
                             std::string name = tested.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });
