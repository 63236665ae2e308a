// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "report/sections.h"
#include "tools/report/reported.h"
#include "tools/values.h"

using testing::ElementsAre;

namespace {

// Without an address, but behind the bridge before it.
inventory_table bridges_in_a_row(int count) {
    inventory_table table{&kinds::bridges, {"Id", "ParentId", "SegNo", "BusNo", "DevNo", "FunNo"}, {}};
    for (int i = 0; i < count; ++i) {
        table.rows.push_back({number(i + 1), number(i == 0 ? -1 : i), number(0), number(i), number(0), number(0)});
    }
    return table;
}

inventory_table functions_of_classes(const std::vector<inventory_value>& class_codes) {
    inventory_table table{&kinds::devices, {"SegNo", "BusNo", "DeviceNo", "FunctionNo", "ClsCode"}, {}};
    for (const inventory_value& class_code : class_codes) {
        table.rows.push_back({number(0), number(1), number(0), number(0), class_code});
    }
    return table;
}

inventory_table designated_function(const std::string& designation) {
    return {&kinds::devices,
            {"SegNo", "BusNo", "DeviceNo", "FunctionNo", "SlotDesignation"},
            {{number(0), number(1), number(0), number(0), designation}}};
}

std::string picture_of(const reported_inventory& reported) {
    return part_of_page(topology_section(reported), "<svg", "</svg>");
}

std::vector<std::string> titles_and_labels(const std::string& picture) {
    std::vector<std::string> found = found_in(picture, "<title>([^<]*)</title>");
    const std::vector<std::string> labels = found_in(picture, "<text class=\"label\"[^>]*>([^<]*)</text>");
    found.insert(found.end(), labels.begin(), labels.end());
    return found;
}

std::string times(std::size_t count) {
    return std::string(count, 'x');
}

}  // namespace

TEST(TopologyPicture, IsASegmentWithItsParts) {
    const inventory_table functions{&kinds::devices,
                                    {"NodeIndex", "SegNo", "BusNo", "DeviceNo", "FunctionNo", "BridgeId"},
                                    {{number(1), number(2), number(3), number(0), number(0), number(1)},
                                     {number(1), number(2), number(3), number(1), number(0), number(1)}}};
    const inventory_table bridge{&kinds::bridges,
                                 {"NodeIndex", "Id", "SegNo", "BusNo", "DevNo", "FunNo"},
                                 {{number(1), number(1), number(2), number(0), number(1), number(0)}}};
    EXPECT_EQ(picture_of(reported_rows({bridge, functions})),
              "<svg width=\"404\" height=\"68\" viewBox=\"0 0 404 68\" role=\"group\" "
              "aria-label=\"Node 1, Segment 0002\">\n"
              "<g class=\"edges\">\n"
              "<path d=\"M204 21H218V21H232\"/>\n"
              "<path d=\"M204 21H218V47H232\"/>\n"
              "<path d=\"M92 21H106V21H120\"/>\n"
              "</g>\n"
              "<rect class=\"segment\" x=\"8\" y=\"11\" width=\"84\" height=\"20\" rx=\"4\"/>\n"
              "<text class=\"segment\" x=\"50\" y=\"25\" text-anchor=\"middle\">0002</text>\n"
              "<a class=\"drawn bridge\" href=\"#0002:00:01.0\"><title>0002:00:01.0 bridge</title>\n"
              "<rect x=\"120\" y=\"11\" width=\"84\" height=\"20\" rx=\"4\"/>\n"
              "<text class=\"address\" x=\"162\" y=\"25\" text-anchor=\"middle\">00:01.0</text>\n\n</a>\n"
              "<a class=\"drawn other\" href=\"#0002:03:00.0\"><title>0002:03:00.0 function</title>\n"
              "<rect x=\"232\" y=\"11\" width=\"84\" height=\"20\" rx=\"4\"/>\n"
              "<text class=\"address\" x=\"274\" y=\"25\" text-anchor=\"middle\">03:00.0</text>\n"
              "<text class=\"label\" x=\"324\" y=\"25\">function</text>\n</a>\n"
              "<a class=\"drawn other\" href=\"#0002:03:01.0\"><title>0002:03:01.0 function</title>\n"
              "<rect x=\"232\" y=\"37\" width=\"84\" height=\"20\" rx=\"4\"/>\n"
              "<text class=\"address\" x=\"274\" y=\"51\" text-anchor=\"middle\">03:01.0</text>\n"
              "<text class=\"label\" x=\"324\" y=\"51\">function</text>\n</a>\n");
}

TEST(TopologyPicture, ColoursFunctionsByBaseClass) {
    const inventory_table functions =
        functions_of_classes({number(0x010601), number(0x020000), number(0x030200), number(0x120000), number(0x0b4000),
                              number(0x0b0000), number(0x400000), number(0x0c0300), absent});
    EXPECT_THAT(
        found_in(picture_of(reported_rows({functions})), "<a class=\"drawn ([^\"]*)\""),
        ElementsAre("storage", "network", "display", "compute", "compute", "compute", "compute", "other", "other"));
}

