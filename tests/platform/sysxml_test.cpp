// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sysxml_workstation.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/captured_stderr.h"
#include "support/scratch_folder.h"

using testing::AllOf;
using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Le;
using testing::Not;
using testing::StartsWith;

namespace {

/// What the document throws, or "read" when it is read.
std::string outcome(std::istream& in, bool recover = false) {
    const sysxml::parser library;
    try {
        sysxml::document document(in, recover);
        return "read";
    } catch (const sysipc::exception& error) {
        return error.what();
    }
}

std::string outcome(const std::string& xml, bool recover = false) {
    std::istringstream in(xml);
    return outcome(in, recover);
}

/// The text in the root element, or what the document throws.
std::string root_text(const std::string& xml, bool recover = false) {
    const sysxml::parser library;
    std::istringstream in(xml);
    try {
        sysxml::document document(in, recover);
        return sysxml::node(document.root().get()->children).content();
    } catch (const sysipc::exception& error) {
        return error.what();
    }
}

std::string nested(int levels) {
    std::string xml;
    for (int i = 0; i < levels; ++i) {
        xml += "<a>";
    }
    for (int i = 0; i < levels; ++i) {
        xml += "</a>";
    }
    return xml;
}

/// `name` with a number behind it and then `rest`, so many times.
std::string numbered(int times, const std::string& name, const std::string& rest) {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += name + std::to_string(i) + rest;
    }
    return text;
}

/// A stream buffer over a text that notes how much is asked of it at a time, and may fail where the text ends.
class noting_buffer : public std::streambuf {
public:
    enum class at_end { none, throws };

    explicit noting_buffer(std::string text, at_end end = at_end::none) : text_(std::move(text)), end_(end) {}

    std::vector<std::streamsize> asked;

protected:
    std::streamsize xsgetn(char* to, std::streamsize size) override {
        asked.push_back(size);
        const std::size_t given = text_.copy(to, static_cast<std::size_t>(size), given_);
        given_ += given;
        if (end_ == at_end::throws && given < static_cast<std::size_t>(size)) {
            throw std::runtime_error("the line is cut");
        }
        return static_cast<std::streamsize>(given);
    }

private:
    std::string text_;
    at_end end_;
    std::size_t given_ = 0;
};

/// The place that the document throws, or -1, -1 when it is read.
std::pair<int, int> place(std::istream& in) {
    const sysxml::parser library;
    try {
        sysxml::document document(in, false);
        return {-1, -1};
    } catch (const sysxml::read_error& error) {
        return {error.line(), error.column()};
    }
}

std::pair<int, int> place(const std::string& xml) {
    std::istringstream in(xml);
    return place(in);
}

TEST(XmlDocument, HasItsRootElement) {
    const sysxml::parser library;
    std::istringstream in("<!-- first --><a><b/></a>");
    sysxml::document document(in, false);
    EXPECT_STREQ(document.root().name(), "a");
    EXPECT_EQ(document.root().get()->type, XML_ELEMENT_NODE);
}

TEST(XmlNode, GivesNameAndContentOfItsRecord) {
    const sysxml::parser library;
    std::istringstream in("<a>text</a>");
    sysxml::document document(in, false);
    const sysxml::node text(document.root().get()->children);
    EXPECT_EQ(text.get(), document.root().get()->children);
    EXPECT_STREQ(text.name(), "text");
    EXPECT_STREQ(text.content(), "text");
}

TEST(XmlNode, GivesNullForWhatItsRecordHasNot) {
    const sysxml::parser library;
    std::istringstream in("<a><![CDATA[text]]></a>");
    sysxml::document document(in, false);
    EXPECT_EQ(document.root().content(), nullptr);
    EXPECT_EQ(sysxml::node(document.root().get()->children).name(), nullptr);
}

TEST(XmlNode, IsOnePointer) {
    EXPECT_EQ(sizeof(sysxml::node), sizeof(xmlNode*));
}

