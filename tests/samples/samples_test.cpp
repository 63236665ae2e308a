// SPDX-License-Identifier: Apache-2.0

// Loads the samples into a SQLite database. What a good one gives, and its dump, is compared with a text in golden/;
// run the program with BLESS=1 in the environment to rewrite those texts, and read the difference before it is
// committed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <zeb_db_workstation.h>
#include <zebdb_cds_parser.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/captured_log.h"
#include "support/scratch_folder.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> shell_commands;

struct connection_deleter {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};
using connection_ptr = std::unique_ptr<sqlite3, connection_deleter>;

struct statement_deleter {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using statement_ptr = std::unique_ptr<sqlite3_stmt, statement_deleter>;

statement_ptr select_all(sqlite3* connection, const std::string& table) {
    sqlite3_stmt* statement = nullptr;
    const std::string sql = "SELECT * FROM " + table + " ORDER BY Id";
    EXPECT_EQ(sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr), SQLITE_OK);
    return statement_ptr(statement);
}

// Numbers bare, texts in quotes, so that blanks at their ends show.
std::string cell_text(sqlite3_stmt* row, int column) {
    const std::string text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return sqlite3_column_type(row, column) == SQLITE_INTEGER ? text : '"' + text + '"';
}

void dump_row(std::ostream& out, const std::string& table, sqlite3_stmt* row) {
    out << '[' << table << ' ' << cell_text(row, 0) << "]\n";
    for (int column = 1; column < sqlite3_column_count(row); ++column) {
        if (sqlite3_column_type(row, column) != SQLITE_NULL) {
            out << sqlite3_column_name(row, column) << " = " << cell_text(row, column) << '\n';
        }
    }
    out << '\n';
}

