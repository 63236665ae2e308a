// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/tree.h>
#include <sysipc.h>
#include <sysxml.h>
#include <zebdb_cds_parser.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <ios>
#include <iterator>
#include <memory>
#include <sstream>
#include <type_traits>
#include <typeinfo>

#include "cds_parser/setting_names.h"
#include "support/allocations.h"
#include "support/changed_tag.h"
#include "support/noted_element.h"
#include "support/scratch_file.h"

using cds_parser::child_slot_group;
using cds_parser::component;
using cds_parser::document;
using cds_parser::name_error;
using cds_parser::node_error;
using cds_parser::setting_group;
using cds_parser::setting_node;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StrEq;
using testing::ThrowsMessage;

namespace {

static_assert(std::is_base_of_v<sysipc::exception, node_error>);
static_assert(std::is_base_of_v<sysipc::exception, name_error>);
static_assert(!std::is_base_of_v<node_error, name_error> && !std::is_base_of_v<name_error, node_error>);
static_assert(sizeof(node_error) == sizeof(sysipc::exception) && sizeof(name_error) == sizeof(sysipc::exception));
static_assert(std::is_constructible_v<node_error, std::string> && std::is_constructible_v<name_error, std::string>);
static_assert(std::is_same_v<decltype(&setting_node::parse), bool (setting_node::*)(sysxml::node&)>);
static_assert(std::is_same_v<decltype(&setting_group::parse), bool (setting_group::*)(sysxml::node&)>);
static_assert(std::is_same_v<decltype(&child_slot_group::parse), bool (child_slot_group::*)(sysxml::node&)>);
static_assert(std::is_same_v<decltype(&component::parse), bool (component::*)(sysxml::node&)>);

// Reads the root element of `xml` into an object of any class that reads nodes.
template <class Target>
bool read(Target& target, const std::string& xml) {
    std::istringstream in(xml);
    const sysxml::parser library;
    sysxml::document parsed(in, false);
    return target.parse(parsed.root());
}

// To be called by a matcher of exceptions.
template <class Target>
auto reading(Target& target, const std::string& xml) {
    return [&target, xml] { read(target, xml); };
}

std::string xml_element(const std::string& tag, const std::string& content = "") {
    return '<' + tag + '>' + content + "</" + tag + '>';
}

std::string xml_setting(const std::string& name, const std::string& values = "") {
    return xml_element("setting", xml_element("name", name) + values);
}

std::string xml_group(const std::string& name, const std::string& settings = "") {
    return xml_element("setting_group", xml_element("name", name) + settings);
}

template <class Container>
std::vector<std::string> group_names(const Container& container) {
    std::vector<std::string> names;
    for (const auto& entry : container.setting_groups) {
        names.push_back(entry.first);
    }
    return names;
}

// The value of a setting that was read with these children behind its name.
struct read_setting {
    explicit read_setting(const std::string& values) { read(setting, xml_setting("name", values)); }

    const std::string& value() const { return setting.value; }
    setting_node::setting_value_type type() const { return setting.value_type; }

    setting_node setting{0};
};

// The name of a setting that was named "before" and then read with these children.
std::string name_after(const std::string& children) {
    setting_node setting(0);
    setting.name = "before";
    read(setting, xml_element("setting", children));
    return setting.name;
}

// Node records made by hand, for trees that no text gives.
class node_records {
public:
    xmlNode* add(xmlElementType type, const char* name, const char* content = nullptr) {
        xmlNode& record = records_.emplace_back();
        record.type = type;
        record.name = reinterpret_cast<const xmlChar*>(name);
        record.content = reinterpret_cast<xmlChar*>(const_cast<char*>(content));
        return &record;
    }

    xmlNode* add_below(xmlNode* parent, xmlElementType type, const char* name, const char* content = nullptr) {
        xmlNode* record = add(type, name, content);
        (parent->last == nullptr ? parent->children : parent->last->next) = record;
        parent->last = record;
        return record;
    }

    // A `name` element or the like.
    xmlNode* add_leaf(xmlNode* parent, const char* name, const char* text) {
        xmlNode* leaf = add_below(parent, XML_ELEMENT_NODE, name);
        add_below(leaf, XML_TEXT_NODE, "text", text);
        return leaf;
    }

private:
    std::deque<xmlNode> records_;
};

template <class Target>
bool read(Target& target, xmlNode* record) {
    sysxml::node node(record);
    return target.parse(node);
}

}  // namespace

// Components and child slot groups: alike but for the element that they accept beside setting groups.

template <class Container>
class ContainerReader : public testing::Test {
protected:
    static constexpr bool is_component = std::is_same_v<Container, component>;
    using child = std::conditional_t<is_component, child_slot_group, component>;

    static auto& children_of(Container& container) {
        if constexpr (is_component) {
            return container.child_slot_groups;
        } else {
            return container.components;
        }
    }

    static void fill(Container& container) {
        auto* group = new setting_group(1);
        group->name = "former";
        container.add_setting_group(group);
        children_of(container).push_back(new child(1));
    }

    bool is_empty() { return container.setting_groups.empty() && children_of(container).empty(); }

    static std::string xml(const std::string& content = "") { return xml_element(Container::TAG, content); }
    static std::string xml_child(const std::string& content = "") { return xml_element(child::TAG, content); }
    static std::string unexpected(const std::string& name) {
        return "Unexpected node '" + name + "' in " + Container::TAG;
    }

    Container container{3};
};

struct container_name {
    template <class Container>
    static std::string GetName(int) {
        return Container::TAG;
    }
};

using containers = testing::Types<component, child_slot_group>;
TYPED_TEST_SUITE(ContainerReader, containers, container_name);

TYPED_TEST(ContainerReader, ReadsAnElementWithoutChildren) {
    EXPECT_TRUE(read(this->container, this->xml()));
    EXPECT_TRUE(this->is_empty());
}

TYPED_TEST(ContainerReader, ReadsChildrenInAnyOrderAndNumber) {
    ASSERT_TRUE(read(this->container,
                     this->xml(this->xml_child() + xml_group("b") + this->xml_child(xml_group("x")) + xml_group("a"))));
    EXPECT_THAT(group_names(this->container), ElementsAre("a", "b"));
    ASSERT_THAT(this->children_of(this->container), SizeIs(2));
    EXPECT_THAT(group_names(*this->children_of(this->container).front()), IsEmpty());
    EXPECT_THAT(group_names(*this->children_of(this->container).back()), ElementsAre("x"));
}

TYPED_TEST(ContainerReader, GivesChildrenTheNextLevel) {
    ASSERT_TRUE(read(this->container, this->xml(xml_group("group", xml_setting("setting")) + this->xml_child())));
    const setting_group* group = this->container.get_setting_group("group");
    EXPECT_EQ(group->level, 4u);
    EXPECT_EQ(group->get_setting("setting")->level, 5u);
    EXPECT_EQ(this->children_of(this->container).front()->level, 4u);
    EXPECT_EQ(this->container.level, 3u);
}