TEST(XmlDocument, NamesThePlaceAndTheReason) {
    EXPECT_EQ(outcome("<a>\n  <b></c>\n</a>"), "line 2, column 10: Opening and ending tag mismatch: b line 2 and c");
}

TEST(XmlDocument, NamesTheFirstProblemOfSeveral) {
    EXPECT_EQ(outcome("<a>\n<b></c>\n<d></e>\n</a>"),
              "line 2, column 8: Opening and ending tag mismatch: b line 2 and c");
}

TEST(XmlDocument, NamesThePlaceWhereTheInputEnds) {
    EXPECT_EQ(outcome("<a>\n<b>"), "line 2, column 4: Premature end of data in tag b line 2");
}

TEST(XmlDocument, TellsTheErrorThatItIsRefusedForAndNoneThatIsAcceptedAlone) {
    EXPECT_EQ(outcome("<a><x:b/></a>"), outcome("<a/>"));
    EXPECT_EQ(outcome("<a>\n<x:b/>\n<c>"), "line 3, column 4: Premature end of data in tag c line 3");
}

TEST(XmlDocument, NamesThePlaceOfAnEntityAndNotThatInItsText) {
    EXPECT_EQ(outcome("<!DOCTYPE a [\n<!ENTITY e '<b>'>\n]>\n<a>\n\n   &e;</a>"),
              "line 6, column 7: Premature end of data in tag b line 1");
}

TEST(XmlDocument, NamesThePlaceOfAParameterEntityAndNotThatInItsText) {
    EXPECT_EQ(outcome("<!DOCTYPE a [\n<!ENTITY % outer \"<!ENTITY e SYSTEM 'x'>\">\n\n   %outer;]><a/>"),
              "line 4, column 11: External entity 'e' is refused");
}

TEST(XmlDocument, TellsNoWarning) {
    EXPECT_EQ(outcome("<a xmlns='relative'/>"), "read");
    EXPECT_THAT(outcome("<a xmlns='relative'>"), Not(HasSubstr("relative")));
}

TEST(XmlReadError, HasTheLineAndTheColumn) {
    EXPECT_EQ(place("<a>\n  <b></c>\n</a>"), std::pair(2, 10));
}

TEST(XmlReadError, HasThePlaceOfAnEntityAndNotThatInItsText) {
    EXPECT_EQ(place("<!DOCTYPE a [\n<!ENTITY e '<b>'>\n]>\n<a>\n\n   &e;</a>"), std::pair(6, 7));
}

TEST(XmlReadError, HasThePlaceOfAnExternalEntity) {
    EXPECT_EQ(place("<!DOCTYPE a [\n<!ENTITY e SYSTEM 'x'>\n]>\n<a/>"), std::pair(2, 22));
}

// Wider than the 16 bits of a node's line.
TEST(XmlReadError, HasLinesBeyond65535) {
    EXPECT_EQ(place("<a>" + std::string(100000, '\n') + "</b>").first, 100001);
}

TEST(XmlReadError, HasNoPlaceWhenTheStreamFails) {
    std::ifstream in(".");
    EXPECT_EQ(place(in), std::pair(0, 0));
}

TEST(XmlReadError, IsAnExceptionOfThePlatformWithThePlaceInItsNumbers) {
    try {
        throw sysxml::read_error("wrong", 3, 4);
    } catch (const sysipc::exception& error) {
        EXPECT_STREQ(error.what(), "wrong");
        EXPECT_EQ(error.first(), 3);
        EXPECT_EQ(error.second(), 4);
    }
}

TEST(XmlDocument, RefusesAnEmptyInput) {
    EXPECT_EQ(outcome(""), "line 1, column 1: Document is empty");
}

TEST(XmlDocument, RefusesInputThatIsNoXml) {
    EXPECT_EQ(outcome("text"), "line 1, column 1: Start tag expected, '<' not found");
}

