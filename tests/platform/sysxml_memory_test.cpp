// SPDX-License-Identifier: Apache-2.0

// A document is read whole, or refused for want of memory, whether that is ours or libxml2's.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>
#include <sysipc.h>
#include <sysxml_workstation.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <ostream>
#include <sstream>
#include <string>

#include "support/allocations.h"
#include "support/captured_stderr.h"

using testing::MatchesRegex;
using testing::StartsWith;

namespace {

/// While it lives, the n-th piece of memory that libxml2 asks for from now on, counted from 1, is not there.
class failing_xml_allocation {
public:
    explicit failing_xml_allocation(long n) : failing_xml_allocation(n, false) {}
    ~failing_xml_allocation() { xmlMemSetup(usual_free_, usual_malloc_, usual_realloc_, usual_strdup_); }
    failing_xml_allocation(const failing_xml_allocation&) = delete;
    failing_xml_allocation& operator=(const failing_xml_allocation&) = delete;

    static bool fired() { return until_failure_ <= 0; }

    /// How many pieces libxml2 has asked for since then and not given back.
    static long live() { return live_; }

protected:
    failing_xml_allocation(long n, bool also_after) {
        xmlMemGet(&usual_free_, &usual_malloc_, &usual_realloc_, &usual_strdup_);
        until_failure_ = n;
        also_after_ = also_after;
        live_ = 0;
        xmlMemSetup(counted_free, failing_xml_malloc, failing_xml_realloc, failing_xml_strdup);
    }

private:
    static bool fails() {
        --until_failure_;
        return until_failure_ == 0 || (until_failure_ < 0 && also_after_);
    }
    template <class Pointer>
    static Pointer counted(Pointer memory) {
        live_ += memory == nullptr ? 0 : 1;
        return memory;
    }
    static void counted_free(void* memory) {
        live_ -= memory == nullptr ? 0 : 1;
        std::free(memory);
    }
    // tests/support/known_leaks.txt knows them by their names.
    static void* failing_xml_malloc(std::size_t size) { return fails() ? nullptr : counted(std::malloc(size)); }
    static void* failing_xml_realloc(void* memory, std::size_t size) {
        void* grown = fails() ? nullptr : std::realloc(memory, size);
        return memory == nullptr ? counted(grown) : grown;
    }
    static char* failing_xml_strdup(const char* text) { return fails() ? nullptr : counted(strdup(text)); }

