// SPDX-License-Identifier: Apache-2.0

// What components and child slot groups do alike with their setting groups.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <map>
#include <stdexcept>
#include <type_traits>

#include "support/noted_element.h"
#include "support/tree_builder.h"

using cds_parser::setting_group;
using testing::ElementsAre;
using testing::IsEmpty;

template <class Owner>
class SettingGroupMap : public testing::Test {
    static_assert(std::is_same_v<decltype(Owner::setting_groups), std::multimap<std::string, setting_group*>>);

protected:
    setting_group* add(const std::string& name) { return add_noted(name, name); }

    setting_group* add_noted(const std::string& name, const std::string& note) {
        auto* added = make_noted<setting_group>(destroyed, name, note);
        owner.add_setting_group(added);
        return added;
    }

    std::vector<setting_group*> groups_in_order() const {
        std::vector<setting_group*> groups;
        for (const auto& entry : owner.setting_groups) {
            groups.push_back(entry.second);
        }
        return groups;
    }

    std::vector<std::string> names_in_order() const {
        std::vector<std::string> names;
        for (const auto& entry : owner.setting_groups) {
            names.push_back(entry.first);
        }
        return names;
    }

    destructions destroyed;
    Owner owner{0};
};

struct owner_name {
    template <class Owner>
    static std::string GetName(int) {
        return Owner::TAG;
    }
};

using owners = testing::Types<cds_parser::component, cds_parser::child_slot_group>;
TYPED_TEST_SUITE(SettingGroupMap, owners, owner_name);

TYPED_TEST(SettingGroupMap, FindsAGroupByItsName) {
    this->add("memory_info");
    setting_group* wanted = this->add("cpu_info");
    EXPECT_EQ(this->owner.get_setting_group("cpu_info"), wanted);
    EXPECT_TRUE(this->owner.has_setting_group("cpu_info"));
}

TYPED_TEST(SettingGroupMap, FindsNoGroupOfAnotherName) {
    this->add("cpu_info");
    for (const char* name : {"CPU_INFO", "cpu_inf", "cpu_info2", ""}) {
        EXPECT_EQ(this->owner.get_setting_group(name), nullptr) << name;
        EXPECT_FALSE(this->owner.has_setting_group(name)) << name;
    }
}

TYPED_TEST(SettingGroupMap, TellsNamesApartByCase) {
    setting_group* upper = this->add("Slot");
    setting_group* lower = this->add("slot");
    EXPECT_EQ(this->owner.get_setting_group("Slot"), upper);
    EXPECT_EQ(this->owner.get_setting_group("slot"), lower);
}

TYPED_TEST(SettingGroupMap, OrdersGroupsByTheBytesOfTheirNames) {
    for (const char* name : {"abc", "\xc3\xa4", "a", "B", "ab", "z"}) {
        this->add(name);
    }
    EXPECT_THAT(this->names_in_order(), ElementsAre("B", "a", "ab", "abc", "z", "\xc3\xa4"));
}

TYPED_TEST(SettingGroupMap, KeepsGroupsOfOneNameInTheOrderOfAdding) {
    setting_group* first_x = this->add("x");
    setting_group* a = this->add("a");
    setting_group* second_x = this->add("x");
    EXPECT_THAT(this->groups_in_order(), ElementsAre(a, first_x, second_x));
}

TYPED_TEST(SettingGroupMap, FindsTheFirstAddedGroupOfAName) {
    setting_group* first_x = this->add("x");
    this->add("a");
    this->add("x");
    EXPECT_EQ(this->owner.get_setting_group("x"), first_x);
}

TYPED_TEST(SettingGroupMap, ListsEveryGroupOfANameFirstAddedFirst) {
    setting_group* first_x = this->add("x");
    this->add("a");
    setting_group* second_x = this->add("x");
    std::vector<setting_group*> out;
    this->owner.get_setting_group("x", out);
    EXPECT_THAT(out, ElementsAre(first_x, second_x));
}