// libxml2 goes on behind the tag, in no element any more, to see whether the rest is in order.
TEST(XmlDocument, RefusesABrokenTagBehindATextAndBeforeAnother) {
    EXPECT_EQ(outcome("<a>text<b <d>more</d></a>"), "line 1, column 11: error parsing attribute name");
}

TEST(XmlDocument, ReadsNamespacesThatWereNotDeclared) {
    EXPECT_EQ(outcome("<x:a/>"), "read");
}

TEST(XmlDocument, AsksForBlocks) {
    noting_buffer buffer("<a>" + std::string(1000000, 'x') + "</a>");
    std::istream in(&buffer);
    EXPECT_EQ(outcome(in), "read");
    EXPECT_GT(buffer.asked.size(), 1U);
    EXPECT_LT(buffer.asked.size(), 1000U) << "single characters or short pieces";
    EXPECT_THAT(buffer.asked, Each(Le(1 << 16))) << "the whole input at once";
}

TEST(XmlDocument, ReadsItsStreamToTheEndWithoutAFailure) {
    std::istringstream in("<a/>\n");
    EXPECT_EQ(outcome(in), "read");
    EXPECT_TRUE(in.eof());
    EXPECT_FALSE(in.fail());
}

TEST(XmlDocument, BeginsWhereItsStreamStands) {
    std::istringstream in("skipped <a/>");
    in.ignore(8);
    EXPECT_EQ(outcome(in), "read");
}

TEST(XmlDocument, RefusesAFileThatIsMissing) {
    std::ifstream in("no-such-file");
    EXPECT_EQ(outcome(in), "cannot read the input: the stream is not open or has failed");
}

TEST(XmlDocument, RefusesAStreamThatHasFailed) {
    std::istringstream in("<a/>");
    in.setstate(std::ios::failbit);
    EXPECT_EQ(outcome(in), "cannot read the input: the stream is not open or has failed");
}

TEST(XmlDocument, RefusesAFolder) {
    std::ifstream in(".");
    EXPECT_EQ(outcome(in), "cannot read the input: Is a directory");
}

TEST(XmlDocument, RefusesAStreamThatFailsOnTheWay) {
    noting_buffer buffer("<a>" + std::string(10000, 'x'), noting_buffer::at_end::throws);
    std::istream in(&buffer);
    errno = EACCES;  // of something else, before
    EXPECT_EQ(outcome(in), "cannot read the input: the stream is not open or has failed");
    EXPECT_TRUE(in.bad());
}

TEST(XmlDocument, RefusesAStreamThatFailsBehindAWholeDocument) {
    noting_buffer buffer("<a/>", noting_buffer::at_end::throws);
    std::istream in(&buffer);
    EXPECT_THAT(outcome(in), StartsWith("cannot read the input: "));
}

// What a stream buffer throws must not run through libxml2, which is C.
TEST(XmlDocument, LetsNoExceptionOfAStreamThroughTheXmlLibrary) {
    noting_buffer buffer("<a>" + std::string(10000, 'x'), noting_buffer::at_end::throws);
    std::istream in(&buffer);
    in.exceptions(std::ios::badbit);
    EXPECT_THAT(outcome(in), StartsWith("cannot read the input: "));
}

TEST(XmlDocument, ReadsAStreamThatThrowsAtFailures) {
    std::istringstream in("<a/>");
    in.exceptions(std::ios::failbit | std::ios::badbit);
    EXPECT_EQ(outcome(in), "read");
}

TEST(XmlDocument, Reads257Levels) {
    EXPECT_EQ(outcome(nested(257)), "read");
}

TEST(XmlDocument, RefusesMoreThan257Levels) {
    EXPECT_EQ(outcome(nested(258)), "line 1, column 772: Excessive depth in document: 256");
}

TEST(XmlDocument, NamesItsDepthAlsoWhereAnElementHasAnUndeclaredNamespace) {
    EXPECT_THAT(outcome(nested(257).substr(0, 257 * 3) + "<n:b/>"), HasSubstr("Excessive depth"));
}