TYPED_TEST(ContainerReader, KeepsBothOfTwoGroupsOfOneNameInDocumentOrder) {
    ASSERT_TRUE(
        read(this->container, this->xml(xml_group("x", xml_setting("first")) + xml_group("x", xml_setting("second")))));
    std::vector<setting_group*> groups;
    this->container.get_setting_group("x", groups);
    ASSERT_THAT(groups, SizeIs(2));
    EXPECT_TRUE(groups[0]->has_setting("first"));
    EXPECT_TRUE(groups[1]->has_setting("second"));
}

TYPED_TEST(ContainerReader, ReplacesWhatTheContainerHeld) {
    this->fill(this->container);
    ASSERT_TRUE(read(this->container, this->xml(xml_group("new"))));
    EXPECT_THAT(group_names(this->container), ElementsAre("new"));
    EXPECT_THAT(this->children_of(this->container), IsEmpty());
}

TYPED_TEST(ContainerReader, RefusesAnotherElementAndIsLeftEmpty) {
    for (const char* other : {"setting_group", "setting", "Component", "components", "child_slot_grou"}) {
        this->fill(this->container);
        EXPECT_FALSE(read(this->container, xml_element(other))) << other;
        EXPECT_TRUE(this->is_empty()) << other;
    }
}

TYPED_TEST(ContainerReader, RefusesTheElementOfTheOtherClass) {
    EXPECT_FALSE(read(this->container, this->xml_child()));
}

TYPED_TEST(ContainerReader, RefusesANodeThatIsNoElementAndIsLeftEmpty) {
    for (const auto type : {XML_TEXT_NODE, XML_ATTRIBUTE_NODE, XML_PI_NODE, XML_CDATA_SECTION_NODE}) {
        node_records records;
        this->fill(this->container);
        EXPECT_FALSE(read(this->container, records.add(type, TypeParam::TAG))) << type;
        EXPECT_TRUE(this->is_empty()) << type;
    }
}

TYPED_TEST(ContainerReader, RefusesAnElementWithoutANameAndIsLeftEmpty) {
    node_records records;
    this->fill(this->container);
    EXPECT_FALSE(read(this->container, records.add(XML_ELEMENT_NODE, nullptr)));
    EXPECT_TRUE(this->is_empty());
}

TYPED_TEST(ContainerReader, SkipsTextBetweenElements) {
    EXPECT_TRUE(read(this->container,
                     this->xml("\n  stray words " + xml_group("a") + "&amp; more\n" + this->xml_child() + "\t")));
    EXPECT_THAT(group_names(this->container), ElementsAre("a"));
    EXPECT_THAT(this->children_of(this->container), SizeIs(1));
}

TYPED_TEST(ContainerReader, SkipsATextNodeWhateverItsName) {
    node_records records;
    xmlNode* element = records.add(XML_ELEMENT_NODE, TypeParam::TAG);
    records.add_below(element, XML_TEXT_NODE, "setting_group", "text");
    records.add_below(element, XML_TEXT_NODE, nullptr, "text");
    records.add_leaf(records.add_below(element, XML_ELEMENT_NODE, "setting_group"), "name", "behind");
    EXPECT_TRUE(read(this->container, element));
    EXPECT_THAT(group_names(this->container), ElementsAre("behind"));
}

TYPED_TEST(ContainerReader, RefusesANameElement) {
    EXPECT_THAT(reading(this->container, this->xml("<name>CPU</name>")),
                ThrowsMessage<node_error>(StrEq(this->unexpected("name"))));
}

TYPED_TEST(ContainerReader, RefusesAnUnknownElement) {
    EXPECT_THAT(reading(this->container, this->xml("<foo/>")),
                ThrowsMessage<node_error>(StrEq(this->unexpected("foo"))));
}

TYPED_TEST(ContainerReader, RefusesAnElementOfItsOwnKind) {
    EXPECT_THAT(reading(this->container, this->xml(this->xml())),
                ThrowsMessage<node_error>(StrEq(this->unexpected(TypeParam::TAG))));
}

TYPED_TEST(ContainerReader, RefusesANameInAnotherCase) {
    EXPECT_THAT(reading(this->container, this->xml("<Setting_group/>")),
                ThrowsMessage<node_error>(StrEq(this->unexpected("Setting_group"))));
}

TYPED_TEST(ContainerReader, RefusesAComment) {
    EXPECT_THAT(reading(this->container, this->xml("<!-- two sockets -->")),
                ThrowsMessage<node_error>(StrEq(this->unexpected("comment"))));
}

TYPED_TEST(ContainerReader, RefusesAProcessingInstructionByItsTarget) {
    EXPECT_THAT(reading(this->container, this->xml("<?foo bar?>")),
                ThrowsMessage<node_error>(StrEq(this->unexpected("foo"))));
}

TYPED_TEST(ContainerReader, EndsTheMessageWhereANodeHasNoName) {
    EXPECT_THAT(reading(this->container, this->xml("<![CDATA[words]]>")),
                ThrowsMessage<node_error>(StrEq("Unexpected node '")));
}

TYPED_TEST(ContainerReader, KeepsWhatWasReadBeforeAnUnexpectedNodeAndReadsNothingBehindIt) {
    EXPECT_THAT(
        reading(this->container, this->xml(xml_group("a") + this->xml_child() + "<foo/>" + xml_group("b") + "<bar/>")),
        ThrowsMessage<node_error>(StrEq(this->unexpected("foo"))));
    EXPECT_THAT(group_names(this->container), ElementsAre("a"));
    EXPECT_THAT(this->children_of(this->container), SizeIs(1));
}

TYPED_TEST(ContainerReader, LeavesOutAChildWhoseContentIsRefused) {
    EXPECT_THAT(reading(this->container, this->xml(this->xml_child() + this->xml_child(xml_group("a") + "<foo/>"))),
                ThrowsMessage<node_error>(HasSubstr("'foo'")));
    EXPECT_THAT(this->children_of(this->container), SizeIs(1));
    EXPECT_THAT(group_names(*this->children_of(this->container).front()), IsEmpty());
}

TYPED_TEST(ContainerReader, LeavesOutAGroupWhoseContentIsRefused) {
    EXPECT_THAT(reading(this->container, this->xml(xml_group("a") + xml_group("b", "<foo/>"))),
                ThrowsMessage<node_error>(StrEq("Unexpected node 'foo' in setting_group")));
    EXPECT_THAT(group_names(this->container), ElementsAre("a"));
}

