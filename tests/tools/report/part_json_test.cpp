// SPDX-License-Identifier: Apache-2.0

#include "report/part_json.h"

#include <gtest/gtest.h>

#include "tools/report/reported.h"
#include "tools/values.h"

using nlohmann::json;

namespace {

explanation refused_component() {
    explanation told = {};
    told.path = "/component";
    told.title = "processor 'CPU 1'";
    told.name = "CPU 1";
    told.groups = {"cpu_info"};
    told.judged.became = fate::refused;
    told.judged.reasons = {"one", "two"};
    return told;
}

}  // namespace

TEST(PartJson, IsAllThatIsTold) {
    reported_inventory reported =
        reported_rows({{&kinds::memory, {"DevLocator", "MemSize"}, {{"A 1%", number(1024)}}}});
    inventory_table& labelled = reported.labelled[1];
    labelled.columns.insert(labelled.columns.end(), {"(name)", "(kind)", "(other)"});
    labelled.rows[0].insert(labelled.rows[0].end(), {"Maker Part", "storage", "x"});
    EXPECT_EQ(part_json(reported, inventory_row(labelled, 0)),
              json({{"id", "A_1%"},
                    {"href", "A_1%25"},
                    {"place", "A 1%"},
                    {"kind", "memory"},
                    {"change", nullptr},
                    {"values",
                     "<dl class=\"values\"><div><dt>DevLocator</dt><dd>A 1%</dd></div>"
                     "<div><dt>MemSize</dt><dd>1 GiB <small>1024</small></dd></div>"
                     "<div><dt>name</dt><dd>Maker Part</dd></div><div><dt>kind</dt><dd>storage</dd></div>"
                     "<div><dt>(other)</dt><dd>x</dd></div></dl>\n"}}));
}

TEST(PartJson, HasTheMarkOfAChange) {
    const inventory_table modules{&kinds::memory, {"DevLocator"}, {{"A1"}}};
    const reported_inventory reported = reported_rows_since({}, {modules});
    EXPECT_EQ(part_json(reported, inventory_row(reported.labelled_table(kinds::memory), 0))["change"],
              json({{"word", "added"}, {"mark", "+"}}));
}

TEST(LeftOutJson, IsAllThatIsTold) {
    explanation told = refused_component();
    told.log.push_back({{}, "a line"});
    EXPECT_EQ(left_out_json(reported_components({told}), 0), json({{"id", "CPU_1"},
                                                                   {"href", "CPU_1"},
                                                                   {"place", "CPU 1"},
                                                                   {"kind", "component"},
                                                                   {"change", nullptr},
                                                                   {"title", "processor 'CPU 1'"},
                                                                   {"path", "/component"},
                                                                   {"code", "refused"},
                                                                   {"why", "left out: refused"},
                                                                   {"reasons", {"one", "two"}},
                                                                   {"logged", {"a line"}}}));
}

TEST(LeftOutJson, HasTheKindOfTheGroupThatWouldMakeARow) {
    explanation told = refused_component();
    for (const known_group& group : known_groups()) {
        told.recorded_by = &group;
        EXPECT_EQ(left_out_json(reported_components({told}), 0)["kind"], group.kind->name);
    }
    EXPECT_EQ(left_out_json(reported_components({told}), 0)["logged"], json::array());
}

TEST(WhyText, IsTheRuleOrTheCode) {
    explanation told = refused_component();
    EXPECT_EQ(why_text(told), "left out: refused");
    told.rule = omission::no_location;
    EXPECT_EQ(why_text(told), "left out: has no location");
}

TEST(CountedText, IsOneOrMany) {
    EXPECT_EQ(counted(0, "slot", "slots"), "0 slots");
    EXPECT_EQ(counted(1, "slot", "slots"), "1 slot");
    EXPECT_EQ(counted(2, "slot", "slots"), "2 slots");
}