TEST(XmlDocument, RefusesATextOfMoreThanTenMillionBytes) {
    EXPECT_THAT(outcome("<a>" + std::string(10000001, 'x') + "</a>"), HasSubstr("huge text node"));
}

TEST(XmlDocument, FillsInItsOwnEntities) {
    EXPECT_EQ(root_text("<!DOCTYPE a [<!ENTITY e 'filled in'>]><a>&e;</a>"), "filled in");
}

TEST(XmlDocument, RefusesAnEntityThatGrowsBeyondMeasure) {
    std::string declarations = "<!ENTITY e0 'ten letters'>";
    for (int i = 1; i < 10; ++i) {
        declarations += "<!ENTITY e" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j) {
            declarations += "&e" + std::to_string(i - 1) + ';';
        }
        declarations += "'>";
    }
    EXPECT_THAT(outcome("<!DOCTYPE a [" + declarations + "]><a>&e9;</a>"),
                HasSubstr("Detected an entity reference loop"));
}

TEST(XmlDocument, RefusesAnEntityThatHoldsItself) {
    EXPECT_THAT(outcome("<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a>&e;</a>"),
                HasSubstr("Detected an entity reference loop"));
}

TEST(XmlDocument, RefusesAnUnknownEntity) {
    EXPECT_EQ(outcome("<a>&e;</a>"), "line 1, column 7: Entity 'e' not defined");
}

/// A file whose text must not get into any document; it notes who opens it.
class watched_file {
public:
    watched_file() : path_(folder_.file("watched")), watch_(inotify_init1(IN_NONBLOCK)) {
        std::ofstream(path_) << "<!ENTITY inner 'secret'>";
        EXPECT_NE(inotify_add_watch(watch_, path_.c_str(), IN_OPEN | IN_ACCESS), -1);
    }
    ~watched_file() { close(watch_); }
    watched_file(const watched_file&) = delete;
    watched_file& operator=(const watched_file&) = delete;

    const std::string& path() const { return path_; }

    bool was_opened() const {
        char event[sizeof(inotify_event) + 256];
        return read(watch_, event, sizeof event) > 0;
    }

private:
    scratch_folder folder_;
    std::string path_;
    int watch_;
};

TEST(WatchedFile, NotesThatItIsOpened) {
    const watched_file file;
    EXPECT_FALSE(file.was_opened());
    std::ifstream in(file.path());
    EXPECT_TRUE(file.was_opened());
}

TEST(XmlDocument, RefusesAnExternalEntity) {
    const watched_file file;
    EXPECT_EQ(outcome("<!DOCTYPE a [\n<!ENTITY e SYSTEM '" + file.path() + "'>\n]>\n<a>&e;</a>"),
              "line 2, column " + std::to_string(file.path().size() + 21) + ": External entity 'e' is refused");
    EXPECT_FALSE(file.was_opened());
}

TEST(XmlDocument, RefusesAnExternalEntityThatIsNotUsed) {
    const watched_file file;
    EXPECT_THAT(outcome("<!DOCTYPE a [<!ENTITY e SYSTEM '" + file.path() + "'>]><a/>"),
                HasSubstr("External entity 'e' is refused"));
    EXPECT_FALSE(file.was_opened());
}

TEST(XmlDocument, RefusesAnExternalParameterEntity) {
    const watched_file file;
    EXPECT_THAT(outcome("<!DOCTYPE a [<!ENTITY % e SYSTEM '" + file.path() + "'> %e;]><a>&inner;</a>"),
                HasSubstr("External entity 'e' is refused"));
    EXPECT_FALSE(file.was_opened());
}

TEST(XmlDocument, RefusesAnExternalEntityThatAnotherEntityDeclares) {
    const watched_file file;
    EXPECT_THAT(
        outcome("<!DOCTYPE a [<!ENTITY % outer \"<!ENTITY e SYSTEM '" + file.path() + "'>\"> %outer;]><a>&e;</a>"),
        HasSubstr("External entity 'e' is refused"));
    EXPECT_FALSE(file.was_opened());
}