TYPED_TEST(ContainerReader, EndsWithSuccessAtANodeThatIsNamedLikeAGroupButIsNoElement) {
    for (const auto type : {XML_ATTRIBUTE_NODE, XML_PI_NODE}) {
        node_records records;
        xmlNode* element = records.add(XML_ELEMENT_NODE, TypeParam::TAG);
        records.add_leaf(records.add_below(element, XML_ELEMENT_NODE, "setting_group"), "name", "before");
        records.add_below(element, type, "setting_group");
        records.add_below(element, XML_ELEMENT_NODE, "foo");
        EXPECT_TRUE(read(this->container, element)) << type;
        EXPECT_THAT(group_names(this->container), ElementsAre("before")) << type;
    }
}

TYPED_TEST(ContainerReader, EndsWithSuccessAtANodeThatIsNamedLikeAChildButIsNoElement) {
    EXPECT_TRUE(read(this->container, this->xml(this->xml_child() + "<?" + TestFixture::child::TAG + "?>" + "<foo/>")));
    EXPECT_THAT(this->children_of(this->container), SizeIs(1));
}

TYPED_TEST(ContainerReader, DestroysTheChildThatTurnedOutToBeNoElement) {
    const std::string text = this->xml(std::string("<?") + TestFixture::child::TAG + "?>");
    read(this->container, this->xml());
    const long before = live_allocations();
    read(this->container, text);
    EXPECT_EQ(live_allocations(), before);
}

TYPED_TEST(ContainerReader, LeavesAGroupAndItsSettingsToWhoeverTakesThemOut) {
    const std::string xml = this->xml(xml_group("group", xml_setting("a") + xml_setting("b")));
    const long before = live_allocations();
    {
        auto parent = std::make_unique<TypeParam>(1);
        read(*parent, xml);
        std::unique_ptr<setting_group> group(parent->setting_groups.extract("group").mapped());
        parent.reset();
        const std::unique_ptr<setting_node> setting(group->settings.extract("b").mapped());
        EXPECT_THAT(setting_names(*group), ElementsAre("a"));
        group.reset();
        EXPECT_EQ(setting->name, "b");
    }
    EXPECT_EQ(live_allocations(), before);
}

TYPED_TEST(ContainerReader, MakesElementsAsACallerMakesThem) {
    const std::string xml = this->xml(xml_group("group", xml_setting("a")));
    const long before = live_allocations();
    {
        TypeParam parent(1);
        read(parent, xml);
        setting_group* group = parent.setting_groups.extract("group").mapped();
        setting_node* setting = group->settings.extract("a").mapped();
        EXPECT_TRUE(typeid(*group) == typeid(setting_group));
        EXPECT_TRUE(typeid(*setting) == typeid(setting_node));
        ::delete group;
        ::delete setting;
    }
    EXPECT_EQ(live_allocations(), before);
}

TYPED_TEST(ContainerReader, LooksAtNoAttribute) {
    EXPECT_TRUE(read(this->container, std::string("<") + TypeParam::TAG + " name='x' setting_group='y'/>"));
    EXPECT_TRUE(this->is_empty());
}

TYPED_TEST(ContainerReader, LooksAtNoNamespace) {
    const std::string tag = TypeParam::TAG;
    EXPECT_TRUE(read(this->container, "<v:" + tag + " xmlns:v='urn:v' xmlns='urn:w'>" + xml_group("a") +
                                          "<v:setting_group><v:name>b</v:name></v:setting_group></v:" + tag + ">"));
    EXPECT_THAT(group_names(this->container), ElementsAre("a", "b"));
}

TYPED_TEST(ContainerReader, GoesByTheTagOfItsClass) {
    const changed_tag tag(TypeParam::TAG, "board");
    EXPECT_TRUE(read(this->container, "<board/>"));
    EXPECT_THAT(reading(this->container, "<board><foo/></board>"),
                ThrowsMessage<node_error>(StrEq("Unexpected node 'foo' in board")));
}

TYPED_TEST(ContainerReader, GoesByTheTagsOfItsChildrensClasses) {
    const std::string former_tag = TestFixture::child::TAG;
    const changed_tag tag(TestFixture::child::TAG, "board");
    const changed_tag group_tag(setting_group::TAG, "settings");
    EXPECT_TRUE(read(this->container, this->xml("<settings><name>a</name></settings><board/>")));
    EXPECT_THAT(group_names(this->container), ElementsAre("a"));
    EXPECT_THAT(this->children_of(this->container), SizeIs(1));
    EXPECT_THAT(reading(this->container, this->xml(xml_element(former_tag))),
                ThrowsMessage<node_error>(StrEq(this->unexpected(former_tag))));
}

// Setting groups.

TEST(SettingGroupReader, ReadsNameAndSettings) {
    setting_group group(1);
    ASSERT_TRUE(read(group, xml_group("cpu_info", xml_setting("Slot") + xml_setting("Speed"))));
    EXPECT_EQ(group.name, "cpu_info");
    EXPECT_THAT(setting_names(group), ElementsAre("Slot", "Speed"));
}

TEST(SettingGroupReader, GivesSettingsTheNextLevel) {
    setting_group group(1);
    ASSERT_TRUE(read(group, xml_group("cpu_info", xml_setting("Slot"))));
    EXPECT_EQ(group.get_setting("Slot")->level, 2u);
}

TEST(SettingGroupReader, TakesANameThatStandsBehindTheSettings) {
    setting_group group(1);
    ASSERT_TRUE(read(group, "<setting_group>" + xml_setting("Slot") + "<name>late</name></setting_group>"));
    EXPECT_EQ(group.name, "late");
    EXPECT_TRUE(group.has_setting("Slot"));
}

TEST(SettingGroupReader, TakesTheLastOfSeveralNames) {
    setting_group group(1);
    ASSERT_TRUE(read(group, "<setting_group><name>a</name><name>b</name><name/></setting_group>"));
    EXPECT_EQ(group.name, "b");
}

TEST(SettingGroupReader, KeepsTheLaterOfTwoSettingsOfOneName) {
    setting_group group(1);
    ASSERT_TRUE(read(group, xml_group("group", xml_setting("a", "<text_value>first</text_value>") + xml_setting("b") +
                                                   xml_setting("a", "<text_value>second</text_value>"))));
    EXPECT_THAT(setting_names(group), ElementsAre("a", "b"));
    EXPECT_EQ(group.get_setting("a")->value, "second");
}

TEST(SettingGroupReader, DestroysTheEarlierOfTwoSettingsOfOneName) {
    const auto allocations_of = [](const std::string& xml) {
        const long before = live_allocations();
        setting_group group(1);
        read(group, xml);
        return live_allocations() - before;
    };
    const std::string setting = xml_setting("a name that has memory of its own");
    EXPECT_EQ(allocations_of(xml_group("group", setting + setting)), allocations_of(xml_group("group", setting)));
}

