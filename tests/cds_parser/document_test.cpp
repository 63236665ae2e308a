// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <memory>
#include <type_traits>

#include "support/noted_element.h"

using cds_parser::child_slot_group;
using cds_parser::component;
using cds_parser::document;
using cds_parser::setting_group;
using cds_parser::setting_node;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

static_assert(!std::is_base_of_v<cds_parser::element, document>);
static_assert(std::is_default_constructible_v<document>);
static_assert(!std::is_copy_constructible_v<document> && !std::is_copy_assignable_v<document>);
static_assert(std::has_virtual_destructor_v<document>);
static_assert(std::is_same_v<decltype(document::root), component>);

class noted_document : public document {
public:
    explicit noted_document(destructions& destroyed) : destroyed_(destroyed) {}
    ~noted_document() override { destroyed_.push_back("document"); }

private:
    destructions& destroyed_;
};

setting_group* make_noted_group(destructions& destroyed, const std::string& name) {
    auto* made = make_noted<setting_group>(destroyed, name);
    made->add_setting(make_noted<setting_node>(destroyed, "setting of " + name));
    return made;
}

}  // namespace

TEST(Document, StartsWithAnEmptyRootAtLevelZero) {
    const document doc;
    EXPECT_EQ(doc.root.level, 0u);
    EXPECT_THAT(doc.root.setting_groups, IsEmpty());
    EXPECT_THAT(doc.root.child_slot_groups, IsEmpty());
}

TEST(Document, DestroysEveryElementOfItsTreeOnceDepthFirst) {
    destructions destroyed;
    auto doc = std::make_unique<document>();

    auto* inner = new noted<component>(destroyed, "inner");
    inner->add_setting_group(make_noted_group(destroyed, "inner group"));
    auto* inner_slots = new noted<child_slot_group>(destroyed, "inner slots");
    inner_slots->add_component(inner);
    auto* outer = new noted<component>(destroyed, "outer");
    outer->add_child_slot_group(inner_slots);
    outer->add_setting_group(make_noted_group(destroyed, "outer group"));
    auto* slots = new noted<child_slot_group>(destroyed, "slots");
    slots->add_component(outer);
    slots->add_component(new noted<component>(destroyed, "neighbour"));
    slots->add_setting_group(make_noted_group(destroyed, "slots group"));
    doc->root.add_child_slot_group(slots);
    doc->root.add_child_slot_group(new noted<child_slot_group>(destroyed, "more slots"));
    doc->root.add_setting_group(make_noted_group(destroyed, "root group"));

    doc.reset();
    EXPECT_THAT(destroyed,
                ElementsAre("root group", "setting of root group", "slots", "slots group", "setting of slots group",
                            "outer", "outer group", "setting of outer group", "inner slots", "inner", "inner group",
                            "setting of inner group", "neighbour", "more slots"));
}

TEST(Document, IsDestroyedThroughItsBase) {
    destructions destroyed;
    std::unique_ptr<document> doc = std::make_unique<noted_document>(destroyed);
    doc->root.add_setting_group(make_noted<setting_group>(destroyed, "group"));
    doc.reset();
    EXPECT_THAT(destroyed, ElementsAre("document", "group"));
}
