// SPDX-License-Identifier: Apache-2.0

// A document holds the records that libxml2 would make by itself, but for white space between elements.

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <sysxml.h>

#include <istream>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>

using namespace std::string_literals;

namespace {

std::string text_of(const xmlChar* text) {
    return text == nullptr ? "" : reinterpret_cast<const char*>(text);
}

bool is_blank(const std::string& text) {
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

// Of no meaning for a reader that takes the text with which an element begins, if that does not begin on a line of its
// own. Nothing of it is known but by a tag.
bool is_between_elements(const xmlNode& node) {
    const bool is_after_tag = node.prev == nullptr || node.prev->type == XML_ELEMENT_NODE;
    const bool is_before_tag = node.next == nullptr || node.next->type == XML_ELEMENT_NODE;
    const std::string text = text_of(node.content);
    return node.type == XML_TEXT_NODE && is_after_tag && is_before_tag && is_blank(text) &&
           (node.prev != nullptr || text[0] == '\n');
}

/// The URI and the prefix of what is in a namespace, and nothing for what is in none.
std::string namespace_of(const xmlNs* scope) {
    return scope == nullptr ? "" : " in " + text_of(scope->href) + " as " + text_of(scope->prefix);
}

std::string attributes_of(const xmlNode& element) {
    std::string text;
    for (const xmlAttr* attribute = element.properties; attribute != nullptr; attribute = attribute->next) {
        text +=
            ' ' + text_of(attribute->name) + '=' + text_of(attribute->children->content) + namespace_of(attribute->ns);
    }
    return text;
}

/// The records below `node`, one a line, each with its number of the line; what is between elements only on demand.
void describe(const xmlNode* node, bool with_blanks, std::ostream& out) {
    for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
        EXPECT_EQ(child->parent, node);
        EXPECT_EQ(child->doc, node->doc);
        EXPECT_EQ(child->next == nullptr ? node->last : child->next->prev, child);
        if (!with_blanks && is_between_elements(*child)) {
            continue;
        }
        out << child->line << ' ' << child->type << ' ' << text_of(child->name) << " [" << text_of(child->content)
            << ']';
        if (child->type == XML_ELEMENT_NODE) {
            out << namespace_of(child->ns) << attributes_of(*child);
        }
        out << '\n';
        if (child->type == XML_ELEMENT_NODE) {
            describe(child, with_blanks, out);
        }
    }
}

std::string records_of_ours(const std::string& xml, bool with_blanks, bool recover = false) {
    const sysxml::parser library;
    std::istringstream in(xml);
    sysxml::document document(in, recover);
    std::ostringstream text;
    describe(document.root().get(), with_blanks, text);
    return text.str();
}

int read_block(void* in, char* buffer, int size) {
    return static_cast<int>(static_cast<std::istream*>(in)->read(buffer, size).gcount());
}

std::string records_of_libxml2(const std::string& xml, bool recover = false) {
    std::istringstream in(xml);
    const std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> doc(
        xmlReadIO(read_block, nullptr, &in, nullptr, nullptr,
                  XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_NOERROR | (recover ? XML_PARSE_RECOVER : 0)),
        xmlFreeDoc);
    std::ostringstream text;
    describe(xmlDocGetRootElement(doc.get()), false, text);
    return text.str();
}

std::string times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

struct xml_sample {
    const char* name;
    std::string xml;
};

void PrintTo(const xml_sample& document, std::ostream* out) {
    *out << document.name;
}

const std::string entities =
    "<!DOCTYPE a [<!ENTITY t 'of an entity'><!ENTITY s ' '><!ENTITY n '&#10;'><!ENTITY e '<b> <c/>\n</b>'>]>";

const xml_sample xml_samples[] = {
    {"Indented", "<a>\n\t<b>\n\t\t<c>text</c>\n\t</b>\n</a>"},
    {"InOneLine", "<a><b><c>text</c></b><b/></a>"},
    {"WithBlanksForText", "<a><b> </b><b>\t\n</b><b> <c/> </b></a>"},
    {"WithTextOnALineOfItsOwn", "<a>\n<b>\ntext\n</b>\n<b>\n</b>\n</a>"},
    {"WithLinesThatEndInTwoCharacters", "<a>\r\n <b>\r\n</b>\r\n</a>"},
    {"WithTextBetweenElements", "<a> x <b/> y <b/>\nz\n</a>"},
    {"WithReferencesToCharacters", "<a>&#10;<b>&#32;</b>&#13;<b>x&amp;y&#x41; &lt;</b>&amp;</a>"},
    {"WithComments", "<a>\n<!-- one -->\n<b> <!-- two --> </b><b>\n<!-- three --></b>x<!-- four --></a>"},
    {"WithInstructions", "<a>\n<?one?>\n<b> <?two x?> </b></a>"},
    {"WithSections", "<a>\n<![CDATA[one]]>\n<b> <![CDATA[ ]]> </b><b>x<![CDATA[y]]>z</b></a>"},
    {"WithEntitiesOfText", entities + "<a>\n&t;\n<b>&t;</b><b> &t; </b><b>x&t;y&t;</b><b>&s;</b><b>&n;</b></a>"},
    {"WithEntitiesOfElements", entities + "<a>\n&e;\n<b>&e;</b><b> &e; </b><b>x&e;y&e;</b></a>"},
    {"WithAttributes", "<a b='1'>\n<c d='2'> <e/>\n</c>\n<c>\n<e f='3'>x</e></c></a>"},
    {"WithDeclaredAttributes", "<!DOCTYPE a [<!ATTLIST b c CDATA 'd'>]><a>\n<b>\n<c>x</c></b> <c/></a>"},
    {"WithNamespaces", "<a xmlns='urn:u' xmlns:n='urn:v'>\n<n:b>x</n:b>\n<b n:d='1'>\n<c xmlns=''/></b><c>y</c></a>"},
    {"WithANamespaceOfSomeElements", "<a><b xmlns:n='urn:v'><n:c><d/></n:c></b></a>"},
    {"WithAnUndeclaredNamespace", "<a>\n<n:b>x</n:b> <c n:d='1'/></a>"},
    {"OfAnotherEncoding", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\n<b>\xE9t\xE9</b></a>"},
    {"OfSeveralBlocks", "<a>\n" + times(3000, "  <b>some text</b>\n\t<c>&amp;</c>\n") + "</a>"},
    {"WithALongText", "<a><b>" + times(9000, "0123456789\n") + "</b>\n<b> " + times(30000, "&amp;x ") + "</b></a>"},
    {"WithLongWhiteSpace", "<a><b>" + times(50000, " \n") + "</b>x" + times(50000, "\n") + "</a>"},
    {"OfManyLines", "<a>" + times(70000, "\n") + "x<b/></a>"},
};

class XmlRecords : public testing::TestWithParam<xml_sample> {};

INSTANTIATE_TEST_SUITE_P(Document, XmlRecords, testing::ValuesIn(xml_samples),
                         [](const auto& document) { return std::string(document.param.name); });

TEST_P(XmlRecords, AreThoseOfLibxml2) {
    EXPECT_EQ(records_of_ours(GetParam().xml, false), records_of_libxml2(GetParam().xml));
}

TEST(XmlRecords, AreThoseOfLibxml2WhenItRecovers) {
    for (const std::string& xml :
         {"<a>\n<b> <c>text\n"s, "<a>\n<b>x</c> </b> y"s, "<a>x&e;y<b/> z"s, times(300, "<a>")}) {
        EXPECT_EQ(records_of_ours(xml, false, true), records_of_libxml2(xml, true)) << xml;
    }
}

TEST(XmlRecords, LackWhiteSpaceBetweenElements) {
    EXPECT_EQ(records_of_ours("<a>\n\t<b>x</b>\n\t<b/>\n</a>", true), "2 1 b []\n2 3 text [x]\n3 1 b []\n");
}

TEST(XmlRecords, HaveWhiteSpaceThatAnElementBeginsWith) {
    EXPECT_EQ(records_of_ours("<a> <b/></a>", true), "1 3 text [ ]\n1 1 b []\n");
}

TEST(XmlRecords, LackWhiteSpaceBehindAnElementOnItsLine) {
    EXPECT_EQ(records_of_ours("<a><b/> <b/> </a>", true), "1 1 b []\n1 1 b []\n");
}

}  // namespace