TEST(SettingGroupReader, LeavesASettingToWhoeverTakesItOut) {
    const std::string xml = xml_group("group", xml_setting("a") + xml_setting("b", "<text_value>kept</text_value>"));
    const long before = live_allocations();
    {
        auto group = std::make_unique<setting_group>(1);
        read(*group, xml);
        const std::unique_ptr<setting_node> taken(group->settings.extract("b").mapped());
        group.reset();
        EXPECT_EQ(taken->value, "kept");
    }
    EXPECT_EQ(live_allocations(), before);
}

TEST(SettingGroupReader, ReplacesTheSettingsThatTheGroupHeld) {
    destructions destroyed;
    setting_group group(1);
    group.add_setting(make_noted<setting_node>(destroyed, "former"));
    ASSERT_TRUE(read(group, xml_group("group", xml_setting("new"))));
    EXPECT_THAT(destroyed, ElementsAre("former"));
    EXPECT_THAT(setting_names(group), ElementsAre("new"));
}

TEST(SettingGroupReader, KeepsItsFormerNameWhereTheElementHasNone) {
    setting_group group(1);
    group.name = "former";
    EXPECT_TRUE(read(group, "<setting_group/>"));
    EXPECT_EQ(group.name, "former");
}

TEST(SettingGroupReader, RefusesAnotherElementAndIsLeftWithoutSettings) {
    for (const char* other : {"component", "setting", "Setting_group", "setting_groups"}) {
        setting_group group(1);
        group.name = "former";
        group.add_setting(new setting_node(2));
        EXPECT_FALSE(read(group, xml_element(other))) << other;
        EXPECT_THAT(group.settings, IsEmpty()) << other;
        EXPECT_EQ(group.name, "former") << other;
    }
}

TEST(SettingGroupReader, RefusesANodeThatIsNoElementAndIsLeftWithoutSettings) {
    for (const auto type : {XML_TEXT_NODE, XML_ATTRIBUTE_NODE, XML_PI_NODE}) {
        node_records records;
        setting_group group(1);
        group.add_setting(new setting_node(2));
        EXPECT_FALSE(read(group, records.add(type, "setting_group"))) << type;
        EXPECT_THAT(group.settings, IsEmpty()) << type;
    }
}

TEST(SettingGroupReader, RefusesAnElementWithoutANameOfItsOwn) {
    node_records records;
    setting_group group(1);
    EXPECT_FALSE(read(group, records.add(XML_ELEMENT_NODE, nullptr)));
}

TEST(SettingGroupReader, ReportsAMissingNameOnceEverySettingIsAttached) {
    setting_group group(1);
    EXPECT_THAT(
        reading(group, "<setting_group name='cpu_info'>" + xml_setting("a") + xml_setting("b") + "</setting_group>"),
        ThrowsMessage<name_error>(StrEq("empty setting group name")));
    EXPECT_THAT(setting_names(group), ElementsAre("a", "b"));
}

TEST(SettingGroupReader, ReportsAnUnexpectedNodeRatherThanTheMissingName) {
    setting_group group(1);
    EXPECT_THAT(reading(group, "<setting_group><foo/></setting_group>"),
                ThrowsMessage<node_error>(StrEq("Unexpected node 'foo' in setting_group")));
}

TEST(SettingGroupReader, RefusesEveryOtherNode) {
    const std::pair<const char*, const char*> others[] = {
        {"<foo/>", "Unexpected node 'foo' in setting_group"},
        {"<setting_group/>", "Unexpected node 'setting_group' in setting_group"},
        {"<component/>", "Unexpected node 'component' in setting_group"},
        {"<text_value>x</text_value>", "Unexpected node 'text_value' in setting_group"},
        {"<Name>x</Name>", "Unexpected node 'Name' in setting_group"},
        {"<!-- cache -->", "Unexpected node 'comment' in setting_group"},
        {"<?foo bar?>", "Unexpected node 'foo' in setting_group"},
        {"<![CDATA[words]]>", "Unexpected node '"},
    };
    for (const auto& [other, message] : others) {
        setting_group group(1);
        EXPECT_THAT(reading(group, xml_group("group", other)), ThrowsMessage<node_error>(StrEq(message)));
    }
}

TEST(SettingGroupReader, KeepsTheSettingsBeforeAnUnexpectedNodeAndReadsNothingBehindIt) {
    setting_group group(1);
    EXPECT_THAT(reading(group, xml_group("group", xml_setting("a") + "<foo/>" + xml_setting("b"))),
                ThrowsMessage<node_error>(HasSubstr("'foo'")));
    EXPECT_THAT(setting_names(group), ElementsAre("a"));
}

TEST(SettingGroupReader, LeavesOutASettingWhoseContentIsRefused) {
    setting_group group(1);
    EXPECT_THAT(reading(group, xml_group("group", xml_setting("a") + xml_setting("b", "<foo/>"))),
                ThrowsMessage<node_error>(StrEq("Unexpected node 'foo' in setting")));
    EXPECT_THAT(setting_names(group), ElementsAre("a"));
}

TEST(SettingGroupReader, SkipsText) {
    setting_group group(1);
    EXPECT_TRUE(
        read(group, "<setting_group>\n stray <name>group</name> words " + xml_setting("a") + "\n</setting_group>"));
    EXPECT_THAT(setting_names(group), ElementsAre("a"));
}

TEST(SettingGroupReader, SkipsATextNodeWhateverItsName) {
    node_records records;
    xmlNode* element = records.add(XML_ELEMENT_NODE, "setting_group");
    records.add_below(element, XML_TEXT_NODE, "setting", "text");
    records.add_leaf(element, "name", "group");
    setting_group group(1);
    EXPECT_TRUE(read(group, element));
    EXPECT_EQ(group.name, "group");
}

TEST(SettingGroupReader, KnowsANameWhereverItStandsInMemory) {
    const std::string setting_tags[] = {"setting", "setting"};
    const std::string name_tags[] = {"name", "name"};
    const std::string value_tags[] = {"text_value", "text_value"};
    node_records records;
    xmlNode* element = records.add(XML_ELEMENT_NODE, "setting_group");
    records.add_leaf(element, "name", "group");
    for (const std::size_t place : {0, 1, 0}) {
        xmlNode* setting = records.add_below(element, XML_ELEMENT_NODE, setting_tags[place].c_str());
        records.add_leaf(setting, name_tags[place].c_str(), place == 0 ? "a" : "b");
        records.add_leaf(setting, value_tags[place].c_str(), "value");
    }
    setting_group group(1);
    EXPECT_TRUE(read(group, element));
    EXPECT_THAT(setting_names(group), ElementsAre("a", "b"));
}

