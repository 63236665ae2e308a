// SPDX-License-Identifier: Apache-2.0

#include "topology/pci_topology.h"

#include <gmock/gmock.h>

#include <limits>

#include "topology/pci_names.h"

using testing::ElementsAre;

namespace {

inventory_value number(std::int64_t value) {
    return value;
}

const inventory_value absent;
const inventory_value none = number(-1);

// Of node 0 and segment 0: a row id, that of the bridge above, a bus and a device.
inventory_table bridges(const std::vector<std::vector<inventory_value>>& rows) {
    return {&kinds::bridges, {"Id", "ParentId", "BusNo", "DevNo"}, rows};
}

inventory_table functions(const std::vector<std::vector<inventory_value>>& rows) {
    return {&kinds::devices, {"Id", "BridgeId", "BusNo", "DeviceNo"}, rows};
}

// What a test looks at of a part: b or f, its row id, its depth and the problem that it has.
std::vector<std::string> shape(const inventory_table& of_bridges, const inventory_table& of_functions) {
    pci_names names;
    std::vector<std::string> shapes;
    for (const pci_part& part : pci_topology(of_bridges, of_functions, names)) {
        const std::string problem = part.problem == pci_problem::circle           ? " circle"
                                    : part.problem == pci_problem::missing_bridge ? " missing"
                                                                                  : "";
        const auto id = number_in(part.row["Id"]);
        shapes.push_back((part.is_bridge ? "b" : "f") + (id ? std::to_string(*id) : "-") + " " +
                         std::to_string(part.depth) + problem);
    }
    return shapes;
}

}  // namespace

TEST(PciTopology, HasABridgeBeforeWhatIsBehindIt) {
    EXPECT_THAT(shape(bridges({{number(5), number(7), number(1), number(0)}, {number(7), none, number(0), number(1)}}),
                      functions({{number(1), number(5), number(2), number(0)}})),
                ElementsAre("b7 0", "b5 1", "f1 2"));
}

TEST(PciTopology, IsInTheOrderOfAddresses) {
    EXPECT_THAT(shape(bridges({{number(1), none, number(0), number(2)}}),
                      functions({{number(1), none, number(0), number(3)},
                                 {number(2), none, number(0), number(1)},
                                 {number(3), number(1), number(9), number(0)}})),
                ElementsAre("f2 0", "b1 0", "f3 1", "f1 0"));
}

TEST(PciTopology, HasTheNodesOneAfterTheOther) {
    const inventory_table of_two_nodes = {&kinds::devices,
                                          {"Id", "NodeIndex", "BusNo", "DeviceNo"},
                                          {{number(1), number(1), number(1), number(0)},
                                           {number(2), number(0), number(2), number(0)},
                                           {number(3), number(1), number(0), number(0)}}};
    EXPECT_THAT(shape(bridges({}), of_two_nodes), ElementsAre("f2 0", "f3 0", "f1 0"));
}

TEST(PciTopology, HasTheNodesOneAfterTheOtherBehindABridge) {
    const inventory_table of_two_nodes = {&kinds::devices,
                                          {"Id", "BridgeId", "NodeIndex", "BusNo", "DeviceNo"},
                                          {{number(1), number(7), number(1), number(1), number(0)},
                                           {number(2), number(7), number(0), number(2), number(0)}}};
    EXPECT_THAT(shape(bridges({{number(7), none, number(0), number(0)}}), of_two_nodes),
                ElementsAre("b7 0", "f2 1", "f1 1"));
}

TEST(PciTopology, TakesNoFunctionForABridge) {
    EXPECT_THAT(shape(bridges({{absent, none, number(0), number(9)}}),
                      functions({{number(1), none, number(0), number(0)},
                                 {number(2), number(1), number(0), number(1)},
                                 {number(3), number(0), number(0), number(2)}})),
                ElementsAre("f1 0", "b- 0", "f2 0 missing", "f3 0 missing"));
}

TEST(PciTopology, HasABridgeBeforeAFunctionOfItsAddress) {
    EXPECT_THAT(
        shape(bridges({{number(1), none, number(0), number(1)}}), functions({{number(2), none, number(0), number(1)}})),
        ElementsAre("b1 0", "f2 0"));
}

TEST(PciTopology, PutsWhatIsBehindAMissingBridgeToTheRootsBehindTheOthers) {
    EXPECT_THAT(shape(bridges({{number(1), number(99), number(0), number(0)}, {number(2), none, number(5), number(0)}}),
                      functions({{number(3), number(1), number(6), number(0)}})),
                ElementsAre("b2 0", "b1 0 missing", "f3 1"));
}

TEST(PciTopology, TakesABridgeNamedByTextForMissing) {
    EXPECT_THAT(shape(bridges({}), functions({{number(1), "first", number(0), number(0)}})),
                ElementsAre("f1 0 missing"));
    EXPECT_THAT(shape(bridges({{number(0), none, number(0), number(0)}}),
                      functions({{number(1), "first", number(0), number(1)}})),
                ElementsAre("b0 0", "f1 0 missing"));
}

