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

static_assert(std::is_base_of_v<element, child_slot_group> && std::is_convertible_v<child_slot_group*, element*>);
static_assert(std::is_constructible_v<child_slot_group, std::uint32_t> &&
              !std::is_default_constructible_v<child_slot_group>);
static_assert(!std::is_copy_constructible_v<child_slot_group> && !std::is_copy_assignable_v<child_slot_group>);
static_assert(std::has_virtual_destructor_v<child_slot_group>);
static_assert(std::is_same_v<decltype(child_slot_group::TAG), const char*>);
static_assert(std::is_same_v<decltype(child_slot_group::components), std::list<component*>>);

}  // namespace

class ChildSlotGroup : public testing::Test {
protected:
    // A slot group with two components and two setting groups, added in this order.
    child_slot_group* make_full() {
        auto* made = new noted<child_slot_group>(destroyed, "slots");
        made->add_component(new noted<component>(destroyed, "first component"));
        made->add_component(new noted<component>(destroyed, "second component"));
        made->add_setting_group(make_noted<setting_group>(destroyed, "b"));
        made->add_setting_group(make_noted<setting_group>(destroyed, "a"));
        return made;
    }

    destructions destroyed;
};

TEST_F(ChildSlotGroup, StartsEmptyAtItsLevel) {
    const child_slot_group tested(4);
    EXPECT_EQ(tested.level, 4u);
    EXPECT_THAT(tested.setting_groups, IsEmpty());
    EXPECT_THAT(tested.components, IsEmpty());
}

TEST_F(ChildSlotGroup, IsAChildSlotGroup) {
    const child_slot_group tested(0);
    EXPECT_EQ(tested.get_type(), cds_parser::child_slot_group_type);
}

TEST_F(ChildSlotGroup, IsTaggedChildSlotGroup) {
    EXPECT_STREQ(child_slot_group::TAG, "child_slot_group");
}

TEST_F(ChildSlotGroup, KeepsComponentsInTheOrderOfAdding) {
    child_slot_group tested(0);
    auto* first = new component(1);
    auto* second = new component(1);
    tested.add_component(first);
    tested.add_component(second);
    EXPECT_THAT(tested.components, ElementsAre(first, second));
}

TEST_F(ChildSlotGroup, IgnoresANullComponent) {
    child_slot_group tested(0);
    tested.add_component(nullptr);
    EXPECT_THAT(tested.components, IsEmpty());
}

TEST_F(ChildSlotGroup, ListsComponentsBehindWhatTheListHeld) {
    child_slot_group tested(0);
    auto* first = new component(1);
    auto* second = new component(1);
    tested.add_component(first);
    tested.add_component(second);
    component held(0);
    std::vector<component*> out{&held};
    tested.get_components(out);
    EXPECT_THAT(out, ElementsAre(&held, first, second));
}

TEST_F(ChildSlotGroup, ClearsItsComponentsInTheirOrderAndKeepsItsSettingGroups) {
    const std::unique_ptr<child_slot_group> tested(make_full());
    tested->clear_components();
    EXPECT_THAT(destroyed, ElementsAre("first component", "second component"));
    EXPECT_THAT(tested->components, IsEmpty());
    EXPECT_EQ(tested->setting_groups.size(), 2u);
}

TEST_F(ChildSlotGroup, SkipsANullEntryWhenItClearsItsComponents) {
    child_slot_group tested(0);
    tested.components.push_back(nullptr);
    tested.add_component(new noted<component>(destroyed, "component"));
    tested.clear_components();
    EXPECT_THAT(destroyed, ElementsAre("component"));
    EXPECT_THAT(tested.components, IsEmpty());
}

TEST_F(ChildSlotGroup, ClearsItsSettingGroupsAndKeepsItsComponents) {
    const std::unique_ptr<child_slot_group> tested(make_full());
    tested->clear_setting_groups();
    EXPECT_THAT(destroyed, ElementsAre("a", "b"));
    EXPECT_EQ(tested->components.size(), 2u);
}

TEST_F(ChildSlotGroup, ClearDestroysSettingGroupsFirstThenComponents) {
    const std::unique_ptr<child_slot_group> tested(make_full());
    tested->clear();
    EXPECT_THAT(destroyed, ElementsAre("a", "b", "first component", "second component"));
    EXPECT_THAT(tested->setting_groups, IsEmpty());
    EXPECT_THAT(tested->components, IsEmpty());
}

TEST_F(ChildSlotGroup, ClearTwiceDestroysOnce) {
    const std::unique_ptr<child_slot_group> tested(make_full());
    tested->clear();
    tested->clear();
    EXPECT_EQ(destroyed.size(), 4u);
}

TEST_F(ChildSlotGroup, DestroysWhatItOwnsWithItself) {
    std::unique_ptr<element> dying(make_full());
    dying.reset();
    EXPECT_THAT(destroyed, ElementsAre("slots", "a", "b", "first component", "second component"));
}
