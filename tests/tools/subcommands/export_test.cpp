// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <cerrno>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/built.h"
#include "support/quoted.h"
#include "tools/subcommands/command_test.h"

using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::string exported_server = quoted(SAMPLES_DIR "/two-socket-server.xml");
const std::string truncated = quoted(SAMPLES_DIR "/errors/truncated.xml");
const std::string at_a_time = " --at 2026-11-19T10:00:00Z";

std::vector<json> lines_of(const std::string& out) {
    std::istringstream in(out);
    std::vector<json> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(json::parse(line));
    }
    return lines;
}

// Of every line.
std::vector<std::string> values(const std::string& out, const char* key) {
    std::vector<std::string> found;
    for (const json& line : lines_of(out)) {
        found.push_back(line[key]);
    }
    return found;
}

}  // namespace

class Export : public command_test {
protected:
    command_result export_failing_to_open(int error) const {
        write("a.xml", "<component/>");
        return run_preloaded(built::failing_open, "FAILING_FILE=a.xml FAILING_ERROR=" + std::to_string(error),
                             "zebdb-cds export a.xml");
    }
};

TEST_F(Export, PrintsALineForEachFileInTheirOrder) {
    const command_result result = run("cp " + exported_server + " b.xml; cp b.xml a.xml; zebdb-cds export b.xml a.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(values(result.out, "server"), ElementsAre("b", "a"));
    EXPECT_THAT(values(result.out, "status"), ElementsAre("loaded", "loaded"));
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Export, OfAPackedFileHasTheDigestOfTheFileAsItIs) {
    const command_result result =
        run("gzip -c " + exported_server + " >a.xml.gz; sha256sum a.xml.gz | cut -d ' ' -f 1 >digest; " +
            "zebdb-cds export a.xml.gz");
    EXPECT_EQ(lines_of(result.out).at(0)["source"]["sha256"].get<std::string>() + '\n', read("digest"));
    EXPECT_THAT(values(result.out, "status"), ElementsAre("loaded"));
}

TEST_F(Export, RefusesAFileWhoseTimeHasNoText) {
    const command_result result =
        run_with_disk(1'000'000, "cp " + exported_server +
                                     " disk/a.xml; touch -d @300000000000 disk/a.xml; zebdb-cds export disk/a.xml");
    if (result.status == no_disk) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(values(result.out, "reason"),
                ElementsAre("its time is not between the years 0 and 9999; set another, or give one by --at"));
}

TEST_F(Export, TakesAFileWhoseTimeHasNoTextWhereOneIsGiven) {
    const command_result result = run_with_disk(
        1'000'000,
        "cp " + exported_server +
            " disk/a.xml; touch -d @300000000000 disk/a.xml; zebdb-cds export disk/a.xml --at 2026-11-19T10:00:00Z");
    if (result.status == no_disk) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(values(result.out, "status"), ElementsAre("loaded"));
}

TEST_F(Export, OfAFileThatThereIsNoMemoryToOpenFails) {
    const command_result result = export_failing_to_open(ENOMEM);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.err, "zebdb-cds: out of memory\n");
}

TEST_F(Export, RefusesAFileThatCannotBeOpened) {
    const command_result result = export_failing_to_open(EIO);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(values(result.out, "reason"),
                ElementsAre("cannot read the input: the stream is not open or has failed"));
}

TEST_F(Export, OfAPipeAsksForNoTimeOfIt) {
    const command_result result =
        run_with_disk(1'000'000, "mkfifo disk/a.xml; touch -d @300000000000 disk/a.xml; cat " + exported_server +
                                     " >disk/a.xml & zebdb-cds export disk/a.xml");
    if (result.status == no_disk) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(values(result.out, "status"), ElementsAre("loaded"));
}

TEST_F(Export, TakesAFolderForTheFilesInIt) {
    run("mkdir -p day/below");
    for (const char* name : {"day/b.xml", "day/a.xml", "day/c.txt", "day/below/d.xml"}) {
        write(name, "<component/>");
    }
    const command_result result = run("zebdb-cds export day day/");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(values(result.out, "server"), ElementsAre("a", "b", "a", "b"));
}

TEST_F(Export, SaysThatAFolderHasNoFiles) {
    const command_result result = run("mkdir day; zebdb-cds export day " + exported_server);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "zebdb-cds: cannot export 'day': there is no *.xml in it\n");
    EXPECT_THAT(lines_of(result.out), SizeIs(1));
}

TEST_F(Export, SaysThatAFolderCannotBeRead) {
    const command_result result =
        run_unprivileged("mkdir day && chmod 0 day && zebdb-cds export day; status=$?; chmod 700 day; exit $status");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("zebdb-cds: cannot export 'day': Permission denied\n"));
}

TEST_F(Export, GoesOnBehindARefusedFileAndEndsWithOne) {
    const command_result result = run("zebdb-cds export " + truncated + " nowhere.xml " + exported_server);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(values(result.out, "status"), ElementsAre("refused", "refused", "loaded"));
    EXPECT_THAT(result.err, AllOf(HasSubstr("truncated.xml': line 7, column "),
                                  HasSubstr("zebdb-cds: cannot export 'nowhere.xml': No such file or directory\n")));
}

