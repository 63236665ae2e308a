// SPDX-License-Identifier: Apache-2.0

#include "explanation/counterfactual.h"

#include <gmock/gmock.h>

#include <memory>

#include "support/tree_builder.h"

using testing::ElementsAre;
using testing::IsEmpty;

class Counterfactual : public testing::Test {
protected:
    using component_ptr = std::unique_ptr<cds_parser::component>;

    static component_ptr component_with(const char* group, const std::vector<setting>& settings) {
        return component_ptr(make_component(group, settings));
    }

    std::vector<std::string> blamed(const char* group, const std::vector<setting>& settings, bool logged) {
        return doubts_.settings_to_blame(*component_with(group, settings), *find_known_group(group), logged);
    }

    counterfactual doubts_;
};

TEST_F(Counterfactual, FindsTheGroupThatWouldLeaveARow) {
    const component_ptr bare = component_with("cpu_info", {});
    EXPECT_EQ(doubts_.recorded_group(*bare), find_known_group("cpu_info"));
}

TEST_F(Counterfactual, FindsOfSeveralGroupsTheOneThatTheLoaderTakes) {
    const component_ptr both = component_with("cpu_info", {});
    both->add_setting_group(make_group("pci_device_info"));
    EXPECT_EQ(doubts_.recorded_group(*both), find_known_group("pci_device_info"));
}

TEST_F(Counterfactual, FindsNoGroupWhereTheLoaderRecordsNone) {
    EXPECT_EQ(doubts_.recorded_group(*component_with("fan_info", {})), nullptr);
}

TEST_F(Counterfactual, BlamesSettingsThatAreMissingOrUnusable) {
    EXPECT_THAT(blamed("pci_bridge_info", {integer("Bus Number", "1"), text("Device Number", "2")}, false),
                ElementsAre("Device Number", "Function Number"));
}

TEST_F(Counterfactual, BlamesASettingOverWhichTheLoaderLogs) {
    const std::vector<setting> address = {integer("Bus Number", "1"), integer("Device Number", "0"),
                                          integer("Function Number", "0")};
    EXPECT_THAT(blamed("pci_device_info", address, true), ElementsAre("Location"));
    EXPECT_THAT(blamed("pci_device_info", address, false), IsEmpty());
}

TEST_F(Counterfactual, BlamesNothingOfAComponentThatLeavesARow) {
    EXPECT_THAT(blamed("cpu_info", {text("Socket Designation", "CPU 1")}, false), IsEmpty());
}

TEST_F(Counterfactual, LeavesTheComponentAsItIs) {
    const component_ptr real = component_with("pci_bridge_info", {integer("Bus Number", "1")});
    doubts_.settings_to_blame(*real, *find_known_group("pci_bridge_info"), false);
    EXPECT_EQ(real->get_setting_group("pci_bridge_info")->settings.size(), 1u);
}

TEST_F(Counterfactual, AnswersTheSameWhenItHasForgotten) {
    const std::vector<setting> without_function = {integer("Bus Number", "1"), integer("Device Number", "0")};
    const std::vector<std::string> before = blamed("pci_bridge_info", without_function, false);
    for (int number = 0; number < 20; ++number) {
        const std::string long_text = std::to_string(number) + std::string(100'000, 'x');
        EXPECT_THAT(blamed("cpu_info", {text("Socket Designation", long_text)}, false), IsEmpty());
    }
    EXPECT_EQ(blamed("pci_bridge_info", without_function, false), before);
}