TEST(SettingGroupReader, StopsReadingAtANodeThatIsNamedLikeASettingButIsNoElement) {
    for (const auto type : {XML_ATTRIBUTE_NODE, XML_PI_NODE}) {
        node_records records;
        xmlNode* element = records.add(XML_ELEMENT_NODE, "setting_group");
        records.add_leaf(element, "name", "group");
        records.add_leaf(records.add_below(element, XML_ELEMENT_NODE, "setting"), "name", "before");
        records.add_below(element, type, "setting");
        records.add_below(element, XML_ELEMENT_NODE, "foo");
        setting_group group(1);
        EXPECT_TRUE(read(group, element)) << type;
        EXPECT_THAT(setting_names(group), ElementsAre("before")) << type;
    }
}

TEST(SettingGroupReader, ChecksTheNameWhereItStoppedReading) {
    setting_group group(1);
    EXPECT_THAT(reading(group, "<setting_group><?setting?><name>group</name></setting_group>"),
                ThrowsMessage<name_error>(StrEq("empty setting group name")));
}

TEST(SettingGroupReader, DestroysTheSettingThatTurnedOutToBeNoElement) {
    setting_group group(1);
    read(group, xml_group("group"));
    const long before = live_allocations();
    read(group, xml_group("group", "<?setting?>"));
    EXPECT_EQ(live_allocations(), before);
}

TEST(SettingGroupReader, GoesByTheTags) {
    const changed_tag group_tag(setting_group::TAG, "settings");
    const changed_tag setting_tag(setting_node::TAG, "entry");
    setting_group group(1);
    EXPECT_TRUE(read(group, "<settings><name>group</name><entry><name>a</name></entry></settings>"));
    EXPECT_THAT(setting_names(group), ElementsAre("a"));
    EXPECT_THAT(reading(group, "<settings><setting/></settings>"),
                ThrowsMessage<node_error>(StrEq("Unexpected node 'setting' in settings")));
}

// Settings.

TEST(SettingReader, ReadsNameAndValue) {
    setting_node setting(2);
    ASSERT_TRUE(read(setting, xml_setting("Socket Designation", "<text_value>CPU 1</text_value>")));
    EXPECT_EQ(setting.name, "Socket Designation");
    EXPECT_EQ(setting.value, "CPU 1");
    EXPECT_EQ(setting.value_type, setting_node::text_value);
}

TEST(SettingReader, TakesItsTypeFromTheValueElement) {
    for (unsigned number = 0; number < 8; ++number) {
        const auto type = static_cast<setting_node::setting_value_type>(number);
        const read_setting setting(xml_element(setting_node::map_value_type(type), "17"));
        EXPECT_EQ(setting.type(), type);
        EXPECT_EQ(setting.value(), "17");
    }
}

TEST(SettingReader, ChecksNoValueAgainstItsType) {
    const read_setting setting("<integer_value>many</integer_value>");
    EXPECT_EQ(setting.value(), "many");
    EXPECT_EQ(setting.type(), setting_node::integer_value);
}

TEST(SettingReader, KeepsTheUnknownTypeWithoutAValueElement) {
    const read_setting setting("");
    EXPECT_EQ(setting.value(), "");
    EXPECT_EQ(setting.type(), setting_node::unknow_value);
}

TEST(SettingReader, TakesTheLastOfSeveralValuesTextAndType) {
    const read_setting setting("<integer_value>5</integer_value><text_value>abc</text_value>");
    EXPECT_EQ(setting.value(), "abc");
    EXPECT_EQ(setting.type(), setting_node::text_value);
}

TEST(SettingReader, TakesTheLastUsableOfSeveralValues) {
    const read_setting setting("<integer_value>5</integer_value><text_value/>");
    EXPECT_EQ(setting.value(), "5");
    EXPECT_EQ(setting.type(), setting_node::integer_value);
}

TEST(SettingReader, TakesANameThatStandsBehindTheValue) {
    EXPECT_EQ(name_after("<text_value>x</text_value><name>late</name>"), "late");
}

TEST(SettingReader, TakesTheLastUsableOfSeveralNames) {
    EXPECT_EQ(name_after("<name>a</name><name>b</name><name/>"), "b");
}

TEST(SettingReader, KeepsWhatItHeldUnlessAChildReplacesIt) {
    setting_node setting(2);
    read(setting, xml_setting("a", "<hex_value>1F</hex_value>"));
    EXPECT_TRUE(read(setting, "<setting/>"));
    EXPECT_EQ(setting.name, "a");
    EXPECT_EQ(setting.value, "1F");
    EXPECT_EQ(setting.value_type, setting_node::hex_value);
}

TEST(SettingReader, RefusesAnotherElementAndKeepsWhatItHeld) {
    for (const char* other : {"setting_group", "component", "Setting", "settings", "name"}) {
        setting_node setting(2);
        read(setting, xml_setting("a", "<hex_value>1F</hex_value>"));
        EXPECT_FALSE(read(setting, xml_element(other, "<name>b</name>"))) << other;
        EXPECT_EQ(setting.name, "a") << other;
        EXPECT_EQ(setting.value, "1F") << other;
        EXPECT_EQ(setting.value_type, setting_node::hex_value) << other;
    }
}

TEST(SettingReader, RefusesANodeThatIsNoElement) {
    for (const auto type : {XML_TEXT_NODE, XML_ATTRIBUTE_NODE, XML_PI_NODE}) {
        node_records records;
        setting_node setting(2);
        EXPECT_FALSE(read(setting, records.add(type, "setting"))) << type;
    }
}

TEST(SettingReader, RefusesAnElementWithoutANameOfItsOwn) {
    node_records records;
    setting_node setting(2);
    EXPECT_FALSE(read(setting, records.add(XML_ELEMENT_NODE, nullptr)));
}

TEST(SettingReader, ReportsAnEmptyNameElement) {
    setting_node setting(2);
    EXPECT_THAT(reading(setting, "<setting name='x'><name/></setting>"),
                ThrowsMessage<name_error>(StrEq("empty setting name")));
}

TEST(SettingReader, ReportsAMissingNameOnceTheValueIsTaken) {
    setting_node setting(2);
    EXPECT_THAT(reading(setting, "<setting><text_value>x</text_value></setting>"),
                ThrowsMessage<name_error>(StrEq("empty setting name")));
    EXPECT_EQ(setting.value, "x");
}

TEST(SettingReader, RefusesEveryOtherNode) {
    const std::pair<const char*, const char*> others[] = {
        {"<unknow_value>x</unknow_value>", "Unexpected node 'unknow_value' in setting"},
        {"<setting/>", "Unexpected node 'setting' in setting"},
        {"<setting_group/>", "Unexpected node 'setting_group' in setting"},
        {"<Text_value>x</Text_value>", "Unexpected node 'Text_value' in setting"},
        {"<text_value2>x</text_value2>", "Unexpected node 'text_value2' in setting"},
        {"<!-- volts -->", "Unexpected node 'comment' in setting"},
        {"<?foo bar?>", "Unexpected node 'foo' in setting"},
        {"<![CDATA[words]]>", "Unexpected node '"},
    };
    for (const auto& [other, message] : others) {
        setting_node setting(2);
        EXPECT_THAT(reading(setting, xml_setting("a", other)), ThrowsMessage<node_error>(StrEq(message)));
    }
}