TEST_F(Export, RefusesAFileForTheReasonThatALoadDoes) {
    const command_result all =
        run("cp " + quoted(SAMPLES_DIR) + "/errors/*.xml . && chmod u+w *.xml && zebdb-cds export .");
    EXPECT_EQ(all.status, 1);
    const std::vector<json> refused = lines_of(all.out);
    EXPECT_GE(refused.size(), 20u);
    for (const json& line : refused) {
        const std::string file = quoted(line["source"]["name"]);
        EXPECT_THAT(run("zebdb-cds load -q " + file).last_error_line(),
                    HasSubstr(": " + line["reason"].get<std::string>() + "; "))
            << file;
    }
}

TEST_F(Export, GivesTheSameBytesForTheSameFiles) {
    const std::string command = "zebdb-cds export " + exported_server + ' ' + truncated;
    EXPECT_EQ(run(command).out, run(command).out);
}

TEST_F(Export, OfStandardInputNeedsTheNameOfTheServer) {
    const command_result result = run("zebdb-cds export - <" + exported_server);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.err, "zebdb-cds: standard input has no name for its server; give one by --server\n");
}

TEST_F(Export, OfStandardInputIsTheSameButForTheName) {
    const std::string file = run("zebdb-cds export --server web-17 " + exported_server).out;
    json of_file = json::parse(file);
    of_file["source"]["name"] = "-";
    EXPECT_EQ(json::parse(run("zebdb-cds export --server web-17 - <" + exported_server).out), of_file);
}

TEST_F(Export, OfAPipeIsOfThePresent) {
    const command_result result = run("date -u +%FT%TZ >before; cat " + exported_server +
                                      " | zebdb-cds export --server web-17 -; date -u +%FT%TZ >after");
    const std::string seen = values(result.out, "observed_at").at(0);
    EXPECT_GE(seen.substr(0, 19), read("before").substr(0, 19));
    EXPECT_LE(seen.substr(0, 19), read("after").substr(0, 19));
}

TEST_F(Export, RefusesAServerNameForSeveralFiles) {
    for (const std::string files : {"a.xml b.xml", "- -", "."}) {
        const command_result result = run("zebdb-cds export --server web-17 " + files);
        EXPECT_EQ(result.status, 2) << files;
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_EQ(result.err,
                  "zebdb-cds: --server names the server of one file, not of several; leave it out, or name one file "
                  "alone\n");
    }
}

TEST_F(Export, RefusesAServerNameThatIsNotUtf8) {
    const command_result result = run("zebdb-cds export --server $(printf 'caf\\351') " + exported_server);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("is not UTF-8"));
}

TEST_F(Export, HasTheTimeThatIsGiven) {
    EXPECT_THAT(values(run("zebdb-cds export " + exported_server + at_a_time).out, "observed_at"),
                ElementsAre("2026-11-19T10:00:00Z"));
}

TEST_F(Export, RefusesWhatIsNoTime) {
    const command_result result = run("zebdb-cds export " + exported_server + " --at yesterday");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: --at 'yesterday' is no time, as 2026-11-19T10:00:00Z is\n");
}

TEST_F(Export, HidesSerialNumbersWhereItIsTold) {
    const std::string serial = "0K2S7A1000000001";
    EXPECT_THAT(run("zebdb-cds export " + exported_server).out, HasSubstr(serial));
    EXPECT_THAT(run("zebdb-cds export --redact " + exported_server).out, testing::Not(HasSubstr(serial)));
}

TEST_F(Export, TellsTheReasonsThatAnExplanationTells) {
    const json explained = json::parse(run("zebdb-cds explain --format json " + exported_server).out);
    const json exported = json::parse(run("zebdb-cds export " + exported_server).out);
    json expected = json::array();
    for (const json& component : explained["components"]) {
        if (component["row"].is_null() && !component["groups"].empty()) {
            expected.push_back({component["path"], component["title"], component["reasons"]});
        }
    }
    json told = json::array();
    for (const json& component : exported["left_out"]) {
        told.push_back({component["path"], component["title"], component["reasons"]});
    }
    EXPECT_EQ(told, expected);
    EXPECT_EQ(exported["components"], explained["summary"]["components"]);
}

TEST_F(Export, MakesNoFile) {
    run("cp " + exported_server + " server.xml && zebdb-cds export server.xml >/dev/null");
    EXPECT_THAT(names(), ElementsAre("server.xml"));
}

TEST_F(Export, EndsWithTwoWhenItsOutputCannotBeWritten) {
    const command_result result = run("zebdb-cds export " + exported_server + " >/dev/full");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("cannot write to standard output"));
}

// A file behind the pipe would never end.
TEST_F(Export, EndsWhenNobodyReadsOn) {
    EXPECT_EQ(run("mkfifo pipe; cp " + exported_server +
                  " a.xml; { timeout 60 zebdb-cds export a.xml a.xml a.xml pipe; echo $? >status; } | true; cat status")
                  .out,
              "0\n");
}

TEST_F(Export, WritesEachLineWhenItIsWhole) {
    EXPECT_EQ(
        run("mkfifo pipe; cp " + exported_server +
            " a.xml; timeout 60 zebdb-cds export a.xml pipe | { read -r first; echo '<component/>' >pipe; cat; } | "
            "grep -c '\"server\":\"pipe\"'")
            .out,
        "1\n");
}

TEST_F(Export, ReadsMorePackedFilesThanAProcessMayHaveOpen) {
    const command_result result =
        run("gzip <" + exported_server + " >a.xml; ulimit -n 30; zebdb-cds export $(yes a.xml | head -n 60) | wc -l");
    EXPECT_EQ(result.out, "60\n");
    EXPECT_THAT(result.err, IsEmpty());
}
