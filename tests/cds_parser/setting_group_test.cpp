// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <map>
#include <memory>
#include <stdexcept>
#include <type_traits>

#include "cds_parser/setting_names.h"
#include "support/noted_element.h"
#include "support/tree_builder.h"

using cds_parser::element;
using cds_parser::setting_group;
using cds_parser::setting_node;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

static_assert(std::is_base_of_v<element, setting_group> && std::is_convertible_v<setting_group*, element*>);
static_assert(std::is_constructible_v<setting_group, std::uint32_t> && !std::is_default_constructible_v<setting_group>);
static_assert(!std::is_copy_constructible_v<setting_group> && !std::is_copy_assignable_v<setting_group>);
static_assert(std::has_virtual_destructor_v<setting_group>);
static_assert(std::is_same_v<decltype(setting_group::TAG), const char*>);
static_assert(std::is_same_v<decltype(setting_group::name), std::string>);
static_assert(std::is_same_v<decltype(setting_group::settings), std::map<std::string, setting_node*>>);

}  // namespace

class SettingGroup : public testing::Test {
protected:
    setting_node* add(const std::string& name) {
        auto* added = make_setting(text(name, ""));
        group.add_setting(added);
        return added;
    }

    setting_node* add_noted(const std::string& name, const std::string& note) {
        auto* added = make_noted<setting_node>(destroyed, name, note);
        group.add_setting(added);
        return added;
    }

    destructions destroyed;
    setting_group group{1};
};

TEST_F(SettingGroup, StartsUnnamedAndEmptyAtItsLevel) {
    EXPECT_EQ(group.level, 1u);
    EXPECT_EQ(group.name, "");
    EXPECT_THAT(group.settings, IsEmpty());
}

TEST_F(SettingGroup, IsASettingGroup) {
    EXPECT_EQ(group.get_type(), cds_parser::setting_group_type);
}

TEST_F(SettingGroup, IsTaggedSettingGroup) {
    EXPECT_STREQ(setting_group::TAG, "setting_group");
}

TEST_F(SettingGroup, FindsASettingByItsName) {
    add("Slot");
    setting_node* wanted = add("Speed");
    EXPECT_EQ(group.get_setting("Speed"), wanted);
    EXPECT_TRUE(group.has_setting("Speed"));
}

TEST_F(SettingGroup, FindsNoSettingOfAnotherName) {
    add("Speed");
    for (const char* name : {"speed", "Spee", "Speeds", " Speed", ""}) {
        EXPECT_EQ(group.get_setting(name), nullptr) << name;
        EXPECT_FALSE(group.has_setting(name)) << name;
    }
}

TEST_F(SettingGroup, TellsNamesApartByCase) {
    setting_node* upper = add("Slot");
    setting_node* lower = add("slot");
    EXPECT_EQ(group.get_setting("Slot"), upper);
    EXPECT_EQ(group.get_setting("slot"), lower);
}

TEST_F(SettingGroup, OrdersSettingsByTheBytesOfTheirNames) {
    for (const char* name : {"abc", "\xc3\xa4", "a", "B", "ab", "z", "A B", "A"}) {
        add(name);
    }
    EXPECT_THAT(setting_names(group), ElementsAre("A", "A B", "B", "a", "ab", "abc", "z", "\xc3\xa4"));
}

TEST_F(SettingGroup, ReplacesASettingByALaterOneOfTheSameName) {
    add_noted("b", "first b");
    add_noted("a", "a");
    setting_node* second = add_noted("b", "second b");
    EXPECT_EQ(group.get_setting("b"), second);
    EXPECT_THAT(destroyed, ElementsAre("first b"));
    EXPECT_THAT(setting_names(group), ElementsAre("a", "b"));
}

TEST_F(SettingGroup, IgnoresANullSetting) {
    add("a");
    group.add_setting(nullptr);
    EXPECT_THAT(setting_names(group), ElementsAre("a"));
}

TEST_F(SettingGroup, KeysASettingByTheNameItHasWhenItIsAdded) {
    setting_node* renamed = add("before");
    renamed->name = "after";
    EXPECT_EQ(group.get_setting("before"), renamed);
    EXPECT_EQ(group.get_setting("after"), nullptr);
}

TEST_F(SettingGroup, DestroysARemovedSetting) {
    add_noted("a", "a");
    add_noted("b", "b");
    EXPECT_TRUE(group.remove_setting("a"));
    EXPECT_THAT(destroyed, ElementsAre("a"));
    EXPECT_THAT(setting_names(group), ElementsAre("b"));
}

TEST_F(SettingGroup, RemovesNothingOfAnotherName) {
    add_noted("a", "a");
    EXPECT_FALSE(group.remove_setting("A"));
    EXPECT_FALSE(group.remove_setting(""));
    EXPECT_THAT(destroyed, IsEmpty());
    EXPECT_THAT(setting_names(group), ElementsAre("a"));
}

TEST_F(SettingGroup, RemovesASettingOnce) {
    add("a");
    EXPECT_TRUE(group.remove_setting("a"));
    EXPECT_FALSE(group.remove_setting("a"));
}

TEST_F(SettingGroup, ClearDestroysEverySettingInNameOrder) {
    for (const char* name : {"b", "c", "a"}) {
        add_noted(name, name);
    }
    group.clear();
    EXPECT_THAT(destroyed, ElementsAre("a", "b", "c"));
    EXPECT_THAT(group.settings, IsEmpty());
}

// The map is everybody's.
TEST_F(SettingGroup, TakesANullInItsMapForASetting) {
    group.settings["replaced"] = nullptr;
    setting_node* replacing = add("replaced");
    EXPECT_EQ(group.get_setting("replaced"), replacing);
    group.settings["removed"] = nullptr;
    EXPECT_TRUE(group.remove_setting("removed"));
    group.settings["cleared"] = nullptr;
    group.clear();
    EXPECT_THAT(group.settings, IsEmpty());
}

TEST_F(SettingGroup, ClearKeepsTheName) {
    group.name = "cpu_info";
    add("a");
    group.clear();
    EXPECT_EQ(group.name, "cpu_info");
}

TEST_F(SettingGroup, ClearTwiceDestroysOnce) {
    add_noted("a", "a");
    group.clear();
    group.clear();
    EXPECT_THAT(destroyed, ElementsAre("a"));
    EXPECT_THAT(group.settings, IsEmpty());
}

TEST_F(SettingGroup, DestroysItsSettingsInNameOrderWithItself) {
    std::unique_ptr<element> dying(make_noted<setting_group>(destroyed, "group"));
    for (const char* name : {"b", "c", "a"}) {
        static_cast<setting_group&>(*dying).add_setting(make_noted<setting_node>(destroyed, name));
    }
    dying.reset();
    EXPECT_THAT(destroyed, ElementsAre("group", "a", "b", "c"));
}

TEST_F(SettingGroup, RefusesANullNameWithALogicError) {
    const char* no_name = nullptr;
    EXPECT_THROW(group.get_setting(no_name), std::logic_error);
    EXPECT_THROW(group.has_setting(no_name), std::logic_error);
    EXPECT_THROW(group.remove_setting(no_name), std::logic_error);
}