TEST(SettingReader, EndsTheMessageWhereAnElementHasNoName) {
    node_records records;
    xmlNode* element = records.add(XML_ELEMENT_NODE, "setting");
    records.add_below(element, XML_ELEMENT_NODE, nullptr);
    setting_node setting(2);
    EXPECT_THAT([&] { read(setting, element); }, ThrowsMessage<node_error>(StrEq("Unexpected node '")));
}

TEST(SettingReader, KeepsWhatWasReadBeforeAnUnexpectedNodeAndReadsNothingBehindIt) {
    setting_node setting(2);
    EXPECT_THAT(reading(setting, "<setting><name>a</name><foo/><name>b</name></setting>"),
                ThrowsMessage<node_error>(HasSubstr("'foo'")));
    EXPECT_EQ(setting.name, "a");
}

TEST(SettingReader, SkipsText) {
    EXPECT_EQ(name_after("\n stray <name>a</name> words\n"), "a");
}

TEST(SettingReader, MatchesEveryNodeButTextByItsNameAlone) {
    node_records records;
    xmlNode* element = records.add(XML_ELEMENT_NODE, "setting");
    xmlNode* name = records.add_below(element, XML_ATTRIBUTE_NODE, "name");
    records.add_below(name, XML_TEXT_NODE, "text", "a");
    records.add_below(element, XML_TEXT_NODE, "foo", "text");
    setting_node setting(2);
    EXPECT_TRUE(read(setting, element));
    EXPECT_EQ(setting.name, "a");
}

TEST(SettingReader, IgnoresAProcessingInstructionThatIsNamedLikeAValue) {
    const read_setting setting("<?text_value x?>");
    EXPECT_EQ(setting.value(), "");
    EXPECT_EQ(setting.type(), setting_node::unknow_value);
}

TEST(SettingReader, GoesByItsTag) {
    const changed_tag tag(setting_node::TAG, "entry");
    setting_node setting(2);
    EXPECT_TRUE(read(setting, "<entry><name>a</name></entry>"));
    EXPECT_FALSE(read(setting, "<setting><name>a</name></setting>"));
    EXPECT_THAT(reading(setting, "<entry><foo/></entry>"),
                ThrowsMessage<node_error>(StrEq("Unexpected node 'foo' in entry")));
}

// The text of names and values.

TEST(ElementText, IsTakenWhole) {
    EXPECT_EQ(read_setting("<text_value> two  blanks \n and a line \t</text_value>").value(),
              " two  blanks \n and a line \t");
}

TEST(ElementText, IsAbsentInAnEmptyElement) {
    EXPECT_EQ(name_after("<name/>"), "before");
    EXPECT_EQ(name_after("<name></name>"), "before");
}

TEST(ElementText, IsAbsentWhereItBeginsOnALineOfItsOwn) {
    const read_setting setting("<text_value>\n  abc</text_value>");
    EXPECT_EQ(setting.value(), "");
    EXPECT_EQ(setting.type(), setting_node::unknow_value);
    EXPECT_EQ(name_after("<name>\nabc</name>"), "before");
}

TEST(ElementText, IsAbsentBehindACrLf) {
    EXPECT_EQ(name_after("<name>\r\nabc</name>"), "before");
}

TEST(ElementText, IsAbsentBehindALineFeedThatWasWrittenAsAReference) {
    EXPECT_EQ(name_after("<name>&#10;abc</name>"), "before");
}

TEST(ElementText, MayBeginWithAnyOtherCharacter) {
    EXPECT_EQ(name_after("<name> abc</name>"), " abc");
    EXPECT_EQ(name_after("<name>\tabc</name>"), "\tabc");
    EXPECT_EQ(name_after("<name>&#13;abc</name>"), "\rabc");
    EXPECT_EQ(name_after("<name> \nabc</name>"), " \nabc");
}

TEST(ElementText, IsAbsentBehindAnElement) {
    EXPECT_EQ(name_after("<name><b/>abc</name>"), "before");
}

TEST(ElementText, EndsAtTheFirstNodeBehindIt) {
    EXPECT_EQ(name_after("<name>abc<!-- comment -->def</name>"), "abc");
    EXPECT_EQ(name_after("<name>abc<b>def</b></name>"), "abc");
    EXPECT_EQ(name_after("<name>abc<![CDATA[def]]></name>"), "abc");
}

TEST(ElementText, IsThatOfTheFirstNodeWhateverItsKind) {
    EXPECT_EQ(name_after("<name><![CDATA[a < b]]> tail</name>"), "a < b");
    EXPECT_EQ(name_after("<name><!--comment-->abc</name>"), "comment");
    EXPECT_EQ(name_after("<name><?target instruction?>abc</name>"), "instruction");
}

TEST(ElementText, IsAbsentWhereTheFirstNodeHoldsNone) {
    node_records records;
    for (const char* content : {static_cast<const char*>(nullptr), "", "\n"}) {
        xmlNode* element = records.add(XML_ELEMENT_NODE, "setting");
        records.add_leaf(element, "name", content);
        setting_node setting(2);
        setting.name = "before";
        EXPECT_TRUE(read(setting, element));
        EXPECT_EQ(setting.name, "before");
    }
}

TEST(ElementText, HasItsEntitiesExpanded) {
    EXPECT_EQ(name_after("<name>&lt;R&amp;D&gt; &#x41;&quot;</name>"), "<R&D> A\"");
    setting_node setting(2);
    ASSERT_TRUE(read(setting, "<!DOCTYPE setting [<!ENTITY maker 'Maker'>]>" +
                                  xml_setting("&maker;", "<text_value>by &maker; GmbH</text_value>")));
    EXPECT_EQ(setting.name, "Maker");
    EXPECT_EQ(setting.value, "by Maker GmbH");
}

TEST(ElementText, IsUtf8WhateverTheEncodingOfTheFile) {
    setting_node setting(2);
    ASSERT_TRUE(read(setting, "<?xml version='1.0' encoding='ISO-8859-1'?>" + xml_setting("L\xfc"
                                                                                          "fter")));
    EXPECT_EQ(setting.name,
              "L\xc3\xbc"
              "fter");
}

// Documents: nodes, streams and files.

