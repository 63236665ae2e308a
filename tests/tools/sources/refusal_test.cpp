// SPDX-License-Identifier: Apache-2.0

#include "sources/refusal.h"

#include <gmock/gmock.h>
#include <vonk_log.h>
#include <zlib.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "sources/cds_file.h"
#include "sources/memory_database.h"
#include "support/scratch_file.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* samples = SAMPLES_DIR "/errors/";

struct bad_sample {
    const char* name;
    const char* cause;

    friend std::ostream& operator<<(std::ostream& out, const bad_sample& bad) { return out << bad.name; }
};

constexpr bad_sample bad_samples[] = {
    {"cdata-in-setting-group", "line 5: Unexpected node without a name, as a CDATA section is"},
    {"child-slot-group-in-child-slot-group", "line 4: Unexpected node 'child_slot_group' in child_slot_group"},
    {"comment-in-component", "line 3: Unexpected node 'comment' in component"},
    {"comment-in-setting-group", "line 5: Unexpected node 'comment' in setting_group"},
    {"component-in-component", "line 3: Unexpected node 'component' in component"},
    {"empty", "the file is empty"},
    {"entity-bomb", "line 16, column 15: Detected an entity reference loop"},
    {"external-entity", "line 3, column 42: External entity 'server' is refused"},
    {"external-parameter-entity", "line 3, column 52: External entity 'declarations' is refused"},
    {"invalid-utf8", "line 4, column 14: Input is not proper UTF-8, indicate encoding ! Bytes: 0xFF 0x69 0x6E 0x66"},
    {"name-in-child-slot-group", "line 4: Unexpected node 'name' in child_slot_group"},
    {"name-in-component", "line 3: Unexpected node 'name' in component"},
    {"not-xml", "line 1, column 1: Start tag expected, '<' not found"},
    {"processing-instruction-in-component", "line 3: Unexpected node 'firmware' in component"},
    {"setting-group-in-setting-group", "line 5: Unexpected node 'setting_group' in setting_group"},
    {"setting-group-named-by-attribute", "line 3: empty setting group name"},
    {"setting-group-without-name", "line 3: empty setting group name"},
    {"setting-in-setting", "line 7: Unexpected node 'setting' in setting"},
    {"setting-name-on-its-own-line", "line 5: empty setting name"},
    {"setting-with-empty-name", "line 5: empty setting name"},
    {"setting-without-name", "line 5: empty setting name"},
    {"too-deep", "line 259, column 1: Excessive depth in document: 256"},
    {"truncated", "line 7, column 19: Couldn't find end of Start Tag integer_val line 7"},
    {"unexpected-node-in-child-slot-group", "line 4: Unexpected node 'sensor' in child_slot_group"},
    {"unexpected-node-in-component", "line 3: Unexpected node 'sensor' in component"},
    {"unexpected-node-in-setting-group", "line 5: Unexpected node 'sensor' in setting_group"},
    {"unexpected-node-in-setting", "line 7: Unexpected node 'float_value' in setting"},
    {"unknow-value", "line 7: Unexpected node 'unknow_value' in setting"},
    {"wrong-case-root", "its root element is not 'component', so it is no CDS file"},
    {"wrong-root", "its root element is not 'component', so it is no CDS file"}};

// A file is refused before the library reads it, or by the library.
std::string cause_of_failed_load(const std::string& path) {
    const memory_database database;
    const library_log log(log_display::hidden);
    cds_parser::parser parser;
    try {
        const input_file input(path);
        EXPECT_EQ(parser.parse(database.handle(), input.path().c_str()), 0);
        return cause_of_refusal(input, log);
    } catch (const failure& cause) {
        return cause.what();
    }
}

std::string failure_of(const std::string& name) {
    cds_parser::document document;
    try {
        read_cds_file(name, document);
    } catch (const failure& problem) {
        return problem.what();
    }
    return "";
}

}  // namespace

class BadSample : public testing::TestWithParam<bad_sample> {
protected:
    BadSample() : path_(samples + std::string(GetParam().name) + ".xml") {}

    std::string path_;
};

TEST_P(BadSample, IsRefusedByALoadForItsCause) {
    EXPECT_EQ(cause_of_failed_load(path_), GetParam().cause);
}

TEST_P(BadSample, IsRefusedInTheSameWordsWhereItIsOnlyRead) {
    EXPECT_EQ(failure_of(path_), "cannot read '" + path_ + "': " + GetParam().cause);
}

// gtest takes no dashes in names.
INSTANTIATE_TEST_SUITE_P(Of, BadSample, testing::ValuesIn(bad_samples), [](const auto& tested) {
    std::string name = tested.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(Refusal, OfAPackedFileThatLacksOnlyItsEndSaysSo) {
    const scratch_file file("");
    const gzFile packed = gzopen(file.path(), "wb");
    EXPECT_GT(gzputs(packed, "<component/>"), 0);
    EXPECT_EQ(gzclose(packed), Z_OK);
    fs::resize_file(file.path(), fs::file_size(file.path()) - 1);
    EXPECT_EQ(cause_of_failed_load(file.path()), "it was packed by gzip and lacks its end");
}

TEST(Refusal, OfAGoodFileIsWhatTheLibrarySays) {
    const scratch_file file("<component/>");
    const input_file input(file.path());
    const library_log log(log_display::hidden);
    vonk_log::logErr("no more\nof this");
    EXPECT_EQ(cause_of_refusal(input, log), "no more of this");
}

TEST(BadSamples, AreAllThereAre) {
    std::set<std::string> tested;
    for (const bad_sample& sample : bad_samples) {
        tested.insert(sample.name + std::string(".xml"));
    }
    std::set<std::string> there;
    for (const fs::directory_entry& sample : fs::directory_iterator(samples)) {
        there.insert(sample.path().filename());
    }
    EXPECT_EQ(tested, there);
}
