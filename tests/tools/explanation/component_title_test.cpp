// SPDX-License-Identifier: Apache-2.0

#include "explanation/component_title.h"

#include <gmock/gmock.h>

#include <memory>

#include "support/tree_builder.h"
#include "tools/explanation/explanation_test.h"

using testing::StartsWith;

class ComponentTitle : public explanation_test {};

TEST_F(ComponentTitle, CallsHardwareWithoutANameByItsKind) {
    EXPECT_THAT(explain(cds_file(cds_component("cpu_info", {}))), StartsWith("processor\n"));
    EXPECT_THAT(explain(cds_file(cds_component("memory_info", {}))), StartsWith("memory device\n"));
    EXPECT_THAT(explain(cds_file(cds_component("pci_bridge_info", {}))), StartsWith("PCI bridge 0000:?:?.?\n"));
    EXPECT_THAT(explain(cds_file(cds_component("pci_device_info", {}))), StartsWith("PCI function 0000:?:?.?\n"));
}

TEST_F(ComponentTitle, CallsPciHardwareByItsWholeAddress) {
    EXPECT_THAT(explain(cds_file(cds_component("pci_bridge_info",
                                               {integer("Segment Number", "1"), hex("Bus Number", "3B"),
                                                integer("Device Number", "28"), integer("Function Number", "7")}))),
                StartsWith("PCI bridge 0001:3b:1c.7\n"));
    EXPECT_THAT(explain(cds_file(function("3B", {integer("Segment Number", "-1")}))),
                StartsWith("PCI function ?:3b:00.0\n"));
}

TEST_F(ComponentTitle, ShortensALongName) {
    const std::string name = std::string(63, 'x') + "\u00e9";
    EXPECT_THAT(explain(cds_file(processor(name))), StartsWith("processor '" + name + "'\n"));
    EXPECT_THAT(explain(cds_file(processor(name + "y"))), StartsWith("processor '" + name + "...'\n"));
    EXPECT_THAT(explain(cds_component("component_struct_info", {text("comp_type", std::string(99, 'x'))}),
                        told_about::everything),
                StartsWith("component '" + std::string(64, 'x') + "...'\n"));
}

TEST(ComponentName, IsNoneWhereTheComponentHasNone) {
    explanation told;
    told.path = path_of(1);
    EXPECT_TRUE(is_named(told, path_of(1)));
    EXPECT_FALSE(is_named(told, ""));
    EXPECT_FALSE(is_named(told, " "));
}

TEST(ComponentName, IsThatOfTheTitle) {
    const std::unique_ptr<cds_parser::component> named(make_component("cpu_info", {text("Socket Designation", "A")}));
    const std::unique_ptr<cds_parser::component> placed(
        make_component("pci_bridge_info", {integer("Bus Number", "1")}));
    EXPECT_EQ(component_name(*named, find_known_group("cpu_info")), "A");
    EXPECT_EQ(component_name(*placed, find_known_group("pci_bridge_info")), "0000:01:?.?");
}

TEST(ComponentName, IsEmptyWithoutASettingOrAGroup) {
    const std::unique_ptr<cds_parser::component> bare(make_component("cpu_info"));
    EXPECT_EQ(component_name(*bare, find_known_group("cpu_info")), "");
    EXPECT_EQ(component_name(*bare, nullptr), "");
}

TEST(ComponentTitleOfAKind, IsThereForEveryOne) {
    const cds_parser::component nothing(0);
    for (const known_group& group : known_groups()) {
        cds_parser::component titled(0);
        auto* settings = new cds_parser::setting_group(1);
        settings->name = group.name;
        titled.add_setting_group(settings);
        EXPECT_NE(component_title(titled, &group), component_title(nothing, nullptr)) << group.name;
    }
}