namespace {

const std::string sample = xml_element(
    "component", "\n  " + xml_element("child_slot_group", xml_element("component", xml_group("cpu_info"))) + "\n  " +
                     xml_group("board_info", "\n" + xml_setting("Slots", "\n<integer_value>2</integer_value>") + '\n') +
                     '\n');

void expect_sample(const document& doc) {
    ASSERT_NE(doc.root.get_setting_group("board_info"), nullptr);
    ASSERT_NE(doc.root.get_setting_group("board_info")->get_setting("Slots"), nullptr);
    EXPECT_EQ(doc.root.get_setting_group("board_info")->get_setting("Slots")->get_int64(0), 2);
    ASSERT_THAT(doc.root.child_slot_groups, SizeIs(1));
    ASSERT_THAT(doc.root.child_slot_groups.front()->components, SizeIs(1));
    EXPECT_TRUE(doc.root.child_slot_groups.front()->components.front()->has_setting_group("cpu_info"));
}

std::size_t open_files() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

// A document with `component` elements and slot groups in turn, `depth` of them inside one another.
std::string nested(int depth) {
    std::string opening;
    std::string closing;
    for (int level = 0; level < depth; ++level) {
        const std::string tag = level % 2 == 0 ? "component" : "child_slot_group";
        opening += '<' + tag + '>';
        closing.insert(0, "</" + tag + '>');
    }
    return opening + closing;
}

}  // namespace

class DocumentReader : public testing::Test {
protected:
    bool parse(const std::string& xml) {
        std::istringstream in(xml);
        return doc.parse(in);
    }

    auto parsing(const std::string& xml) {
        return [this, xml] { parse(xml); };
    }

    bool is_empty() const { return doc.root.setting_groups.empty() && doc.root.child_slot_groups.empty(); }

    document doc;
};

TEST_F(DocumentReader, ReadsANodeAsItsRoot) {
    ASSERT_TRUE(read(doc, sample));
    expect_sample(doc);
}

TEST_F(DocumentReader, ReadsAStream) {
    ASSERT_TRUE(parse(sample));
    expect_sample(doc);
}