// Every row of the inventory with the columns that were put.
std::string dump_rows(const std::string& database) {
    sqlite3* opened = nullptr;
    EXPECT_EQ(sqlite3_open_v2(database.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    const connection_ptr connection(opened);
    std::ostringstream out;
    for (const std::string table : {"Processor", "Memory", "PCIBridge", "PCIs"}) {
        const statement_ptr rows = select_all(connection.get(), table);
        while (sqlite3_step(rows.get()) == SQLITE_ROW) {
            dump_row(out, table, rows.get());
        }
    }
    return out.str();
}

struct loaded {
    int result;
    std::vector<std::string> log;
    std::string rows;
};

loaded load(const std::string& path) {
    const scratch_folder folder;
    const std::string database = folder.file("inventory.db");
    const captured_log log;
    _zeb_db_handle_t* handle = nullptr;
    EXPECT_EQ(zeb_db_open(database.c_str(), &handle), 0);
    const int result = parse_cds(handle, path.c_str());
    zeb_db_close(handle);
    return {result, log.lines, dump_rows(database)};
}

std::string sample(const std::string& name) {
    return std::string(SAMPLES_DIR) + '/' + name + ".xml";
}

std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in) << path;
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string in_test_name(std::string sample_name) {
    const auto is_separator = [](char c) { return c == '-' || c == '/'; };
    std::replace_if(sample_name.begin(), sample_name.end(), is_separator, '_');
    return sample_name;
}

// The rows, then the log without the folder that the sample stands in.
std::string outcome_text(const loaded& outcome) {
    std::string text = outcome.rows + "[log]\n";
    for (std::string line : outcome.log) {
        const std::size_t folder = line.find(SAMPLES_DIR "/");
        if (folder != std::string::npos) {
            line.erase(folder, sizeof SAMPLES_DIR);
        }
        text += line + '\n';
    }
    return text;
}

void expect_golden(const std::string& text, const std::string& name) {
    const std::string golden = SOURCE_DIR "/tests/samples/golden/" + name;
    if (std::getenv("BLESS") != nullptr) {
        std::ofstream(golden, std::ios::binary) << text;
        GTEST_SKIP() << "rewrote " << golden;
    }
    EXPECT_EQ(text, read_file(golden));
}

class GoodSample : public testing::TestWithParam<const char*> {};

TEST_P(GoodSample, GivesTheRowsAndTheLogOfItsGoldenText) {
    const loaded outcome = load(sample(GetParam()));
    EXPECT_EQ(outcome.result, 0);
    expect_golden(outcome_text(outcome), GetParam() + std::string(".txt"));
}

constexpr const char* good_samples[] = {"minimal", "no-hardware", "tolerated", "two-socket-server"};

INSTANTIATE_TEST_SUITE_P(Samples, GoodSample, testing::ValuesIn(good_samples),
                         [](const auto& given) { return in_test_name(given.param); });

class DumpedSample : public testing::TestWithParam<const char*> {};

TEST_P(DumpedSample, IsItsGoldenText) {
    cds_parser::document document;
    ASSERT_TRUE(document.parse(sample(GetParam()).c_str()));
    std::ostringstream dump;
    dump << document;
    expect_golden(dump.str(), GetParam() + std::string(".dump"));
}

// The text of the large one would be as long as the sample itself.
INSTANTIATE_TEST_SUITE_P(Samples, DumpedSample, testing::Values("minimal", "no-hardware", "tolerated"),
                         [](const auto& given) { return in_test_name(given.param); });

struct bad_sample {
    const char* name;
    const char* log;

    friend void PrintTo(const bad_sample& given, std::ostream* out) { *out << given.name; }
};

class BadSample : public testing::TestWithParam<bad_sample> {};

TEST_P(BadSample, IsRefusedWithItsMessageAndLeavesNoRow) {
    const loaded outcome = load(sample(std::string("errors/") + GetParam().name));
    EXPECT_EQ(outcome.result, -1);
    EXPECT_THAT(outcome.log, ElementsAre(GetParam().log));
    EXPECT_THAT(outcome.rows, IsEmpty());
}

constexpr bad_sample bad_samples[] = {
    {"cdata-in-setting-group", "ERROR: CDS XML ERROR: Unexpected node '"},
    {"child-slot-group-in-child-slot-group",
     "ERROR: CDS XML ERROR: Unexpected node 'child_slot_group' in child_slot_group"},
    {"comment-in-component", "ERROR: CDS XML ERROR: Unexpected node 'comment' in component"},
    {"comment-in-setting-group", "ERROR: CDS XML ERROR: Unexpected node 'comment' in setting_group"},
    {"component-in-component", "ERROR: CDS XML ERROR: Unexpected node 'component' in component"},
    {"empty", "ERROR: CDS XML ERROR: line 1, column 1: Document is empty"},
    {"entity-bomb", "ERROR: CDS XML ERROR: line 16, column 15: Detected an entity reference loop"},
    {"external-entity", "ERROR: CDS XML ERROR: line 3, column 42: External entity 'server' is refused"},
    {"external-parameter-entity", "ERROR: CDS XML ERROR: line 3, column 52: External entity 'declarations' is refused"},
    {"invalid-utf8",
     "ERROR: CDS XML ERROR: line 4, column 14: Input is not proper UTF-8, indicate encoding !\n"
     "Bytes: 0xFF 0x69 0x6E 0x66"},
    {"name-in-child-slot-group", "ERROR: CDS XML ERROR: Unexpected node 'name' in child_slot_group"},
    {"name-in-component", "ERROR: CDS XML ERROR: Unexpected node 'name' in component"},
    {"not-xml", "ERROR: CDS XML ERROR: line 1, column 1: Start tag expected, '<' not found"},
    {"processing-instruction-in-component", "ERROR: CDS XML ERROR: Unexpected node 'firmware' in component"},
    {"setting-group-in-setting-group", "ERROR: CDS XML ERROR: Unexpected node 'setting_group' in setting_group"},
    {"setting-group-named-by-attribute", "ERROR: CDS XML ERROR: empty setting group name"},
    {"setting-group-without-name", "ERROR: CDS XML ERROR: empty setting group name"},
    {"setting-in-setting", "ERROR: CDS XML ERROR: Unexpected node 'setting' in setting"},
    {"setting-name-on-its-own-line", "ERROR: CDS XML ERROR: empty setting name"},
    {"setting-with-empty-name", "ERROR: CDS XML ERROR: empty setting name"},
    {"setting-without-name", "ERROR: CDS XML ERROR: empty setting name"},
    {"too-deep", "ERROR: CDS XML ERROR: line 259, column 1: Excessive depth in document: 256"},
    {"truncated", "ERROR: CDS XML ERROR: line 7, column 19: Couldn't find end of Start Tag integer_val line 7"},
    {"unexpected-node-in-child-slot-group", "ERROR: CDS XML ERROR: Unexpected node 'sensor' in child_slot_group"},
    {"unexpected-node-in-component", "ERROR: CDS XML ERROR: Unexpected node 'sensor' in component"},
    {"unexpected-node-in-setting", "ERROR: CDS XML ERROR: Unexpected node 'float_value' in setting"},
    {"unexpected-node-in-setting-group", "ERROR: CDS XML ERROR: Unexpected node 'sensor' in setting_group"},
    {"unknow-value", "ERROR: CDS XML ERROR: Unexpected node 'unknow_value' in setting"},
    {"wrong-case-root", "ERROR: failed to parse the CDS XML file"},
    {"wrong-root", "ERROR: failed to parse the CDS XML file"},
};

INSTANTIATE_TEST_SUITE_P(Samples, BadSample, testing::ValuesIn(bad_samples),
                         [](const auto& given) { return in_test_name(given.param.name); });

std::set<std::string> xml_files(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".xml") {
            names.insert(entry.path().stem());
        }
    }
    return names;
}

