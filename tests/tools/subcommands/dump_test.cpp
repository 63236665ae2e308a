// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "support/cds_text.h"
#include "support/quoted.h"
#include "tools/subcommands/command_test.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

// Groups, settings and slots stand in another order than in a dump.
const std::string small = cds_component(cds_slots(cds_component("cpu_info", {text("Socket", "CPU 1")})) +
                                        cds_group("b", {integer("Two", "2"), hex("One", "0x1")}) + cds_group("a"));

std::string indented(unsigned width) {
    const std::string lines[] = {"0<component>",
                                 "1<setting_group>",
                                 "2<name>a</name>",
                                 "1</setting_group>",
                                 "1<setting_group>",
                                 "2<name>b</name>",
                                 "2<setting>",
                                 "3<name>One</name>",
                                 "3<hex_value>0x1</hex_value>",
                                 "2</setting>",
                                 "2<setting>",
                                 "3<name>Two</name>",
                                 "3<integer_value>2</integer_value>",
                                 "2</setting>",
                                 "1</setting_group>",
                                 "1<child_slot_group>",
                                 "2<component>",
                                 "3<setting_group>",
                                 "4<name>cpu_info</name>",
                                 "4<setting>",
                                 "5<name>Socket</name>",
                                 "5<text_value>CPU 1</text_value>",
                                 "4</setting>",
                                 "3</setting_group>",
                                 "2</component>",
                                 "1</child_slot_group>",
                                 "0</component>"};
    std::string dump = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    for (const std::string& line : lines) {
        dump += std::string(width * static_cast<unsigned>(line[0] - '0'), ' ') + line.substr(1) + '\n';
    }
    return dump;
}

// Its dump is some megabytes long.
std::string large() {
    return cds_file(cds_functions(5'000, 100));
}

}  // namespace

class Dump : public command_test {
protected:
    Dump() { write("small.xml", small); }

    void expect_refused(const std::string& arguments, const std::string& message) const {
        const command_result result = run("zebdb-cds dump " + arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_EQ(result.err, "zebdb-cds: " + message + "\n");
    }
};

TEST_F(Dump, PrintsTheWholeFileInItsNormalOrder) {
    const command_result result = run("zebdb-cds dump small.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, indented(2));
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Dump, IndentsByTheNumberThatIsAskedFor) {
    EXPECT_EQ(run("zebdb-cds dump small.xml --indent 0").out, indented(0));
    EXPECT_EQ(run("zebdb-cds dump small.xml --indent 16").out, indented(16));
}

TEST_F(Dump, ReadsStandardInput) {
    EXPECT_EQ(run("cat small.xml | zebdb-cds dump -").out, indented(2));
    EXPECT_EQ(run("zebdb-cds dump - <small.xml").out, indented(2));
}

TEST_F(Dump, OfADumpIsTheSame) {
    EXPECT_EQ(run("zebdb-cds dump small.xml | zebdb-cds dump -").out, indented(2));
}

TEST_F(Dump, OfASampleIsTheSampleToTheLoader) {
    const std::string sample = quoted(SAMPLES_DIR "/minimal.xml");
    ASSERT_EQ(run("zebdb-cds dump " + sample + " >minimal.xml").status, 0);
    EXPECT_EQ(run("zebdb-cds diff " + sample + " minimal.xml").out, "No difference.\n");
}

TEST_F(Dump, EscapesNothing) {
    write("markup.xml", cds_file(cds_component("g", {text("A &amp; B", "&lt;x&gt;")})));
    const command_result result = run("zebdb-cds dump markup.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("<name>A & B</name>\n"));
    EXPECT_THAT(result.out, HasSubstr("<text_value><x></text_value>\n"));
}

TEST_F(Dump, OfALargeFileIsWhole) {
    write("large.xml", large());
    ASSERT_EQ(run("zebdb-cds dump large.xml >first.xml && zebdb-cds dump first.xml >second.xml").status, 0);
    EXPECT_GT(read("first.xml").size(), 3'000'000u);
    EXPECT_TRUE(read("first.xml") == read("second.xml"));
}

TEST_F(Dump, LeavesNothingBehind) {
    EXPECT_EQ(left_in_tmp("zebdb-cds dump small.xml"), "");
    EXPECT_THAT(names(), ElementsAre("small.xml"));
}

TEST_F(Dump, OfBrokenXmlPrintsNothingButTheReason) {
    write("bad.xml", "<component>\n<setting_group>");
    expect_refused("bad.xml",
                   "cannot read 'bad.xml': line 2, column 16: Premature end of data in tag setting_group line 2");
}

TEST_F(Dump, OfSomethingElseThanACdsFilePrintsNothingButTheReason) {
    write("bad.xml", "<inventory/>");
    expect_refused("bad.xml", "cannot read 'bad.xml': its root element is not 'component', so it is no CDS file");
}

TEST_F(Dump, OfContentOutOfPlacePrintsNothingButTheReason) {
    write("bad.xml", cds_file("<foo/>"));
    expect_refused("bad.xml", "cannot read 'bad.xml': line 3: Unexpected node 'foo' in child_slot_group");
}

TEST_F(Dump, OfAMissingFilePrintsNothingButTheReason) {
    expect_refused("none.xml", "cannot read 'none.xml': No such file or directory");
}

TEST_F(Dump, OfAnEmptyFilePrintsNothingButTheReason) {
    write("empty.xml", "");
    expect_refused("empty.xml", "cannot read 'empty.xml': the file is empty");
}

TEST_F(Dump, OfAFolderPrintsNothingButTheReason) {
    expect_refused(".", "cannot read '.': Is a directory");
    expect_refused("- <.", "cannot read standard input: Is a directory");
}

TEST_F(Dump, OfClosedStandardInputPrintsNothingButTheReason) {
    expect_refused("- <&-", "cannot read standard input: it is closed");
}

TEST_F(Dump, RefusesAnIndentThatIsNoSmallNumber) {
    for (const std::string given : {" 17", "=-1", " two"}) {
        const command_result result = run("zebdb-cds dump small.xml --indent" + given);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.out, IsEmpty());
        // The range is written as the version of CLI11 has it.
        EXPECT_THAT(result.err, MatchesRegex("zebdb-cds: --indent: Value " + given.substr(1) +
                                             " not in range (0 to 16|\\[0 - 16\\]); see 'zebdb-cds dump --help'\n"));
    }
}

TEST_F(Dump, ThatCannotBeWrittenFails) {
    expect_refused("small.xml >/dev/full", "cannot write to standard output: No space left on device");
}

TEST_F(Dump, ThatCannotBeWrittenToItsEndFails) {
    write("large.xml", large());
    const command_result result = run_with_disk(1'000'000, "zebdb-cds dump large.xml >disk/dump.xml");
    if (result.status == no_disk) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: cannot write to standard output: No space left on device\n");
}

TEST_F(Dump, EndsQuietlyWhenItsReaderHasSeenEnough) {
    write("large.xml", large());
    const command_result result = run("{ zebdb-cds dump large.xml; echo $? >status; } | head -n 1");
    EXPECT_EQ(result.out, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(read("status"), "0\n");
}
