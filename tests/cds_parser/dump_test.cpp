// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <iomanip>
#include <memory>
#include <sstream>
#include <streambuf>
#include <type_traits>

#include "support/changed_tag.h"
#include "support/tree_builder.h"

using cds_parser::child_slot_group;
using cds_parser::component;
using cds_parser::document;
using cds_parser::element;
using cds_parser::setting_group;
using cds_parser::setting_node;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

static_assert(std::is_same_v<decltype(&element::dump), void (element::*)(std::ostream&, unsigned) const>);
static_assert(std::is_same_v<decltype(&document::dump), void (document::*)(std::ostream&, unsigned) const>);

template <class Dumped>
std::string dump(const Dumped& dumped, unsigned indent_width) {
    std::ostringstream out;
    dumped.dump(out, indent_width);
    return out.str();
}

std::string inserted(const document& doc) {
    std::ostringstream out;
    out << doc;
    return out.str();
}

// The root holds one group named CPU with one setting named Count.
void fill_with_example(document& doc) {
    doc.root.add_setting_group(make_group("CPU", {integer("Count", "2")}));
}

const std::string example =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<component>\n"
    "  <setting_group>\n"
    "    <name>CPU</name>\n"
    "    <setting>\n"
    "      <name>Count</name>\n"
    "      <integer_value>2</integer_value>\n"
    "    </setting>\n"
    "  </setting_group>\n"
    "</component>\n";

// Keeps what was written between two flushes apart.
class flush_recorder : public std::stringbuf {
public:
    std::vector<std::string> flushed;

private:
    int sync() override {
        flushed.push_back(str());
        str("");
        return 0;
    }
};

// Takes so many characters and no more.
class small_buffer : public std::streambuf {
public:
    explicit small_buffer(std::size_t room) : room_(room) {}
    std::string taken;

private:
    int_type overflow(int_type character) override {
        if (taken.size() == room_) {
            return traits_type::eof();
        }
        taken += traits_type::to_char_type(character);
        return character;
    }

    std::size_t room_;
};

// Counts how often it is dumped.
class counting_setting : public setting_node {
public:
    explicit counting_setting(int& dumps) : setting_node(2), dumps_(dumps) {}

    void dump(std::ostream& out, unsigned indent_width) const override {
        ++dumps_;
        setting_node::dump(out, indent_width);
    }

private:
    int& dumps_;
};

}  // namespace

TEST(Dump, OfADocumentIsTheDeclarationAndTheRoot) {
    document doc;
    fill_with_example(doc);
    EXPECT_EQ(dump(doc, 2), example);
}

TEST(Dump, OfAnEmptyComponentIsItsTwoTags) {
    EXPECT_EQ(dump(component(0), 2), "<component>\n</component>\n");
}

TEST(Dump, OfAnEmptySlotGroupIsItsTwoTags) {
    EXPECT_EQ(dump(child_slot_group(1), 2), "  <child_slot_group>\n  </child_slot_group>\n");
}

TEST(Dump, OfAnEmptySettingGroupHasItsName) {
    const std::unique_ptr<setting_group> group(make_group("CPU"));
    EXPECT_EQ(dump(*group, 2), "  <setting_group>\n    <name>CPU</name>\n  </setting_group>\n");
}

TEST(Dump, OfAnUnnamedGroupHasAnEmptyName) {
    EXPECT_EQ(dump(setting_group(0), 1), "<setting_group>\n <name></name>\n</setting_group>\n");
}

TEST(Dump, OfASettingHasItsNameAndItsValue) {
    const std::unique_ptr<setting_node> setting(make_setting(hex("Vendor ID", "0x1F")));
    EXPECT_EQ(dump(*setting, 1),
              "  <setting>\n   <name>Vendor ID</name>\n   <hex_value>0x1F</hex_value>\n  </setting>\n");
}

TEST(Dump, TagsAValueWithItsType) {
    for (unsigned number = 0; number <= 8; ++number) {
        setting_node setting(0);
        setting.value_type = static_cast<setting_node::setting_value_type>(number);
        setting.value = "v";
        const std::string tag = setting_node::map_value_type(setting.value_type);
        EXPECT_THAT(dump(setting, 0), HasSubstr("\n<" + tag + ">v</" + tag + ">\n"));
    }
}