TEST(PciTopology, TakesARowThatNamesNoBridgeForARoot) {
    EXPECT_THAT(shape(bridges({}), functions({{number(1), absent, number(0), number(0)}})), ElementsAre("f1 0"));
}

TEST(PciTopology, CutsACircleAtItsFirstBridge) {
    EXPECT_THAT(shape(bridges({{number(1), number(3), number(3), number(0)},
                               {number(2), number(1), number(1), number(0)},
                               {number(3), number(2), number(2), number(0)}}),
                      functions({{number(9), number(3), number(4), number(0)}})),
                ElementsAre("b2 0 circle", "b3 1", "b1 2", "f9 2"));
}

TEST(PciTopology, CutsABridgeThatIsBehindItself) {
    EXPECT_THAT(shape(bridges({{number(1), number(1), number(3), number(0)}}), functions({})),
                ElementsAre("b1 0 circle"));
}

TEST(PciTopology, CutsEveryCircle) {
    EXPECT_THAT(shape(bridges({{number(1), none, number(0), number(0)},
                               {number(2), number(2), number(1), number(0)},
                               {number(3), number(4), number(2), number(0)},
                               {number(4), number(3), number(3), number(0)}}),
                      functions({{number(1), number(4), number(4), number(0)}})),
                ElementsAre("b1 0", "b2 0 circle", "b3 0 circle", "b4 1", "f1 2"));
}

TEST(PciTopology, NamesTheParentByItsPlace) {
    const inventory_table above =
        bridges({{number(5), none, number(0), number(1)}, {number(6), number(5), number(1), number(0)}});
    const inventory_table below =
        functions({{number(1), none, number(0), number(0)}, {number(2), number(6), number(2), number(0)}});
    pci_names names;
    const std::vector<pci_part> parts = pci_topology(above, below, names);
    ASSERT_EQ(parts.size(), 4u);
    EXPECT_EQ(parts[1].parent, std::nullopt);
    EXPECT_EQ(parts[2].parent, 1u);
    EXPECT_EQ(parts[3].parent, 2u);
}

TEST(PartOfTheTopology, IsThePathToAnAddressAndWhatIsBehindIt) {
    const inventory_table all_bridges = {&kinds::bridges,
                                         {"Id", "ParentId", "SegNo", "BusNo", "DevNo", "FunNo"},
                                         {{number(1), absent, number(0), number(0), number(1), number(0)},
                                          {number(2), number(1), number(0), number(1), number(0), number(0)},
                                          {number(3), absent, number(0), number(0), number(2), number(0)}}};
    const inventory_table all_functions = {&kinds::devices,
                                           {"Id", "BridgeId", "SegNo", "BusNo", "DeviceNo", "FunctionNo"},
                                           {{number(1), number(2), number(0), number(2), number(0), number(0)},
                                            {number(2), number(1), number(0), number(1), number(5), number(0)},
                                            {number(3), number(3), number(0), number(3), number(0), number(0)}}};
    pci_names names;
    const std::vector<pci_part> parts =
        part_of_topology(pci_topology(all_bridges, all_functions, names), "0000:01:00.0");
    ASSERT_EQ(parts.size(), 3u);
    EXPECT_EQ(parts[0].row["Id"], number(1));
    EXPECT_EQ(parts[1].row["Id"], number(2));
    EXPECT_EQ(parts[1].parent, 0u);
    EXPECT_FALSE(parts[2].is_bridge);
    EXPECT_EQ(parts[2].parent, 1u);
}

TEST(PartOfTheTopology, IsNotWhatIsBehindAnotherRoot) {
    const inventory_table roots = {&kinds::bridges,
                                   {"Id", "ParentId", "SegNo", "BusNo", "DevNo", "FunNo"},
                                   {{number(1), absent, number(0), number(0), number(1), number(0)},
                                    {number(2), absent, number(0), number(0), number(2), number(0)},
                                    {number(3), number(1), number(0), number(1), number(0), number(0)},
                                    {number(4), number(2), number(0), number(2), number(0), number(0)}}};
    pci_names names;
    const std::vector<pci_part> parts = part_of_topology(pci_topology(roots, functions({}), names), "0000:00:01.0");
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_EQ(parts[0].row["Id"], number(1));
    EXPECT_EQ(parts[1].row["Id"], number(3));
    EXPECT_EQ(parts[1].parent, 0u);
}

TEST(PartOfTheTopology, IsEmptyWhereNothingIsAtTheAddress) {
    pci_names names;
    EXPECT_TRUE(
        part_of_topology(pci_topology(bridges({{number(1), absent, number(0), number(0)}}), functions({}), names),
                         "0000:7f:00.0")
            .empty());
}