TEST(XmlDocument, RefusesAnExternalEntityWhenItRecovers) {
    const watched_file file;
    EXPECT_THAT(outcome("<!DOCTYPE a [<!ENTITY e SYSTEM '" + file.path() + "'>]><a>&e;</a>", true),
                HasSubstr("External entity 'e' is refused"));
    EXPECT_FALSE(file.was_opened());
}

TEST(XmlDocument, DoesNotReadAnExternalSubset) {
    const watched_file file;
    EXPECT_EQ(outcome("<!DOCTYPE a SYSTEM '" + file.path() + "'><a/>"), "read");
    EXPECT_FALSE(file.was_opened());
}

TEST(XmlDocument, DoesNotFollowAnInclusion) {
    const watched_file file;
    EXPECT_EQ(outcome("<a xmlns:xi='http://www.w3.org/2001/XInclude'><xi:include href='" + file.path() + "'/></a>"),
              "read");
    EXPECT_FALSE(file.was_opened());
}

/// A server on this machine that notes who connects.
class watched_server {
public:
    watched_server() : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* any = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(bind(listener_, any, size), 0);
        EXPECT_EQ(listen(listener_, 1), 0);
        EXPECT_EQ(getsockname(listener_, any, &size), 0);
        url_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/x";
    }
    ~watched_server() { close(listener_); }
    watched_server(const watched_server&) = delete;
    watched_server& operator=(const watched_server&) = delete;

    const std::string& url() const { return url_; }

    bool was_connected_to() const {
        pollfd connection = {listener_, POLLIN, 0};
        return poll(&connection, 1, 0) > 0;
    }

private:
    int listener_;
    std::string url_;
};

TEST(XmlDocument, DoesNotReadAnExternalSubsetFromTheNetwork) {
    const watched_server server;
    EXPECT_EQ(outcome("<!DOCTYPE a SYSTEM '" + server.url() + "'><a/>"), "read");
    EXPECT_FALSE(server.was_connected_to());
}

TEST(XmlDocument, DoesNotReadAnEntityFromTheNetwork) {
    const watched_server server;
    EXPECT_THAT(outcome("<!DOCTYPE a [<!ENTITY e SYSTEM '" + server.url() + "'>]><a>&e;</a>"),
                HasSubstr("External entity 'e' is refused"));
    EXPECT_FALSE(server.was_connected_to());
}

TEST(XmlDocument, ReadsUtf8BehindAByteOrderMark) {
    EXPECT_EQ(root_text("\xEF\xBB\xBF<a>\xC3\xA9</a>"), "\xC3\xA9");
}

TEST(XmlDocument, TurnsLatin1IntoUtf8) {
    EXPECT_EQ(root_text("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>"), "\xC3\xA9");
}

TEST(XmlDocument, TurnsUtf16IntoUtf8) {
    const std::string little = {'\xFF', '\xFE', '<', 0, 'a', 0, '>', 0, '\xE9', 0, '<', 0, '/', 0, 'a', 0, '>', 0};
    EXPECT_EQ(root_text(little), "\xC3\xA9");
    std::string big = little;
    for (std::size_t i = 0; i < big.size(); i += 2) {
        std::swap(big[i], big[i + 1]);
    }
    EXPECT_EQ(root_text(big), "\xC3\xA9");
}

TEST(XmlDocument, RefusesAnUnknownEncoding) {
    EXPECT_EQ(outcome("<?xml version='1.0' encoding='klingon'?><a/>"),
              "line 1, column 39: Unsupported encoding klingon");
}

TEST(XmlDocument, RefusesBytesThatAreNoText) {
    EXPECT_EQ(outcome("<a>\xFF</a>"),
              "line 1, column 4: Input is not proper UTF-8, indicate encoding !\nBytes: 0xFF 0x3C 0x2F 0x61");
}