    static inline long until_failure_ = 0;
    static inline bool also_after_ = false;
    static inline long live_ = 0;
    xmlFreeFunc usual_free_ = nullptr;
    xmlMallocFunc usual_malloc_ = nullptr;
    xmlReallocFunc usual_realloc_ = nullptr;
    xmlStrdupFunc usual_strdup_ = nullptr;
};

/// All that follow are not there either.
class failing_xml_allocations : public failing_xml_allocation {
public:
    explicit failing_xml_allocations(long n) : failing_xml_allocation(n, true) {}
};

std::string text_of(sysxml::document& document) {
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpMemory(document.root().get()->doc, &text, &size);
    const std::string copy(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
    xmlFree(text);
    return copy;
}

/// What came of a document: its text, or nothing when it was refused.
struct reading {
    std::string text;
    bool fired;      // whether an allocation failed
    bool is_blamed;  // whether it was refused for something else
};

/// Whether the document is refused for something else than a lack of memory.
bool is_blamed(const std::exception_ptr& thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const sysxml::memory_error& error) {
        EXPECT_THAT(error.what(), MatchesRegex(error.line() == 0 ? "out of memory|Memory allocation failed.*"
                                                                 : "line [1-9][0-9]*, column [1-9][0-9]*: [^ ].*"));
        EXPECT_EQ(error.line() == 0, error.column() == 0);
        return false;
    } catch (const sysipc::exception& error) {
        EXPECT_THAT(error.what(), StartsWith("line "));
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

template <class Failing>
reading read_failing(long n, const std::string& xml) {
    const sysxml::parser library;
    std::istringstream in(xml);
    std::unique_ptr<sysxml::document> document;
    std::exception_ptr thrown;
    bool fired = false;
    {
        const Failing memory(n);
        try {
            document = std::make_unique<sysxml::document>(in, false);
        } catch (...) {
            thrown = std::current_exception();
        }
        fired = memory.fired();
    }
    return {document == nullptr ? "" : text_of(*document), fired, thrown != nullptr && is_blamed(thrown)};
}

template <class Failing>
void fail_each(const std::string& xml) {
    const std::string whole = read_failing<Failing>(1000000, xml).text;
    // libxml2 2.9 may lose the declaration of an entity and say nothing; then the document seems to lack it.
    const bool may_be_blamed = whole.empty() || xml.find("<!ENTITY") != std::string::npos;
    reading came = {"", true, false};
    long n = 0;
    while (came.fired) {
        came = read_failing<Failing>(++n, xml);
        EXPECT_TRUE(came.text == whole || (came.fired && came.text.empty())) << "allocation " << n << ": " << came.text;
        EXPECT_TRUE(!came.is_blamed || may_be_blamed) << "allocation " << n;
    }
    EXPECT_GT(n, 1) << "nothing was allocated";
}

std::string repeated(int times, const std::string& before, const std::string& after) {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += before + std::to_string(i) + after;
    }
    return text;
}

std::string deep_elements(int depth) {
    return depth == 0 ? "b" : "<a>" + deep_elements(depth - 1) + "</a>";
}

struct named_document {
    const char* name;
    std::string xml;
};

void PrintTo(const named_document& document, std::ostream* out) {
    *out << document.name;
}

// What an element may have here: version 2.9 of libxml2 uses what it has freed when it cannot grow its attributes.
constexpr int most_attributes = 11;

// Each has something else said about it.
const named_document documents[] = {
    {"OfManyParts",
     "<?xml version='1.0' encoding='ISO-8859-1'?><!DOCTYPE a [<!ENTITY e '<b>in it</b>'><!ATTLIST a c CDATA 'd'>]>"
     "<a xmlns='relative' xmlns:n='urn:n'><n:b c='d' n:h='i'>text &amp; more</n:b>&e;<!-- f --><![CDATA[g]]></a>"},
    {"OfLongTexts", "<a>" + std::string(5000, 'b') + "<c>" + std::string(50000, 'd') + "</c></a>"},
    {"WithATextBeforeAComment", "<a>short<!-- b --></a>"},
    {"OfDeepElements", deep_elements(30)},
    {"WithAnUndeclaredNamespace", "<prefix:element>text</prefix:element>"},
    {"WithManyElementsOfAnUndeclaredNamespace", "<a>" + repeated(40, "<prefix:b", "/>") + "</a>"},
    {"WithAttributesOfAnUndeclaredNamespace", "<a" + repeated(most_attributes, " prefix:b", "='c'") + "/>"},
    {"ThatEndsEarly", "<element><another>text</element>"},
    {"WithOneProblem", "<element>"},
    {"WithAnExternalEntity", "<!DOCTYPE a [<!ENTITY e SYSTEM 'file'>]><a/>"},
    {"WithManyDeclaredAttributes", "<!DOCTYPE a [<!ATTLIST a" + repeated(21, " b", " CDATA #IMPLIED") + ">]><a/>"},
};

class XmlWithoutMemory : public testing::TestWithParam<named_document> {
    const captured_stderr standard_error_;  // libxml2 tells there of a parser that it cannot make
};

INSTANTIATE_TEST_SUITE_P(Document, XmlWithoutMemory, testing::ValuesIn(documents),
                         [](const auto& document) { return std::string(document.param.name); });

TEST_P(XmlWithoutMemory, IsWholeOrRefusedWhenOneAllocationFails) {
    fail_each<failing_allocation>(GetParam().xml);
}

TEST_P(XmlWithoutMemory, IsWholeOrRefusedWhenOneAllocationOfTheXmlLibraryFails) {
    fail_each<failing_xml_allocation>(GetParam().xml);
}

TEST_P(XmlWithoutMemory, IsWholeOrRefusedWhenAllFurtherAllocationsOfTheXmlLibraryFail) {
    fail_each<failing_xml_allocations>(GetParam().xml);
}

// Of the shortest document libxml2 2.9 itself loses nothing.
TEST(XmlWithoutMemory, TakesNoneWithItWhenItIsRefused) {
    const captured_stderr standard_error;
    const sysxml::parser library;
    std::istringstream in("<a/>");
    bool fired = true;
    for (long n = 1; fired; ++n) {
        in.seekg(0);
        const failing_xml_allocation memory(n);
        try {
            sysxml::document(in, false);
        } catch (const std::exception&) {
        }
        xmlResetLastError();
        fired = memory.fired();
        EXPECT_EQ(memory.live(), 0) << "allocation " << n;
    }
}

TEST(XmlWithoutMemory, IsNotReadFurtherThanAnElementThatCannotBeMade) {
    const std::string xml = "<a>" + repeated(100000, "<b>", "</b>") + "</a>";
    const sysxml::parser library;
    for (long n = 1; n < 10; ++n) {
        std::istringstream in(xml);
        const failing_allocation memory(n);
        try {
            const sysxml::document document(in, false);
            ADD_FAILURE() << "allocation " << n;
        } catch (const std::exception&) {
            EXPECT_LT(in.tellg(), 1 << 16 << n) << "allocation " << n;
        }
    }
}

// What is not tried with libxml2's own memory, since they are more than most_attributes.
const named_document documents_of_many_attributes[] = {
    {"InATag", "<a" + repeated(1001, " b", "=''") + "/>"},
    {"InSeveralBlocks", "<a" + repeated(9000, " b", "=''") + "/>"},
    {"InAnEntity", "<!DOCTYPE a [<!ENTITY e \"<b" + repeated(1001, " c", "=''") + "/>\">]><a>&e;</a>"},
};

class ManyAttributesWithoutOurMemory : public XmlWithoutMemory {};

INSTANTIATE_TEST_SUITE_P(Document, ManyAttributesWithoutOurMemory, testing::ValuesIn(documents_of_many_attributes),
                         [](const auto& document) { return std::string(document.param.name); });

TEST_P(ManyAttributesWithoutOurMemory, AreRefused) {
    fail_each<failing_allocation>(GetParam().xml);
}

}  // namespace