TEST_F(DocumentReader, ReadsAFile) {
    const scratch_file file("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + sample);
    ASSERT_TRUE(doc.parse(file.path()));
    expect_sample(doc);
}

TEST_F(DocumentReader, ReadsAFileWithCrLfLines) {
    std::string text;
    for (const char character : sample) {
        text += character == '\n' ? "\r\n" : std::string(1, character);
    }
    const scratch_file file(text);
    ASSERT_TRUE(doc.parse(file.path()));
    expect_sample(doc);
}

TEST_F(DocumentReader, ReadsARootWithoutChildren) {
    EXPECT_TRUE(parse("<component/>"));
    EXPECT_TRUE(is_empty());
}

TEST_F(DocumentReader, NumbersLevelsFromTheRoot) {
    ASSERT_TRUE(parse(sample));
    EXPECT_EQ(doc.root.level, 0u);
    EXPECT_EQ(doc.root.get_setting_group("board_info")->level, 1u);
    EXPECT_EQ(doc.root.get_setting_group("board_info")->get_setting("Slots")->level, 2u);
    const child_slot_group* slots = doc.root.child_slot_groups.front();
    EXPECT_EQ(slots->level, 1u);
    EXPECT_EQ(slots->components.front()->level, 2u);
    EXPECT_EQ(slots->components.front()->get_setting_group("cpu_info")->level, 3u);
}

TEST_F(DocumentReader, ReadsElementsThatAnEntityHolds) {
    ASSERT_TRUE(parse("<!DOCTYPE component [<!ENTITY groups '<setting_group><name>a</name></setting_group>'>]>" +
                      xml_element("component", "&groups;" + xml_group("b") + "&groups;")));
    EXPECT_THAT(group_names(doc.root), ElementsAre("a", "a", "b"));
}

TEST_F(DocumentReader, SkipsCommentsAndInstructionsOutsideTheRoot) {
    EXPECT_TRUE(parse("<?xml version='1.0'?><!-- board --><?style none?><component/><!-- end -->"));
}

TEST_F(DocumentReader, RefusesAnotherRootAndIsLeftEmpty) {
    ASSERT_TRUE(parse(sample));
    EXPECT_FALSE(parse(xml_group("cpu_info")));
    EXPECT_TRUE(is_empty());
}

TEST_F(DocumentReader, RefusesANodeThatIsNoElementAndIsLeftEmpty) {
    ASSERT_TRUE(parse(sample));
    node_records records;
    EXPECT_FALSE(read(doc, records.add(XML_TEXT_NODE, "component")));
    EXPECT_TRUE(is_empty());
}

TEST_F(DocumentReader, ReplacesWhatTheDocumentHeld) {
    ASSERT_TRUE(parse(sample));
    ASSERT_TRUE(parse(xml_element("component", xml_group("second"))));
    EXPECT_THAT(group_names(doc.root), ElementsAre("second"));
    EXPECT_THAT(doc.root.child_slot_groups, IsEmpty());
}

TEST_F(DocumentReader, KeepsThePartThatWasReadBeforeAFailure) {
    ASSERT_TRUE(parse(sample));
    const std::string refused_slots =
        xml_element("child_slot_group", xml_element("component", xml_group("lost", xml_setting("", "<foo/>"))));
    EXPECT_THAT(parsing(xml_element("component", xml_group("kept") + xml_element("child_slot_group") + refused_slots)),
                ThrowsMessage<node_error>(StrEq("Unexpected node 'foo' in setting")));
    EXPECT_THAT(group_names(doc.root), ElementsAre("kept"));
    EXPECT_THAT(doc.root.child_slot_groups, SizeIs(1));
}

TEST_F(DocumentReader, PassesANameErrorFromAnyDepth) {
    EXPECT_THAT(parsing(xml_element("component", xml_group("group", xml_setting("")))),
                ThrowsMessage<name_error>(StrEq("empty setting name")));
    EXPECT_THAT(parsing(xml_element("component", xml_element("child_slot_group", xml_group("")))),
                ThrowsMessage<name_error>(StrEq("empty setting group name")));
}

TEST_F(DocumentReader, ThrowsErrorsThatAreCaughtAsPlatformExceptions) {
    for (const auto& [xml, message] :
         {std::pair("<component><foo/></component>", "Unexpected node 'foo' in component"),
          std::pair("<component><setting_group/></component>", "empty setting group name")}) {
        try {
            parse(xml);
            FAIL() << "nothing was thrown";
        } catch (const sysipc::exception& error) {
            EXPECT_STREQ(error.what(), message);
        }
    }
}

TEST_F(DocumentReader, RefusesMalformedTextAndKeepsWhatItHeld) {
    ASSERT_TRUE(parse(sample));
    for (const char* xml : {"<component>", "<component></child>", "<component/><component/>",
                            "<component>&x;</component>", "words", "<component a=b/>"}) {
        EXPECT_THROW(parse(xml), sysipc::exception) << xml;
        expect_sample(doc);
    }
}

TEST_F(DocumentReader, RefusesAnEmptyStream) {
    EXPECT_THROW(parse(""), sysipc::exception);
}

TEST_F(DocumentReader, RefusesAFailedStreamAndKeepsWhatItHeld) {
    ASSERT_TRUE(parse(sample));
    for (const auto state : {std::ios::failbit, std::ios::badbit}) {
        std::istringstream in("<component/>");
        in.setstate(state);
        EXPECT_THROW(doc.parse(in), sysipc::exception);
        expect_sample(doc);
    }
}

TEST_F(DocumentReader, RefusesAMissingFileAndKeepsWhatItHeld) {
    ASSERT_TRUE(parse(sample));
    EXPECT_THROW(doc.parse("no/such/file.xml"), sysipc::exception);
    expect_sample(doc);
}

TEST_F(DocumentReader, RefusesADirectory) {
    EXPECT_THROW(doc.parse("."), sysipc::exception);
}

TEST_F(DocumentReader, RefusesANullPathAndKeepsWhatItHeld) {
    ASSERT_TRUE(parse(sample));
    const char* no_path = nullptr;
    EXPECT_FALSE(doc.parse(no_path));
    expect_sample(doc);
}

TEST_F(DocumentReader, ReadsElementsThatAre256Deep) {
    ASSERT_TRUE(parse(nested(256)));
    std::uint32_t deepest = 0;
    for (const component* next = &doc.root; next != nullptr;) {
        const child_slot_group* slots = next->child_slot_groups.empty() ? nullptr : next->child_slot_groups.front();
        deepest = slots == nullptr ? next->level : slots->level;
        next = slots == nullptr || slots->components.empty() ? nullptr : slots->components.front();
    }
    EXPECT_EQ(deepest, 255u);
}

TEST_F(DocumentReader, RefusesElementsThatAreDeeper) {
    EXPECT_THAT(parsing(nested(258)), ThrowsMessage<sysipc::exception>(HasSubstr("Excessive depth in document: 256")));
}

TEST_F(DocumentReader, ClosesTheFileHoweverReadingEnds) {
    const std::size_t before = open_files();
    for (const std::string& xml : {sample, std::string("<setting/>"), std::string("<component><foo/></component>")}) {
        const scratch_file file(xml);
        try {
            doc.parse(file.path());
        } catch (const node_error&) {
        }
        EXPECT_EQ(open_files(), before) << xml;
    }
}

// The extraction operator.

class Extraction : public testing::Test {
protected:
    document doc;
};

TEST_F(Extraction, ReadsADocument) {
    std::istringstream in(sample);
    EXPECT_TRUE(in >> doc);
    expect_sample(doc);
}

TEST_F(Extraction, ReturnsTheStream) {
    std::istringstream accepted("<component/>");
    EXPECT_EQ(&(accepted >> doc), &accepted);
    std::istringstream refused("<setting/>");
    EXPECT_EQ(&(refused >> doc), &refused);
    std::istringstream malformed("<component>");
    EXPECT_EQ(&(malformed >> doc), &malformed);
}

TEST_F(Extraction, SetsTheFailBitForAnotherRoot) {
    std::istringstream in("<setting_group/>");
    EXPECT_NO_THROW(in >> doc);
    EXPECT_TRUE(in.fail());
}

TEST_F(Extraction, SetsTheFailBitForContentThatIsRefused) {
    for (const char* xml : {"<component><foo/></component>", "<component><setting_group/></component>"}) {
        std::istringstream in(xml);
        EXPECT_NO_THROW(in >> doc) << xml;
        EXPECT_TRUE(in.fail()) << xml;
    }
}

TEST_F(Extraction, SetsTheFailBitForMalformedText) {
    std::istringstream in("<component>");
    EXPECT_NO_THROW(in >> doc);
    EXPECT_TRUE(in.fail());
}

TEST_F(Extraction, LeavesAFailedStreamFailed) {
    std::ifstream in("no/such/file.xml");
    EXPECT_NO_THROW(in >> doc);
    EXPECT_TRUE(in.fail());
}

// What does not pass is told as any other refusal.
TEST_F(Extraction, LetsALackOfMemoryPass) {
    bool passed = false;
    bool fired = true;
    for (long n = 1; fired; ++n) {
        std::istringstream in(sample);
        document read;
        const failing_allocation memory(n);
        try {
            in >> read;
            fired = memory.fired();
            EXPECT_EQ(in.fail(), fired) << n;
        } catch (const std::bad_alloc&) {
            passed = true;
        }
    }
    EXPECT_TRUE(passed);
}

TEST_F(Extraction, ThrowsWhatTheStreamWasToldToThrow) {
    std::istringstream in("<setting_group/>");
    in.exceptions(std::ios::failbit);
    EXPECT_THROW(in >> doc, std::ios::failure);
}

// What is left of a document that is gone. An element whose content is refused stays behind, with what it owns; all
// others go with the document.

class AfterTheDocument : public testing::Test {
protected:
    AfterTheDocument() { stays_behind(sample); }  // what the libraries make once

    static long stays_behind(const std::string& xml) {
        const long before = live_allocations();
        {
            std::istringstream in(xml);
            document doc;
            in >> doc;
        }
        return live_allocations() - before;
    }
};

TEST_F(AfterTheDocument, NothingStaysBehind) {
    EXPECT_EQ(stays_behind(sample), 0);
}

TEST_F(AfterTheDocument, NothingStaysBehindWhenTheRootIsRefused) {
    EXPECT_EQ(stays_behind("<setting/>"), 0);
}

TEST_F(AfterTheDocument, NothingStaysBehindWhenTheTextIsMalformed) {
    EXPECT_EQ(stays_behind("<component><setting_group>"), 0);
}

TEST_F(AfterTheDocument, NothingThatWasAttachedStaysBehindWhenTheRootsContentIsRefused) {
    EXPECT_EQ(stays_behind(xml_element("component", xml_group("group", xml_setting("setting")) +
                                                        xml_element("child_slot_group", "<component/>") + "<foo/>")),
              0);
}

TEST_F(AfterTheDocument, OnlyTheElementsOnThePathToARefusedNodeStayBehind) {
    const std::string attached = xml_group("group", xml_setting("setting"));
    const std::string refused_group = xml_element("setting_group", xml_element("setting", "<foo/>"));
    const std::string refused_component = xml_element("component", refused_group);
    EXPECT_EQ(stays_behind(xml_element("component", attached + refused_group)), 2);
    EXPECT_EQ(stays_behind(xml_element("component", attached + xml_element("child_slot_group", "<component/>") +
                                                        attached + xml_element("child_slot_group", refused_component))),
              4);
}