// The conversion of such bytes fails outside the parser, which stands at the end of the declaration then.
const char* const broken_japanese = "<?xml version='1.0' encoding='EUC-JP'?>\n<a>\xFF</a>";

TEST(XmlDocument, RefusesBytesThatAreNoTextOfTheDeclaredEncoding) {
    EXPECT_EQ(outcome(broken_japanese),
              "line 1, column 38: input conversion failed due to input error, bytes 0xFF 0x3C 0x2F 0x61");
}

TEST(XmlDocument, TakesAThousandAttributes) {
    EXPECT_EQ(outcome("<a" + numbered(1000, " b", "=''") + "/>"), "read");
}

TEST(XmlDocument, TakesElementsWithAThousandAttributesOneAfterTheOther) {
    const std::string element = "<a" + numbered(1000, " b", "=''") + "/>";
    EXPECT_EQ(outcome("<r>" + element + element + element + "</r>"), "read");
}

TEST(XmlDocument, RefusesMoreAttributesOfAnElement) {
    EXPECT_THAT(
        outcome("<a" + numbered(1001, " b", "=''") + "/>"),
        AllOf(StartsWith("line 1, column "), EndsWith(": an element has more than 1000 attributes or namespaces")));
}

TEST(XmlDocument, RefusesMoreAttributesOfAnElementWhenItRecovers) {
    EXPECT_THAT(outcome("<r>text<a" + numbered(1001, " b", "=''") + "/></r>", true),
                HasSubstr("an element has more than 1000 attributes"));
}

TEST(XmlDocument, RefusesMoreNamespacesThatAnElementCanName) {
    std::string xml;
    for (int depth = 0; depth < 11; ++depth) {
        xml += "<a" + numbered(100, " xmlns:b" + std::to_string(depth) + '_', "='n'") + '>';
    }
    EXPECT_THAT(outcome(xml), HasSubstr("an element has more than 1000 attributes or namespaces"));
}

TEST(XmlDocument, TakesAThousandNamespacesThatAnElementCanName) {
    EXPECT_EQ(outcome("<a" + numbered(1000, " xmlns:b", "='n'") + "/>"), "read");
}

TEST(XmlDocument, ReadsAttributesOfADeclaredNamespace) {
    EXPECT_EQ(outcome("<a xmlns:n='urn:n' n:b='c'/>"), "read");
}

TEST(XmlDocument, RefusesMoreThanTwentyDeclaredAttributes) {
    const auto document = [](int attributes) {
        return "<!DOCTYPE a [<!ATTLIST a" + numbered(attributes, " b", " CDATA 'c'") + ">]><a/>";
    };
    EXPECT_EQ(outcome(document(20)), "read");
    EXPECT_THAT(outcome(document(21)), HasSubstr("more than 20 attributes are declared"));
}

TEST(XmlDocument, RefusesMoreAttributesOfAnElementInAnEntity) {
    const auto document = [](int attributes) {
        return "<!DOCTYPE a [<!ENTITY e \"<b" + numbered(attributes, " c", "='='") + "/>\">]><a>&e;</a>";
    };
    EXPECT_EQ(outcome(document(500)), "read");
    EXPECT_THAT(outcome(document(1001)), HasSubstr("an element has more than 1000 attributes"));
}

TEST(XmlDocument, RefusesMoreAttributesOfAnElementInAnEntityThatIsNeverUsed) {
    const auto document = [](int attributes) {
        return "<!DOCTYPE a [<!ENTITY e \"<b" + numbered(attributes, " c", "=''") + "/>\">]><a/>";
    };
    EXPECT_EQ(outcome(document(1000)), "read");
    EXPECT_THAT(outcome(document(1001)), HasSubstr("an element has more than 1000 attributes"));
}

TEST(XmlDocument, TakesAnEntityOfElementsThatHaveManyAttributesTogether) {
    const std::string element = "<b" + numbered(600, " c", "=''") + "/>";
    EXPECT_EQ(outcome("<!DOCTYPE a [<!ENTITY e \"" + element + element + "\">]><a/>"), "read");
}

