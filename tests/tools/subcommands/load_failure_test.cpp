// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <algorithm>

#include "support/cds_text.h"
#include "support/quoted.h"
#include "tools/subcommands/command_test.h"
#include "tools/subcommands/one_processor.h"

using testing::Contains;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

class LoadFailure : public command_test {
protected:
    // Expects that `command` fails because of `cause` and leaves the database as it is, which is made before.
    void expect_unchanged(const std::string& command, const std::string& title, const std::string& cause) {
        write("processor.xml", one_processor);
        ASSERT_EQ(run("zebdb-cds load processor.xml").status, 0);
        const std::string before = read("inventory.db");
        const command_result result = run(command);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_EQ(result.last_error_line(),
                  "zebdb-cds: cannot load " + title + ": " + cause + "; 'inventory.db' is unchanged");
        EXPECT_TRUE(read("inventory.db") == before);
        EXPECT_THAT(names(), Not(Contains("inventory.db-journal")));
    }

    // Expects the same where there is no database, and that none is left behind.
    void expect_not_made(const std::string& command, const std::string& title, const std::string& cause) {
        const command_result result = run(command);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_EQ(result.last_error_line(),
                  "zebdb-cds: cannot load " + title + ": " + cause + "; 'inventory.db' was not made");
        EXPECT_THAT(names(), Not(Contains(StartsWith("inventory.db"))));
    }
};

struct bad_sample {
    const char* name;
    const char* cause;

    friend std::ostream& operator<<(std::ostream& out, const bad_sample& bad) { return out << bad.name; }
};

class BadSample : public LoadFailure, public testing::WithParamInterface<bad_sample> {
protected:
    BadSample() { fs::copy(fs::path(SAMPLES_DIR) / "errors" / file(), folder()); }

    static std::string file() { return GetParam().name + std::string(".xml"); }
};

TEST_P(BadSample, LeavesAnExistingDatabaseAsItIs) {
    expect_unchanged("zebdb-cds load " + file(), "'" + file() + "'", GetParam().cause);
}

TEST_P(BadSample, LeavesNoNewDatabase) {
    expect_not_made("zebdb-cds load " + file(), "'" + file() + "'", GetParam().cause);
}

// gtest takes no dashes in names.
std::string sample_name(const testing::TestParamInfo<bad_sample>& tested) {
    std::string name = tested.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

// One for each way in which a file is refused.
INSTANTIATE_TEST_SUITE_P(
    Of, BadSample,
    testing::Values(bad_sample{"empty", "the file is empty"},
                    bad_sample{"external-entity", "line 3, column 42: External entity 'server' is refused"},
                    bad_sample{"setting-without-name", "line 5: empty setting name"},
                    bad_sample{"truncated", "line 7, column 19: Couldn't find end of Start Tag integer_val line 7"},
                    bad_sample{"unexpected-node-in-component", "line 3: Unexpected node 'sensor' in component"},
                    bad_sample{"wrong-root", "its root element is not 'component', so it is no CDS file"}),
    sample_name);

struct bad_input {
    const char* name;
    const char* preparation;
    const char* file;
    const char* title;
    const char* cause;

    friend std::ostream& operator<<(std::ostream& out, const bad_input& bad) { return out << bad.cause; }
};

class BadInput : public LoadFailure, public testing::WithParamInterface<bad_input> {
protected:
    BadInput() { write("bad.xml", one_processor); }
    std::string command() const { return std::string(GetParam().preparation) + "zebdb-cds load " + GetParam().file; }
};

TEST_P(BadInput, LeavesAnExistingDatabaseAsItIs) {
    expect_unchanged(command(), GetParam().title, GetParam().cause);
}

TEST_P(BadInput, LeavesNoNewDatabase) {
    expect_not_made(command(), GetParam().title, GetParam().cause);
}

INSTANTIATE_TEST_SUITE_P(
    Of, BadInput,
    testing::Values(bad_input{"AMissingFile", "", "no.xml", "'no.xml'", "No such file or directory"},
                    bad_input{"AFileInAMissingFolder", "", "no/no.xml", "'no/no.xml'", "No such file or directory"},
                    bad_input{"AFolder", "mkdir folder; ", "folder", "'folder'", "Is a directory"},
                    bad_input{"ANameThatDoesNotFitALine", "", "\"$(printf 'a\\nb\\033[1m')\"", "'a\\nb\\x1b[1m'",
                              "No such file or directory"},
                    bad_input{"ClosedStandardInput", "", "- <&-", "standard input", "it is closed"},
                    bad_input{"AFolderOnStandardInput", "", "- <.", "standard input", "Is a directory"},
                    bad_input{"EmptyStandardInput", "", "- </dev/null", "standard input",
                              "line 1, column 1: Document is empty"},
                    bad_input{"GrammarErrorOnStandardInput", "echo '<component><foo/></component>' | ", "-",
                              "standard input", "Unexpected node 'foo' in component"},
                    bad_input{"APipeThatClosesEarly", "mkfifo pipe; head -c 20 bad.xml >pipe & ", "pipe", "'pipe'",
                              "line 2, column 9: Couldn't find end of Start Tag child_s line 2"}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(LoadFailure, LeavesAnEmptyDatabaseFileEmpty) {
    const command_result result = run(": >empty.db; zebdb-cds load " + quoted(SAMPLES_DIR "/errors/truncated.xml") +
                                      " --database empty.db; wc -c <empty.db");
    EXPECT_EQ(result.out, "0\n");
    EXPECT_THAT(result.last_error_line(), EndsWith("; 'empty.db' is unchanged"));
}
