// SPDX-License-Identifier: Apache-2.0

// Comparing two servers, where not everything that differs is of interest.

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tools/difference/difference_test.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::string machine(const std::string& node, const std::string& serial, const std::string& locator = "A1") {
    return server(processor("CPU 1") + module(locator, serial) + bridge("1", {}, function("2")), node);
}

constexpr const char* note =
    "All parts stand at node 1 on one side and at node 2 on the other: nodes are not compared.\n";

}  // namespace

class TwoServers : public difference_test {
protected:
    comparison without_serials() const { return compare(old_tables, new_tables, ignored_columns("serials")); }
};

TEST_F(TwoServers, HaveTheColumnsOfTheOldOneFirst) {
    write_both(module("A1", "S1"), module("A1", "S1"));
    const auto add = [](std::vector<inventory_table>& tables, const std::string& column) {
        for (inventory_table& table : tables) {
            table.columns.push_back(column);
            for (std::vector<inventory_value>& row : table.rows) {
                row.emplace_back(std::int64_t{1});
            }
        }
    };
    add(old_tables, "OfTheOld");
    add(new_tables, "OfTheNew");
    expect_different(
        "Memory: 1 changed\n"
        "~ A1: serial number S1\n"
        "    OfTheOld  1 -> -\n"
        "    OfTheNew  - -> 1\n");
}

TEST_F(TwoServers, AtOtherNodesAreComparedWithoutThem) {
    write_both(machine("1", "S1"), machine("2", "S1"));
    expect_same(note + std::string("No difference.\n"));
}

TEST_F(TwoServers, AtOtherNodesDifferInWhatElseIsOther) {
    write_both(machine("1", "S1"), machine("2", "S2"));
    expect_different(note + std::string("\nMemory: 1 changed\n"
                                        "~ A1: serial number S2\n"
                                        "    SerialNo  \"S1\" -> \"S2\"\n"));
}

TEST_F(TwoServers, OfSeveralNodesAreComparedWithThem) {
    write_both(machine("1", "S1") + machine("3", "S3"), machine("2", "S1") + machine("3", "S3"));
    EXPECT_FALSE(difference().ignored_nodes.has_value());
    EXPECT_FALSE(difference().is_same());
}

TEST_F(TwoServers, AreTheSameButForSerialNumbersWhereTheseAreIgnored) {
    write_both(machine("1", "S1"), machine("1", "S2"));
    EXPECT_TRUE(without_serials().is_same());
    EXPECT_EQ(difference_text(without_serials(), {}), "Same but for serial numbers.\n");
}

TEST_F(TwoServers, AreJustTheSameWhereNothingWasIgnored) {
    write_both(machine("1", "S1"), machine("1", "S1"));
    EXPECT_EQ(difference_text(without_serials(), {}), "No difference.\n");
}

TEST_F(TwoServers, DifferAllTheSameInWhatIsNotIgnored) {
    write_both(machine("1", "S1"), machine("1", "S2", "B1"));
    EXPECT_FALSE(without_serials().is_same());
    EXPECT_FALSE(without_serials().differs_in_ignored);
}

TEST_F(TwoServers, KeepTheirNodeWhereTheOtherHasNoParts) {
    write_both(server(processor("CPU 1")), "");
    expect_different(
        "Processors: 1 removed\n"
        "- CPU 1, node 1\n");
    write_both("", server(processor("CPU 1")));
    expect_different(
        "Processors: 1 added\n"
        "+ CPU 1, node 1\n");
}

TEST_F(TwoServers, AreTheSameButForTheColumnsThatAreNamed) {
    write_both(server(processor("CPU 1", {integer("Core Count", "8")})),
               server(processor("CPU 1", {integer("Core Count", "9")})));
    EXPECT_EQ(difference_text(compare(old_tables, new_tables, {"CoreCount"}), {}), "Same but for CoreCount.\n");
}