TEST(TopologyPicture, SaysThatNothingIsBehindABridge) {
    EXPECT_THAT(titles_and_labels(picture_of(reported_rows({bridges_in_a_row(2)}))),
                ElementsAre("0000:00:00.0 bridge", "0000:01:00.0 bridge", "nothing behind it"));
}

TEST(TopologyPicture, TellsWhatHasChangedOfAPart) {
    const std::string picture = picture_of(reported_rows_since({}, {bridges_in_a_row(2)}));
    EXPECT_THAT(found_in(picture, "<a class=\"([^\"]*)\""), ElementsAre("drawn bridge added", "drawn bridge added"));
    EXPECT_THAT(titles_and_labels(picture),
                ElementsAre("0000:00:00.0 bridge", "0000:01:00.0 bridge", "+ added: nothing behind it"));
}

TEST(TopologyPicture, ShortensLongDescriptions) {
    const std::string start = "function, ";  // of 92 characters at most
    EXPECT_THAT(titles_and_labels(picture_of(reported_rows({designated_function(times(82))}))),
                ElementsAre("0000:01:00.0 " + start + times(82), start + times(82)));
    EXPECT_THAT(titles_and_labels(picture_of(reported_rows({designated_function(times(83))}))),
                ElementsAre("0000:01:00.0 " + start + times(82) + "\u2026", start + times(82) + "\u2026"));
}

TEST(TopologyPicture, IsAsWideAsItsLongestLabel) {
    const auto width = [](const std::string& designation) {
        return found_in(picture_of(reported_rows({designated_function(designation)})), "^<svg width=\"([0-9]*)\"");
    };
    EXPECT_THAT(width("x"), ElementsAre(std::to_string(120 + 84 + 11 * 7 + 32)));
    EXPECT_THAT(width(times(82)), ElementsAre(std::to_string(120 + 84 + 92 * 7 + 32)));
    EXPECT_THAT(width(times(200)), ElementsAre(std::to_string(120 + 84 + 93 * 7 + 32)));
}

TEST(TopologyPicture, HasNoRoomForTheDescriptionOfABridgeThatLeadsOn) {
    const inventory_table functions{&kinds::devices, {"BridgeId", "BusNo"}, {{number(1), number(1)}}};
    const inventory_table bridge{&kinds::bridges, {"Id", "VendorId"}, {{number(1), number(1)}}};
    const inventory_table older{&kinds::bridges, {"Id", "VendorId"}, {{number(1), number(2)}}};
    const std::string picture = picture_of(reported_rows_since({older, functions}, {bridge, functions}));
    EXPECT_THAT(found_in(picture, "<a class=\"([^\"]*)\""), ElementsAre("drawn bridge changed", "drawn other"));
    EXPECT_THAT(found_in(picture, "^<svg width=\"([0-9]*)\""), ElementsAre(std::to_string(232 + 84 + 8 * 7 + 32)));
}

TEST(TopologyPicture, TellsWhatWasLeftOut) {
    const std::string name = times(100);
    explanation told = {};
    told.title = "PCI function " + name;
    told.name = "0000:01:00.0";
    told.groups = {"pci_device_info"};
    told.judged.became = fate::refused;
    const auto& groups = known_groups();
    told.recorded_by = &*std::find_if(groups.begin(), groups.end(),
                                      [](const known_group& group) { return group.kind == &kinds::devices; });
    told.bridge = -1;
    const std::string picture = picture_of(reported_components({told}));
    EXPECT_THAT(found_in(picture, "<a class=\"([^\"]*)\" href=\"([^\"]*)\""),
                ElementsAre("drawn left-out | #0000:01:00.0"));
    EXPECT_THAT(titles_and_labels(picture),
                ElementsAre("PCI function " + times(79) + "\u2026, left out: refused", "left out: refused"));
}

TEST(TopologyPicture, DrawsNoPartFurtherRightThanTwentyFourBridges) {
    const std::string picture = picture_of(reported_rows({bridges_in_a_row(27)}));
    const std::vector<std::string> places = found_in(picture, "<rect x=\"([0-9]*)\" y=\"([0-9]*)\"");
    ASSERT_EQ(places.size(), 27u);
    EXPECT_EQ(places[23], "2696 | 11");
    EXPECT_EQ(places[24], "2808 | 11");
    EXPECT_EQ(places[25], "2808 | 11");
    EXPECT_EQ(places[26], "2808 | 11");
    EXPECT_THAT(found_in(picture, "<path d=\"(M2[6-9][^\"]*)\""),
                ElementsAre("M2668 21H2682V21H2696", "M2780 21H2794V21H2808"));
}
