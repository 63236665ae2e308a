#include <gmock/gmock.h>

#include <algorithm>
#include "support/cds_text.h"
#include "support/command_test.h"

using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

const std::string processor = cds_file(cds_component("cpu_info", {text("Socket Designation", "CPU 1")}));

}  // namespace

class LoadFailure : public command_test {
protected:
    // Expects that `command` fails because of `cause` and leaves the database as it is, which is made before.
    void expect_unchanged(const std::string& command, const std::string& title, const std::string& cause) {
        write("processor.xml", processor);
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

INSTANTIATE_TEST_SUITE_P(
    Of, BadSample,
    testing::Values(
        bad_sample{"cdata-in-setting-group", "line 5: Unexpected node without a name, as a CDATA section is"},
        bad_sample{"child-slot-group-in-child-slot-group",
                   "line 4: Unexpected node 'child_slot_group' in child_slot_group"},
        bad_sample{"comment-in-component", "line 3: Unexpected node 'comment' in component"},
        bad_sample{"comment-in-setting-group", "line 5: Unexpected node 'comment' in setting_group"},
        bad_sample{"component-in-component", "line 3: Unexpected node 'component' in component"},
        bad_sample{"empty", "the file is empty"},
        bad_sample{"entity-bomb", "line 16, column 15: Detected an entity reference loop"},
        bad_sample{"external-entity", "line 3, column 42: External entity 'server' is refused"},
        bad_sample{"external-parameter-entity", "line 3, column 52: External entity 'declarations' is refused"},
        bad_sample{"invalid-utf8",
                   "line 4, column 14: Input is not proper UTF-8, indicate encoding ! Bytes: 0xFF 0x69 0x6E 0x66"},
        bad_sample{"name-in-child-slot-group", "line 4: Unexpected node 'name' in child_slot_group"},
        bad_sample{"name-in-component", "line 3: Unexpected node 'name' in component"},
        bad_sample{"not-xml", "line 1, column 1: Start tag expected, '<' not found"},
        bad_sample{"processing-instruction-in-component", "line 3: Unexpected node 'firmware' in component"},
        bad_sample{"setting-group-in-setting-group", "line 5: Unexpected node 'setting_group' in setting_group"},
        bad_sample{"setting-group-named-by-attribute", "line 3: empty setting group name"},
        bad_sample{"setting-group-without-name", "line 3: empty setting group name"},
        bad_sample{"setting-in-setting", "line 7: Unexpected node 'setting' in setting"},
        bad_sample{"setting-name-on-its-own-line", "line 5: empty setting name"},
        bad_sample{"setting-with-empty-name", "line 5: empty setting name"},
        bad_sample{"setting-without-name", "line 5: empty setting name"},
        bad_sample{"too-deep", "line 259, column 1: Excessive depth in document: 256 use XML_PARSE_HUGE option"},
        bad_sample{"truncated", "line 7, column 19: Couldn't find end of Start Tag integer_val line 7"},
        bad_sample{"unexpected-node-in-child-slot-group", "line 4: Unexpected node 'sensor' in child_slot_group"},
        bad_sample{"unexpected-node-in-component", "line 3: Unexpected node 'sensor' in component"},
        bad_sample{"unexpected-node-in-setting-group", "line 5: Unexpected node 'sensor' in setting_group"},
        bad_sample{"unexpected-node-in-setting", "line 7: Unexpected node 'float_value' in setting"},
        bad_sample{"unknow-value", "line 7: Unexpected node 'unknow_value' in setting"},
        bad_sample{"wrong-case-root", "its root element is not 'component', so it is no CDS file"},
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
    BadInput() { write("bad.xml", processor); }
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