TEST_F(TwoServers, AreTheSameButForEveryColumnThatIsNamed) {
    write_both(server(processor("CPU 1", {integer("Core Count", "8")})),
               server(processor("CPU 1", {integer("Core Count", "9")})));
    EXPECT_EQ(difference_text(compare(old_tables, new_tables, {"CoreCount", "SlotNo", "Size"}), {}),
              "Same but for CoreCount, SlotNo, Size.\n");
}

TEST_F(TwoServers, AreComparedWithoutTheirNodesWhereOneHasNone) {
    const std::string parts = processor("CPU 1") + module("A1", "S1") + bridge("1", {}, function("2"));
    write_both(parts, machine("2", "S1"));
    expect_same(
        "All parts stand at no node on one side and at node 2 on the other: nodes are not compared.\nNo difference.\n");
    EXPECT_EQ(nlohmann::json::parse(difference_json(difference()))["ignored_nodes"],
              nlohmann::json({{"old", nullptr}, {"new", 2}}));
}

TEST_F(TwoServers, AreTheSameWhereTheNodeIsIgnored) {
    write_both(machine("1", "S1"), machine("2", "S1"));
    EXPECT_EQ(difference_text(compare(old_tables, new_tables, {"NodeIndex"}), {}), "No difference.\n");
}

TEST_F(TwoServers, AreTheSameButForNodesOfWhichThereAreSeveral) {
    write_both(machine("1", "S1") + server(processor("CPU 9"), "3"),
               machine("2", "S1") + server(processor("CPU 9"), "3"));
    EXPECT_EQ(difference_text(compare(old_tables, new_tables, {"NodeIndex"}), {}), "Same but for NodeIndex.\n");
}

TEST_F(TwoServers, ArePaddedWithBlanksByTheirFirmware) {
    const std::vector<setting> padded = {text("Part Number", "M393A4K40CB2-CVF  ")};
    const std::vector<setting> trimmed = {text("Part Number", "M393A4K40CB2-CVF")};
    write_both(module("A1 ", "S1  ", padded), module("A1", "S1", trimmed));
    expect_same("No difference.\n");
}

TEST_F(TwoServers, AreCountedByKind) {
    write_both(machine("1", "S1") + server(module("B1", "S3")), machine("1", "S2"));
    EXPECT_EQ(difference_counts(difference(), {}),
              "Kind        Difference\n"
              "Processors  no difference\n"
              "Memory      1 removed, 1 changed\n"
              "Bridges     no difference\n"
              "Devices     no difference\n");
}

TEST_F(TwoServers, AreCountedWithoutATableWhereAKindWouldNotFitIntoALine) {
    write_both(machine("1", "S1"), machine("1", "S2"));
    text_style style;
    style.width = 22;
    EXPECT_THAT(difference_counts(difference(), style), StartsWith("Kind        Difference\nProcessors  no\n"));
    style.width = 21;
    EXPECT_THAT(difference_counts(difference(), style), StartsWith("Kind        Processor\n            s\n"));
}

TEST_F(TwoServers, AreCountedInANarrowTerminal) {
    write_both(machine("1", "S1") + server(module("B1", "S3")), machine("1", "S2"));
    text_style narrow;
    narrow.width = 24;
    EXPECT_EQ(difference_counts(difference(), narrow),
              "Kind        Difference\n"
              "Processors  no\n"
              "            difference\n"
              "Memory      1 removed, 1\n"
              "            changed\n"
              "Bridges     no\n"
              "            difference\n"
              "Devices     no\n"
              "            difference\n");
}

TEST_F(TwoServers, ThatAreTheSameAreNotCounted) {
    write_both(machine("1", "S1"), machine("1", "S1"));
    EXPECT_EQ(difference_counts(difference(), {}), "No difference.\n");
}

TEST_F(TwoServers, HaveWhatWasLeftOutInJson) {
    write_both(machine("1", "S1"), machine("2", "S2"));
    const auto shown = nlohmann::json::parse(difference_json(without_serials()));
    EXPECT_EQ(shown["same"], true);
    EXPECT_EQ(shown["ignored_nodes"], nlohmann::json({{"old", 1}, {"new", 2}}));
    EXPECT_THAT(shown["ignored_columns"], ElementsAre("SerialNo", "AssetTag"));
}
