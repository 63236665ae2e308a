// SPDX-License-Identifier: Apache-2.0

#include "sources/grammar_error.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

std::optional<grammar_error> error_in(const std::string& xml) {
    std::istringstream in(xml);
    return find_grammar_error(in);
}

// 0 where there is none.
unsigned line_in(const std::string& xml) {
    const auto error = error_in(xml);
    return error ? error->line.value_or(0) : 0;
}

}  // namespace

TEST(GrammarError, IsNoneInACdsFile) {
    EXPECT_FALSE(
        error_in("<component>\n"
                 "<setting_group><name>a</name><setting><name>b</name><hex_value>1</hex_value></setting>"
                 "</setting_group><child_slot_group><component/></child_slot_group></component>"));
}

TEST(GrammarError, IsNoneInWhatIsNoXml) {
    EXPECT_FALSE(error_in("<component>"));
    EXPECT_FALSE(error_in(""));
}

TEST(GrammarError, IsAnElementThatDoesNotBelongWhereItStands) {
    EXPECT_EQ(line_in("<component>\n<child_slot_group>\n<component/>\n<sensor/>\n</child_slot_group></component>"), 4u);
    EXPECT_EQ(line_in("<component>\n<component/></component>"), 2u);
    EXPECT_EQ(line_in("<component>\n<setting_group><name>a</name>\n<setting_group/></setting_group></component>"), 3u);
}

TEST(GrammarError, IsTheFirstOneInTheOrderOfReading) {
    EXPECT_EQ(line_in("<component>\n<child_slot_group>\n<foo/></child_slot_group>\n<bar/></component>"), 3u);
}

TEST(GrammarError, IsAnElementWithoutAName) {
    EXPECT_EQ(line_in("<component>\n<setting_group>\n<setting><name>a</name></setting></setting_group></component>"),
              2u);
    EXPECT_EQ(line_in("<component><setting_group><name>a</name>\n<setting>\n<hex_value>1</hex_value></setting>"
                      "</setting_group></component>"),
              2u);
}

TEST(GrammarError, IsAnElementWhoseNameBeginsOnALineOfItsOwn) {
    EXPECT_EQ(line_in("<component>\n<setting_group><name>\na</name></setting_group></component>"), 2u);
}

TEST(GrammarError, IsAMissingNameOnlyBehindWhatStandsInTheElement) {
    EXPECT_EQ(line_in("<component>\n<setting_group>\n<setting>\n<foo/></setting></setting_group></component>"), 4u);
}

TEST(GrammarError, IsNoneWhereTheNameComesLast) {
    EXPECT_FALSE(
        error_in("<component><setting_group><setting><hex_value>1</hex_value><name>b</name></setting>"
                 "<name>a</name></setting_group></component>"));
}

TEST(GrammarError, IsACommentAProcessingInstructionOrACdataSection) {
    EXPECT_EQ(line_in("<component>\n<!-- x --></component>"), 2u);
    EXPECT_EQ(line_in("<component>\n<?firmware x?></component>"), 2u);
    EXPECT_EQ(line_in("<component>\n<setting_group><name>a</name>\n<![CDATA[x]]></setting_group></component>"), 3u);
}

TEST(GrammarError, IsACdataSectionOnTheLineOfItsElementWhereItStandsFirst) {
    EXPECT_EQ(line_in("<component>\n<setting_group><![CDATA[x]]></setting_group></component>"), 2u);
}

TEST(GrammarError, IsAboutNoElementOnlyWhereTheNodeHasNoName) {
    EXPECT_TRUE(error_in("<component><setting_group><name>a</name><![CDATA[x]]></setting_group></component>")
                    ->is_about_no_element);
    EXPECT_FALSE(error_in("<component><foo/></component>")->is_about_no_element);
}

TEST(GrammarError, HasNoLineBeyondThoseThatAreCounted) {
    const auto error = error_in("<component>" + std::string(70'000, '\n') + "<foo/></component>");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->line, std::nullopt);
}