TEST(Dump, TagsAValueOfNoTypeAsUnknown) {
    setting_node setting(0);
    setting.value_type = static_cast<setting_node::setting_value_type>(42);
    setting.value = "v";
    EXPECT_THAT(dump(setting, 0), HasSubstr("\n<unknow_value>v</unknow_value>\n"));
}

TEST(Dump, WithoutIndentationStartsEveryLineAtItsText) {
    document doc;
    fill_with_example(doc);
    EXPECT_EQ(dump(doc, 0),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<component>\n"
              "<setting_group>\n"
              "<name>CPU</name>\n"
              "<setting>\n"
              "<name>Count</name>\n"
              "<integer_value>2</integer_value>\n"
              "</setting>\n"
              "</setting_group>\n"
              "</component>\n");
}

TEST(Dump, PassesTheWidthOnToEveryElement) {
    component root(0);
    add_children(root, {make_component("CPU", {integer("Count", "2")}, 2)});
    EXPECT_EQ(dump(root, 4),
              "<component>\n"
              "    <child_slot_group>\n"
              "        <component>\n"
              "            <setting_group>\n"
              "                <name>CPU</name>\n"
              "                <setting>\n"
              "                    <name>Count</name>\n"
              "                    <integer_value>2</integer_value>\n"
              "                </setting>\n"
              "            </setting_group>\n"
              "        </component>\n"
              "    </child_slot_group>\n"
              "</component>\n");
}

TEST(Dump, IndentsAChildByItsOwnLevel) {
    setting_group group(3);
    group.add_setting(make_setting(text("a", "b"), 0));
    EXPECT_EQ(dump(group, 1),
              "   <setting_group>\n"
              "    <name></name>\n"
              "<setting>\n"
              " <name>a</name>\n"
              " <text_value>b</text_value>\n"
              "</setting>\n"
              "   </setting_group>\n");
}

TEST(Dump, WritesSettingGroupsBeforeChildrenHoweverTheyWereAdded) {
    component root(0);
    auto* slots = add_children(root, {make_component("inner")});
    slots->add_setting_group(make_group("slots"));
    root.add_setting_group(make_group("root"));
    EXPECT_EQ(dump(root, 0),
              "<component>\n"
              "<setting_group>\n<name>root</name>\n</setting_group>\n"
              "<child_slot_group>\n"
              "<setting_group>\n<name>slots</name>\n</setting_group>\n"
              "<component>\n"
              "<setting_group>\n<name>inner</name>\n</setting_group>\n"
              "</component>\n"
              "</child_slot_group>\n"
              "</component>\n");
}

TEST(Dump, WritesSettingGroupsBeforeSlotGroupsHoweverTheFileListedThem) {
    std::istringstream in("<component><child_slot_group/><setting_group><name>CPU</name></setting_group></component>");
    document doc;
    ASSERT_TRUE(doc.parse(in));
    EXPECT_EQ(dump(doc.root, 0),
              "<component>\n"
              "<setting_group>\n<name>CPU</name>\n</setting_group>\n"
              "<child_slot_group>\n</child_slot_group>\n"
              "</component>\n");
}

TEST(Dump, WritesSettingGroupsInNameOrder) {
    component root(0);
    for (const char* name : {"b", "a", "B"}) {
        root.add_setting_group(make_group(name));
    }
    EXPECT_EQ(dump(root, 0),
              "<component>\n"
              "<setting_group>\n<name>B</name>\n</setting_group>\n"
              "<setting_group>\n<name>a</name>\n</setting_group>\n"
              "<setting_group>\n<name>b</name>\n</setting_group>\n"
              "</component>\n");
}

TEST(Dump, WritesSettingGroupsOfOneNameInTheOrderOfAdding) {
    child_slot_group slots(0);
    slots.add_setting_group(make_group("x", {text("first", "1")}));
    slots.add_setting_group(make_group("x", {text("another", "2")}));
    EXPECT_EQ(dump(slots, 0),
              "<child_slot_group>\n"
              "<setting_group>\n<name>x</name>\n"
              "<setting>\n<name>first</name>\n<text_value>1</text_value>\n</setting>\n"
              "</setting_group>\n"
              "<setting_group>\n<name>x</name>\n"
              "<setting>\n<name>another</name>\n<text_value>2</text_value>\n</setting>\n"
              "</setting_group>\n"
              "</child_slot_group>\n");
}