TEST(XmlDocument, TakesAnEntityOfManyEqualsSigns) {
    EXPECT_EQ(outcome("<!DOCTYPE a [<!ENTITY e \"" + std::string(2000, '=') + "\">]><a>&e;</a>"), "read");
}

TEST(XmlDocument, IsNotReadFurtherThanWhatItIsRefusedFor) {
    std::istringstream in("<r><a" + numbered(1001, " b", "=''") + "/>" + numbered(100000, "<c>", "</c>") + "</r>");
    EXPECT_THAT(outcome(in), HasSubstr("an element has more than 1000 attributes"));
    EXPECT_LT(in.tellg(), 100000);
}

// With the time that it takes, of a processor, for libxml2 compares each attribute with all others.
TEST(XmlDocument, RefusesElementsOfManyAttributesAtOnce) {
    const std::string element = "<a" + numbered(200000, " b", "=''");
    const std::clock_t start = std::clock();
    EXPECT_THAT(outcome(element), HasSubstr("an element has more than 1000 attributes"));
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC);
}

TEST(XmlDocument, KeepsWhatCouldBeReadWhenItRecovers) {
    EXPECT_EQ(root_text("<a>text<b></a>", true), "text");
}

TEST(XmlDocument, RefusesWhatHasNoRootEvenWhenItRecovers) {
    EXPECT_THAT(outcome("", true), HasSubstr("Document is empty"));
    EXPECT_THAT(outcome("<!-- nothing else -->", true), HasSubstr("Start tag expected"));
}

TEST(XmlDocument, RefusesAFailedStreamEvenWhenItRecovers) {
    noting_buffer buffer("<a>", noting_buffer::at_end::throws);
    std::istream in(&buffer);
    EXPECT_THAT(outcome(in, true), StartsWith("cannot read the input: "));
}

/// An error handler of the process, as another user of libxml2 sets one, as long as this lives.
class foreign_handler {
public:
    foreign_handler() { xmlSetStructuredErrorFunc(this, count); }
    ~foreign_handler() { xmlSetStructuredErrorFunc(nullptr, nullptr); }
    foreign_handler(const foreign_handler&) = delete;
    foreign_handler& operator=(const foreign_handler&) = delete;

    bool is_set() const { return xmlStructuredError == count && xmlStructuredErrorContext == this; }
    int calls = 0;

private:
    static void count(void* context, xmlErrorPtr) { ++static_cast<foreign_handler*>(context)->calls; }
};

TEST(XmlDocument, RestoresTheErrorHandlerOfTheThread) {
    const foreign_handler handler;
    EXPECT_EQ(outcome("<a/>"), "read");
    EXPECT_TRUE(handler.is_set());
}

TEST(XmlDocument, RestoresTheErrorHandlerOfTheThreadAfterAFailure) {
    const foreign_handler handler;
    EXPECT_NE(outcome("<a>"), "read");
    EXPECT_TRUE(handler.is_set());
}

TEST(XmlDocument, KeepsItsProblemsFromTheErrorHandlerOfTheThread) {
    const foreign_handler handler;
    EXPECT_NE(outcome("<a>"), "read");
    EXPECT_NE(outcome(broken_japanese), "read");
    EXPECT_EQ(handler.calls, 0);
}

TEST(XmlDocument, PrintsNothing) {
    const captured_stderr standard_error;
    outcome("<a>");
    outcome("<x:a/>");
    outcome("");
    outcome(broken_japanese);
    outcome("<?xml version='1.0' encoding='klingon'?><a/>");
    outcome("<!DOCTYPE a [<!ENTITY e SYSTEM 'x'>]><a>&e;</a>");
    outcome("<!DOCTYPE a SYSTEM 'x'><a>&e;</a>");
    outcome("<a><b></a>", true);
    EXPECT_EQ(standard_error.text(), "");
}

}  // namespace
