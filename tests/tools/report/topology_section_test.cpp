// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "report/sections.h"
#include "tools/report/reported.h"
#include "tools/values.h"

using testing::ElementsAre;

namespace {

inventory_table functions_in_segments(int count) {
    inventory_table table{&kinds::devices, {"NodeIndex", "SegNo", "BusNo", "DeviceNo", "FunctionNo"}, {}};
    for (int i = 0; i < count; ++i) {
        table.rows.push_back({number(1), number(i), number(0), number(0), number(0)});
    }
    return table;
}

// Each is behind the one before it.
inventory_table chain_of_bridges(int count) {
    inventory_table table{&kinds::bridges, {"Id", "ParentId", "BusNo"}, {}};
    for (int i = 0; i < count; ++i) {
        table.rows.push_back({number(i + 1), number(i == 0 ? -1 : i), number(i)});
    }
    return table;
}

// How deep each part is nested.
std::vector<int> depths_in(const std::string& tree) {
    const std::regex tag("<(/?details)( class=\"part)?");
    std::vector<int> depths;
    std::vector<bool> open;
    for (std::sregex_iterator each(tree.begin(), tree.end(), tag), end; each != end; ++each) {
        if ((*each)[1] == "/details") {
            open.pop_back();
            continue;
        }
        if ((*each)[2].matched) {
            depths.push_back(static_cast<int>(std::count(open.begin(), open.end(), true)));
        }
        open.push_back((*each)[2].matched);
    }
    return depths;
}

std::string tree_in(const std::string& section) {
    return part_of_page(section, "<div class=\"tree\">", "</section>");
}

}  // namespace

TEST(TopologySection, OpensUpToEightGroups) {
    const std::string group = "<details class=\"group\"( open)?>";
    EXPECT_EQ(found_in(topology_section(reported_rows({functions_in_segments(8)})), group),
              std::vector<std::string>(8, " open"));
    EXPECT_EQ(found_in(topology_section(reported_rows({functions_in_segments(9)})), group),
              std::vector<std::string>(9));
}

TEST(TopologySection, CountsTheParts) {
    const std::string title = "<h3>([^<]*)</h3> <span class=\"muted\">([^<]*)</span>";
    EXPECT_THAT(found_in(topology_section(reported_rows({functions_in_segments(2)})), title),
                ElementsAre("Node 1, Segment 0000 | 1 part", "Node 1, Segment 0001 | 1 part"));
    EXPECT_THAT(found_in(topology_section(reported_rows({chain_of_bridges(3)})), title),
                ElementsAre("No node, Segment - | 3 parts"));
}

TEST(TopologySection, NestsAHundredBridgesAndTellsWhatIsDeeper) {
    const std::string tree = tree_in(topology_section(reported_rows({chain_of_bridges(104)})));
    std::vector<int> depths(104, 100);
    for (int i = 0; i < 100; ++i) {
        depths[static_cast<std::size_t>(i)] = i;
    }
    EXPECT_EQ(depths_in(tree), depths);
    EXPECT_THAT(found_in(tree, "<span class=\"muted\">(behind [^<]*)</span>"),
                ElementsAre("behind 101 bridges:", "behind 102 bridges:", "behind 103 bridges:"));
}

TEST(TopologySection, PutsPartsBelowTheirBridgesInOrder) {
    const inventory_table bridges{&kinds::bridges,
                                  {"Id", "ParentId", "SegNo", "BusNo", "DevNo", "FunNo"},
                                  {{number(1), number(-1), number(0), number(0), number(1), number(0)},
                                   {number(2), number(1), number(0), number(1), number(1), number(0)}}};
    const inventory_table functions{&kinds::devices,
                                    {"BridgeId", "SegNo", "BusNo", "DeviceNo", "FunctionNo"},
                                    {{number(1), number(0), number(1), number(0), number(0)},
                                     {number(2), number(0), number(2), number(0), number(0)},
                                     {number(2), number(0), number(2), number(1), number(0)},
                                     {number(1), number(0), number(1), number(2), number(0)},
                                     {number(-1), number(0), number(0), number(2), number(0)}}};
    const std::string tree = tree_in(topology_section(reported_rows({bridges, functions})));
    EXPECT_THAT(found_in(tree, " id=\"([^\"]*)\""),
                ElementsAre("0000:00:01.0", "0000:01:00.0", "0000:01:01.0", "0000:02:00.0", "0000:02:01.0",
                            "0000:01:02.0", "0000:00:02.0"));
    EXPECT_THAT(depths_in(tree), ElementsAre(0, 1, 1, 2, 2, 1, 0));
}

TEST(TopologySection, SaysThatThereAreNoParts) {
    EXPECT_EQ(topology_section(reported_rows({})),
              "<section id=\"section-pci\" aria-label=\"PCI topology\">\n<h2>PCI topology</h2>\n\n"
              "<p class=\"none\">No PCI bridges or functions are recorded.</p>\n</section>\n");
}

TEST(TopologySection, MarksNothingThatWasLeftOutBehindAChangedBridge) {
    const std::string left_out = cds_component("pci_device_info", address("2"));
    const std::string page = page_about_changes("", bridge("1", {}, left_out));
    EXPECT_THAT(found_in(tree_in(page), " id=\"([^\"]*)\"[^>]*?( data-change=\"added\")?( open)?>\n<summary>"),
                ElementsAre("0000:01:00.0 |  data-change=\"added\" |  open", "0000:02:00.0 |  | "));
    EXPECT_THAT(found_in(tree_in(page), "<span class=\"badge ([^\"]*)\">"), ElementsAre("added"));
}