TEST(Dump, WritesSettingsInNameOrder) {
    const std::unique_ptr<setting_group> group(make_group("g", {text("b", "1"), text("a", "2")}));
    EXPECT_EQ(dump(*group, 0),
              "<setting_group>\n<name>g</name>\n"
              "<setting>\n<name>a</name>\n<text_value>2</text_value>\n</setting>\n"
              "<setting>\n<name>b</name>\n<text_value>1</text_value>\n</setting>\n"
              "</setting_group>\n");
}

TEST(Dump, WritesSlotGroupsInTheOrderOfAdding) {
    component root(0);
    add_children(root, {})->add_setting_group(make_group("b"));
    add_children(root, {})->add_setting_group(make_group("a"));
    EXPECT_EQ(dump(root, 0),
              "<component>\n"
              "<child_slot_group>\n<setting_group>\n<name>b</name>\n</setting_group>\n</child_slot_group>\n"
              "<child_slot_group>\n<setting_group>\n<name>a</name>\n</setting_group>\n</child_slot_group>\n"
              "</component>\n");
}

TEST(Dump, WritesComponentsInTheOrderOfAdding) {
    child_slot_group slots(0);
    slots.add_component(make_component("b"));
    slots.add_component(make_component("a"));
    EXPECT_EQ(dump(slots, 0),
              "<child_slot_group>\n"
              "<component>\n<setting_group>\n<name>b</name>\n</setting_group>\n</component>\n"
              "<component>\n<setting_group>\n<name>a</name>\n</setting_group>\n</component>\n"
              "</child_slot_group>\n");
}

TEST(Dump, LeavesOutANullAmongTheChildren) {
    component whole(0);
    whole.child_slot_groups.push_back(nullptr);
    EXPECT_EQ(dump(whole, 2), "<component>\n</component>\n");
    child_slot_group group(0);
    group.components.push_back(nullptr);
    EXPECT_EQ(dump(group, 2), "<child_slot_group>\n</child_slot_group>\n");
}

TEST(Dump, EscapesNothing) {
    const std::unique_ptr<setting_node> setting(make_setting(text("<R&D>", "a & \"b\" < 'c'")));
    EXPECT_EQ(dump(*setting, 0),
              "<setting>\n<name><R&D></name>\n<text_value>a & \"b\" < 'c'</text_value>\n</setting>\n");
}

TEST(Dump, CutsNothingOff) {
    const std::unique_ptr<setting_node> setting(make_setting(text(" name ", std::string(" two\nlines\0 ", 12))));
    EXPECT_EQ(dump(*setting, 0), "<setting>\n<name> name </name>\n<text_value>" + std::string(" two\nlines\0 ", 12) +
                                     "</text_value>\n</setting>\n");
}

TEST(Dump, GoesByTheTags) {
    const changed_tag component_tag(component::TAG, "board");
    const changed_tag slots_tag(child_slot_group::TAG, "slots");
    const changed_tag group_tag(setting_group::TAG, "settings");
    const changed_tag setting_tag(setting_node::TAG, "entry");
    component root(0);
    add_children(root, {make_component("g", {text("n", "v")})});
    EXPECT_EQ(dump(root, 0),
              "<board>\n<slots>\n<board>\n"
              "<settings>\n<name>g</name>\n<entry>\n<name>n</name>\n<text_value>v</text_value>\n</entry>\n</settings>\n"
              "</board>\n</slots>\n</board>\n");
}

TEST(Dump, GoesThroughTheBaseClass) {
    const std::unique_ptr<element> elements[] = {
        std::make_unique<component>(0u), std::make_unique<child_slot_group>(0u), std::make_unique<setting_group>(0u),
        std::make_unique<setting_node>(0u)};
    std::ostringstream out;
    for (const auto& dumped : elements) {
        dumped->dump(out, 2);
    }
    EXPECT_EQ(out.str(),
              "<component>\n</component>\n"
              "<child_slot_group>\n</child_slot_group>\n"
              "<setting_group>\n  <name></name>\n</setting_group>\n"
              "<setting>\n  <name></name>\n  <unknow_value></unknow_value>\n</setting>\n");
}

TEST(Dump, CallsTheDumpOfADerivedClass) {
    int dumps = 0;
    component root(0);
    root.add_setting_group(make_group("g"));
    root.get_setting_group("g")->add_setting(new counting_setting(dumps));
    dump(root, 2);
    EXPECT_EQ(dumps, 1);
}

