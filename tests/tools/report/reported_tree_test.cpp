// SPDX-License-Identifier: Apache-2.0

#include "report/reported_tree.h"

#include <gmock/gmock.h>

#include "explanation/explanation.h"
#include "report/sections.h"
#include "tools/report/reported.h"
#include "tools/values.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The titles of groups and, for each part, how many bridges are above it and its address.
std::vector<std::string> tree_of_file(const std::string& components) {
    opened_source opened = opened_components(components, "a.xml");
    reported_inventory reported = reported_rows(opened.rows.read_all());
    reported.is_explained = true;
    reported.explanations = explanations_of(*opened.document, false);
    pci_names names;
    const std::vector<pci_part> parts =
        pci_topology(reported.labelled_table(kinds::bridges), reported.labelled_table(kinds::devices), names);
    std::vector<std::string> lines;
    for (const tree_group& group : reported_tree(reported, parts)) {
        lines.push_back(group.server + ", " + group.segment);
        for (const tree_node& node : group.nodes) {
            lines.push_back(std::to_string(node.depth) + (node.part ? " " : " left out ") + node.address);
        }
    }
    return lines;
}

std::string function_at(const std::string& bus, const std::string& device, bool is_recorded) {
    std::vector<setting> settings = {hex("Bus Number", bus), hex("Device Number", device), hex("Function Number", "0")};
    if (is_recorded) {
        settings.push_back(integer("Location", "1"));
    }
    return cds_component("pci_device_info", settings);
}

std::string bridge_at(const std::string& bus, const std::string& device, const std::string& children) {
    return cds_component("pci_bridge_info",
                         {hex("Bus Number", bus), hex("Device Number", device), hex("Function Number", "0")}, children);
}

}  // namespace

TEST(ReportedTree, PutsWhatWasLeftOutAmongTheOthersByAddress) {
    EXPECT_THAT(tree_of_file(bridge_at("0", "1",
                                       function_at("1", "1", true) + function_at("1", "3", true) +
                                           function_at("1", "0", false) + function_at("1", "2", false) +
                                           function_at("1", "4", false))),
                ElementsAre("No node, Segment 0000", "0 0000:00:01.0", "1 left out 0000:01:00.0", "1 0000:01:01.0",
                            "1 left out 0000:01:02.0", "1 0000:01:03.0", "1 left out 0000:01:04.0"));
}

TEST(ReportedTree, PutsWhatWasLeftOutBehindWhatHasItsAddress) {
    EXPECT_THAT(tree_of_file(function_at("0", "1", false) + function_at("0", "1", true)),
                ElementsAre("No node, Segment 0000", "0 0000:00:01.0", "0 left out 0000:00:01.0"));
}

TEST(ReportedTree, PutsWhatWasLeftOutBehindItsBridgeAndNoFunctionOfThatId) {
    EXPECT_THAT(tree_of_file(function_at("0", "1", true) + bridge_at("0", "2", function_at("1", "0", false))),
                ElementsAre("No node, Segment 0000", "0 0000:00:01.0", "0 0000:00:02.0", "1 left out 0000:01:00.0"));
}

TEST(ReportedTree, PutsWhatWasLeftOutToTheServerOfTheRowBeforeIt) {
    EXPECT_THAT(tree_of_file(server(function_at("0", "1", true) + function_at("0", "2", false), "1") +
                             server(function_at("0", "1", true) + function_at("0", "2", false), "2")),
                ElementsAre("Node 1, Segment 0000", "0 0000:00:01.0", "0 left out 0000:00:02.0", "Node 2, Segment 0000",
                            "0 0000:00:01.0", "0 left out 0000:00:02.0"));
}

TEST(ReportedTree, PutsWhatWasLeftOutBeforeAllRowsToTheFirstServer) {
    EXPECT_THAT(tree_of_file(server(function_at("0", "1", false) + function_at("0", "2", true), "1")),
                ElementsAre("Node 1, Segment 0000", "0 left out 0000:00:01.0", "0 0000:00:02.0"));
}

TEST(ReportedTree, KnowsTheServerByOtherRowsToo) {
    EXPECT_THAT(tree_of_file(server(processor("CPU 1") + function_at("0", "1", false), "3")),
                ElementsAre("Node 3, Segment 0000", "0 left out 0000:00:01.0"));
    EXPECT_THAT(tree_of_file(function_at("0", "1", false)),
                ElementsAre("No node, Segment 0000", "0 left out 0000:00:01.0"));
}

TEST(ReportedTree, HasAGroupForEachSegmentOfAServer) {
    const std::string elsewhere = cds_component("pci_device_info", joined(address("1"), {hex("Segment Number", "1")}));
    EXPECT_THAT(tree_of_file(function_at("0", "1", true) + elsewhere + function_at("0", "2", false)),
                ElementsAre("No node, Segment 0000", "0 0000:00:01.0", "0 left out 0000:00:02.0",
                            "No node, Segment 0001", "0 left out 0001:01:00.0"));
}

TEST(ReportedTree, HasNothingButBridgesAndFunctions) {
    EXPECT_THAT(tree_of_file(cds_component("cpu_info", {}) + cds_component("memory_info", {}) +
                             cds_component("fan_info", {}) + cds_component("memory-info", {})),
                IsEmpty());
}

TEST(ReportedTree, KnowsWhatIsBelowWhat) {
    const std::vector<inventory_table> tables = {
        {&kinds::bridges,
         {"Id", "ParentId", "BusNo"},
         {{number(1), number(-1), number(0)}, {number(2), number(1), number(1)}}},
        {&kinds::devices,
         {"BridgeId", "BusNo"},
         {{number(1), number(2)}, {number(2), number(3)}, {number(-1), number(4)}}}};
    const reported_inventory reported = reported_rows(tables);
    pci_names names;
    const std::vector<pci_part> parts =
        pci_topology(reported.labelled_table(kinds::bridges), reported.labelled_table(kinds::devices), names);
    const std::vector<tree_group> groups = reported_tree(reported, parts);
    ASSERT_EQ(groups.size(), 1u);
    const std::vector<tree_node>& nodes = groups.front().nodes;
    ASSERT_EQ(nodes.size(), 5u);
    EXPECT_THAT(groups.front().roots, ElementsAre(0, 4));
    EXPECT_THAT(nodes[0].below, ElementsAre(1, 3));
    EXPECT_THAT(nodes[1].below, ElementsAre(2));
    EXPECT_THAT(nodes[2].below, IsEmpty());
    EXPECT_THAT(nodes[3].below, IsEmpty());
}