TYPED_TEST(SettingGroupMap, ListsGroupsBehindWhatTheListHeld) {
    setting_group* x = this->add("x");
    setting_group held(0);
    std::vector<setting_group*> out{&held};
    this->owner.get_setting_group("x", out);
    EXPECT_THAT(out, ElementsAre(&held, x));
}

TYPED_TEST(SettingGroupMap, LeavesTheListAsItIsWithoutAGroupOfThatName) {
    this->add("x");
    setting_group held(0);
    std::vector<setting_group*> out{&held};
    this->owner.get_setting_group("y", out);
    EXPECT_THAT(out, ElementsAre(&held));
}

TYPED_TEST(SettingGroupMap, IgnoresANullGroup) {
    this->owner.add_setting_group(nullptr);
    EXPECT_THAT(this->owner.setting_groups, IsEmpty());
}

TYPED_TEST(SettingGroupMap, KeysAGroupByTheNameItHasWhenItIsAdded) {
    setting_group* renamed = this->add("before");
    renamed->name = "after";
    EXPECT_EQ(this->owner.get_setting_group("before"), renamed);
    EXPECT_EQ(this->owner.get_setting_group("after"), nullptr);
}

TYPED_TEST(SettingGroupMap, RemovesEveryGroupOfANameInTheOrderOfAdding) {
    this->add_noted("x", "first x");
    setting_group* a = this->add("a");
    this->add_noted("x", "second x");
    EXPECT_TRUE(this->owner.remove_setting_group("x"));
    EXPECT_THAT(this->destroyed, ElementsAre("first x", "second x"));
    EXPECT_THAT(this->groups_in_order(), ElementsAre(a));
}

TYPED_TEST(SettingGroupMap, RemovesTheGroupsOfANameOnce) {
    this->add("x");
    EXPECT_TRUE(this->owner.remove_setting_group("x"));
    EXPECT_FALSE(this->owner.remove_setting_group("x"));
    EXPECT_THAT(this->destroyed, ElementsAre("x"));
}

TYPED_TEST(SettingGroupMap, RemovesNothingOfAnotherName) {
    setting_group* x = this->add("x");
    EXPECT_FALSE(this->owner.remove_setting_group("X"));
    EXPECT_THAT(this->destroyed, IsEmpty());
    EXPECT_THAT(this->groups_in_order(), ElementsAre(x));
}

TYPED_TEST(SettingGroupMap, ClearDestroysEveryGroupInNameOrderThenInTheOrderOfAdding) {
    this->add_noted("x", "first x");
    this->add("a");
    this->add_noted("x", "second x");
    this->owner.clear_setting_groups();
    EXPECT_THAT(this->destroyed, ElementsAre("a", "first x", "second x"));
    EXPECT_THAT(this->owner.setting_groups, IsEmpty());
}

// The map is everybody's.
TYPED_TEST(SettingGroupMap, TakesANullInItForAGroup) {
    this->owner.setting_groups.emplace("removed", nullptr);
    EXPECT_TRUE(this->owner.remove_setting_group("removed"));
    this->owner.setting_groups.emplace("cleared", nullptr);
    this->owner.clear_setting_groups();
    EXPECT_THAT(this->owner.setting_groups, IsEmpty());
}

TYPED_TEST(SettingGroupMap, ClearTwiceDestroysOnce) {
    this->add("x");
    this->owner.clear_setting_groups();
    this->owner.clear_setting_groups();
    EXPECT_THAT(this->destroyed, ElementsAre("x"));
}

TYPED_TEST(SettingGroupMap, RefusesANullNameWithALogicError) {
    const char* no_name = nullptr;
    std::vector<setting_group*> out;
    EXPECT_THROW(this->owner.get_setting_group(no_name), std::logic_error);
    EXPECT_THROW(this->owner.get_setting_group(no_name, out), std::logic_error);
    EXPECT_THROW(this->owner.has_setting_group(no_name), std::logic_error);
    EXPECT_THROW(this->owner.remove_setting_group(no_name), std::logic_error);
}
