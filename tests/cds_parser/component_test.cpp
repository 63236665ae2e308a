// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <list>
#include <memory>
#include <type_traits>

#include "support/noted_element.h"

using cds_parser::child_slot_group;
using cds_parser::component;
using cds_parser::element;
using cds_parser::setting_group;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

static_assert(std::is_base_of_v<element, component> && std::is_convertible_v<component*, element*>);
static_assert(std::is_constructible_v<component, std::uint32_t> && !std::is_default_constructible_v<component>);
static_assert(!std::is_copy_constructible_v<component> && !std::is_copy_assignable_v<component>);
static_assert(std::has_virtual_destructor_v<component>);
static_assert(std::is_same_v<decltype(component::TAG), const char*>);
static_assert(std::is_same_v<decltype(component::child_slot_groups), std::list<child_slot_group*>>);

}  // namespace

class Component : public testing::Test {
protected:
    // A component with two slot groups and two setting groups, added in this order.
    component* make_full() {
        auto* made = new noted<component>(destroyed, "component");
        made->add_child_slot_group(new noted<child_slot_group>(destroyed, "first slots"));
        made->add_child_slot_group(new noted<child_slot_group>(destroyed, "second slots"));
        made->add_setting_group(make_noted<setting_group>(destroyed, "b"));
        made->add_setting_group(make_noted<setting_group>(destroyed, "a"));
        return made;
    }

    destructions destroyed;
};

TEST_F(Component, StartsEmptyAtItsLevel) {
    const component tested(4);
    EXPECT_EQ(tested.level, 4u);
    EXPECT_THAT(tested.setting_groups, IsEmpty());
    EXPECT_THAT(tested.child_slot_groups, IsEmpty());
}

TEST_F(Component, IsAComponent) {
    const component tested(0);
    EXPECT_EQ(tested.get_type(), cds_parser::component_type);
}

TEST_F(Component, IsTaggedComponent) {
    EXPECT_STREQ(component::TAG, "component");
}

TEST_F(Component, KeepsSlotGroupsInTheOrderOfAdding) {
    component tested(0);
    auto* first = new child_slot_group(1);
    auto* second = new child_slot_group(1);
    tested.add_child_slot_group(first);
    tested.add_child_slot_group(second);
    EXPECT_THAT(tested.child_slot_groups, ElementsAre(first, second));
}

TEST_F(Component, IgnoresANullSlotGroup) {
    component tested(0);
    tested.add_child_slot_group(nullptr);
    EXPECT_THAT(tested.child_slot_groups, IsEmpty());
}

TEST_F(Component, ListsSlotGroupsBehindWhatTheListHeld) {
    component tested(0);
    auto* first = new child_slot_group(1);
    auto* second = new child_slot_group(1);
    tested.add_child_slot_group(first);
    tested.add_child_slot_group(second);
    child_slot_group held(0);
    std::vector<child_slot_group*> out{&held};
    tested.get_child_slot_groups(out);
    EXPECT_THAT(out, ElementsAre(&held, first, second));
}

TEST_F(Component, ClearsItsSlotGroupsInTheirOrderAndKeepsItsSettingGroups) {
    const std::unique_ptr<component> tested(make_full());
    tested->clear_child_slot_groups();
    EXPECT_THAT(destroyed, ElementsAre("first slots", "second slots"));
    EXPECT_THAT(tested->child_slot_groups, IsEmpty());
    EXPECT_EQ(tested->setting_groups.size(), 2u);
}

TEST_F(Component, SkipsANullEntryWhenItClearsItsSlotGroups) {
    component tested(0);
    tested.child_slot_groups.push_back(nullptr);
    tested.add_child_slot_group(new noted<child_slot_group>(destroyed, "slots"));
    tested.clear_child_slot_groups();
    EXPECT_THAT(destroyed, ElementsAre("slots"));
    EXPECT_THAT(tested.child_slot_groups, IsEmpty());
}

TEST_F(Component, ClearsItsSettingGroupsAndKeepsItsSlotGroups) {
    const std::unique_ptr<component> tested(make_full());
    tested->clear_setting_groups();
    EXPECT_THAT(destroyed, ElementsAre("a", "b"));
    EXPECT_EQ(tested->child_slot_groups.size(), 2u);
}

TEST_F(Component, ClearDestroysSettingGroupsFirstThenSlotGroups) {
    const std::unique_ptr<component> tested(make_full());
    tested->clear();
    EXPECT_THAT(destroyed, ElementsAre("a", "b", "first slots", "second slots"));
    EXPECT_THAT(tested->setting_groups, IsEmpty());
    EXPECT_THAT(tested->child_slot_groups, IsEmpty());
}

TEST_F(Component, ClearTwiceDestroysOnce) {
    const std::unique_ptr<component> tested(make_full());
    tested->clear();
    tested->clear();
    EXPECT_EQ(destroyed.size(), 4u);
}

TEST_F(Component, DestroysWhatItOwnsWithItself) {
    std::unique_ptr<element> dying(make_full());
    dying.reset();
    EXPECT_THAT(destroyed, ElementsAre("component", "a", "b", "first slots", "second slots"));
}