TEST(Samples, AreAllLoadedHere) {
    EXPECT_EQ(xml_files(SAMPLES_DIR), std::set<std::string>(std::begin(good_samples), std::end(good_samples)));
    std::set<std::string> refused;
    for (const bad_sample& bad : bad_samples) {
        refused.insert(bad.name);
    }
    EXPECT_EQ(xml_files(SAMPLES_DIR "/errors"), refused);
}

// The line of the samples' table that stands for a file.
std::string documented(const std::string& name) {
    std::istringstream table(read_file(SAMPLES_DIR "/README.md"));
    const std::string beginning = "| `" + name + ".xml` | ";
    for (std::string line; std::getline(table, line);) {
        if (line.compare(0, beginning.size(), beginning) == 0) {
            return line;
        }
    }
    return "";
}

std::size_t count(const std::string& text, const std::string& wanted) {
    std::size_t found = 0;
    for (std::size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1)) {
        ++found;
    }
    return found;
}

TEST(SamplesTable, TellsTheNumbersOfRows) {
    for (const char* name : good_samples) {
        const std::string rows = load(sample(name)).rows;
        std::string counts;
        for (const std::string table : {"Processor", "Memory", "PCIBridge", "PCIs"}) {
            counts += (counts.empty() ? "" : ", ") + std::to_string(count(rows, '[' + table + ' '));
        }
        EXPECT_THAT(documented(name), EndsWith("| " + counts + " |"));
    }
}

TEST(SamplesTable, TellsTheMessages) {
    for (const bad_sample& bad : bad_samples) {
        const std::string log = bad.log;
        const std::string message = log.substr(std::strlen("ERROR: "), log.find('\n') - std::strlen("ERROR: "));
        EXPECT_THAT(documented(bad.name), HasSubstr("| `" + message + '`'));
    }
}

TEST(Load, ReplacesTheRowsOfTheLoadBefore) {
    const scratch_folder folder;
    const std::string database = folder.file("inventory.db");
    const captured_log log;
    _zeb_db_handle_t* handle = nullptr;
    ASSERT_EQ(zeb_db_open(database.c_str(), &handle), 0);
    ASSERT_EQ(parse_cds(handle, sample("two-socket-server").c_str()), 0);
    ASSERT_EQ(parse_cds(handle, sample("minimal").c_str()), 0);
    zeb_db_close(handle);
    EXPECT_EQ(dump_rows(database), load(sample("minimal")).rows);
}

TEST(Load, LeavesEmptyTablesWhenTheFileIsRefused) {
    const scratch_folder folder;
    const std::string database = folder.file("inventory.db");
    const captured_log log;
    _zeb_db_handle_t* handle = nullptr;
    ASSERT_EQ(zeb_db_open(database.c_str(), &handle), 0);
    ASSERT_EQ(parse_cds(handle, sample("minimal").c_str()), 0);
    ASSERT_EQ(parse_cds(handle, sample("errors/wrong-root").c_str()), -1);
    zeb_db_close(handle);
    EXPECT_THAT(dump_rows(database), IsEmpty());
}

TEST(Load, RefusesAMissingFile) {
    const loaded outcome = load(sample("no-such-file"));
    EXPECT_EQ(outcome.result, -1);
    EXPECT_THAT(outcome.log, ElementsAre("ERROR: CDS XML ERROR: cannot read the input: the stream is not open or has "
                                         "failed"));
}

TEST(Load, RefusesAFolder) {
    const loaded outcome = load(SAMPLES_DIR);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_THAT(outcome.log, ElementsAre("ERROR: CDS XML ERROR: cannot read the input: Is a directory"));
}

TEST(Load, RunsOneShellCommand) {
    shell_commands.clear();
    EXPECT_EQ(load(sample("minimal")).result, 0);
    EXPECT_THAT(shell_commands, ElementsAre("touch /tmp/.dmdb_memory_deleted_flag"));
}

}  // namespace

// The program's own symbol goes before the C library's: nothing is left behind in /tmp.
extern "C" int system(const char* command) {
    shell_commands.emplace_back(command);
    return 0;
}