TEST(Dump, FlushesEachLineOnItsOwn) {
    document doc;
    fill_with_example(doc);
    flush_recorder buffer;
    std::ostream out(&buffer);
    doc.dump(out, 2);
    EXPECT_THAT(buffer.flushed, ElementsAre("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n", "<component>\n",
                                            "  <setting_group>\n", "    <name>CPU</name>\n", "    <setting>\n",
                                            "      <name>Count</name>\n", "      <integer_value>2</integer_value>\n",
                                            "    </setting>\n", "  </setting_group>\n", "</component>\n"));
    EXPECT_EQ(buffer.str(), "");
}

TEST(Dump, FlushesTheLinesOfSlotGroupsToo) {
    flush_recorder buffer;
    std::ostream out(&buffer);
    child_slot_group(0).dump(out, 2);
    EXPECT_THAT(buffer.flushed, ElementsAre("<child_slot_group>\n", "</child_slot_group>\n"));
}

TEST(Dump, LosesTheRestSilentlyOnceTheStreamFails) {
    document doc;
    fill_with_example(doc);
    for (std::size_t room = 0; room < example.size(); ++room) {
        small_buffer buffer(room);
        std::ostream out(&buffer);
        EXPECT_NO_THROW(doc.dump(out, 2));
        EXPECT_TRUE(out.fail());
        EXPECT_EQ(buffer.taken, example.substr(0, room));
    }
}

TEST(Dump, IsNotPaddedToTheFieldWidthOfTheStream) {
    component root(1);
    std::ostringstream out;
    out << std::setw(30) << std::setfill('*');
    root.dump(out, 2);
    EXPECT_EQ(out.str(), "  <component>\n  </component>\n");
    document doc;
    fill_with_example(doc);
    out.str("");
    out << std::setw(100) << doc;
    EXPECT_EQ(out.str(), example);
}

TEST(Dump, WritesNothingToAFailedStream) {
    std::ostringstream out;
    out.setstate(std::ios::failbit);
    document doc;
    out << doc;
    EXPECT_EQ(out.str(), "");
}

TEST(Dump, IndentsNoFurtherOnceTheStreamHasFailed) {
    small_buffer buffer(0);
    std::ostream out(&buffer);
    component(0xFFFFFFFF).dump(out, 0xFFFFFFFF);  // 2^64 blanks would take years
    EXPECT_TRUE(out.fail());
}

TEST(Dump, WalksTheTreeToItsEndThoughTheStreamHasFailed) {
    int dumps = 0;
    document doc;
    doc.root.add_setting_group(make_group("g"));
    doc.root.get_setting_group("g")->add_setting(new counting_setting(dumps));
    small_buffer buffer(0);
    std::ostream out(&buffer);
    doc.dump(out, 2);
    EXPECT_EQ(dumps, 1);
}

TEST(Insertion, OfAnEmptyDocumentIsThreeLines) {
    EXPECT_EQ(inserted(document()), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<component>\n</component>\n");
}

TEST(Insertion, IndentsByTwoBlanksALevel) {
    document doc;
    fill_with_example(doc);
    EXPECT_EQ(inserted(doc), example);
}

TEST(Insertion, IndentsTheRootByItsLevel) {
    document doc;
    doc.root.level = 3;
    EXPECT_EQ(inserted(doc), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n      <component>\n      </component>\n");
}

TEST(Insertion, ReturnsTheStream) {
    std::ostringstream out;
    const document doc;
    EXPECT_EQ(&(out << doc), &out);
}

TEST(Insertion, OfWhatWasReadIsReadAgainAsTheSame) {
    document doc;
    fill_with_example(doc);
    add_children(doc.root, {make_component("inner", {hex("b", "1F"), text("a", " x ")}, 2)});
    std::istringstream in(inserted(doc));
    document again;
    ASSERT_TRUE(in >> again);
    EXPECT_EQ(inserted(again), inserted(doc));
}

TEST(Insertion, OfASettingOfUnknownTypeIsNotReadAgain) {
    document doc;
    doc.root.add_setting_group(make_group("g"));
    auto* setting = new setting_node(2);
    setting->name = "s";
    doc.root.get_setting_group("g")->add_setting(setting);
    std::istringstream in(inserted(doc));
    EXPECT_THROW(doc.parse(in), cds_parser::node_error);
}
