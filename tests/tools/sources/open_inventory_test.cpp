// SPDX-License-Identifier: Apache-2.0

#include "sources/open_inventory.h"

#include <gmock/gmock.h>
#include <zeb_db_workstation.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "console/failure.h"
#include "sources/library_log.h"
#include "support/cds_hardware.h"
#include "support/replaced_stdin.h"
#include "support/scratch_folder.h"

using testing::StartsWith;

namespace fs = std::filesystem;

class OpenInventory : public testing::Test {
protected:
    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(folder_.file(name), std::ios::binary) << content;
        return folder_.file(name);
    }

    std::string content_of(const std::string& name) const {
        std::ifstream file(folder_.file(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // A database with one module in A1.
    std::string write_database(const std::string& name) const {
        const library_log log(log_display::hidden);
        _zeb_db_handle_t* handle = nullptr;
        EXPECT_EQ(zeb_db_open(folder_.file(name).c_str(), &handle), 0);
        cds_parser::parser parser;
        EXPECT_EQ(parser.parse(handle, write("module.xml", cds_file(module("A1", "S1"))).c_str()), 1);
        zeb_db_close(handle);
        return folder_.file(name);
    }

    static void expect_module(const std::string& path) {
        const inventory_table memory = open_inventory(path).read(kinds::memory);
        ASSERT_EQ(memory.rows.size(), 1u);
        EXPECT_EQ(inventory_row(memory, 0)["DevLocator"], inventory_value("A1"));
    }

    static std::string refusal_of(const std::string& path) {
        try {
            open_inventory(path).read_all();
        } catch (const failure& problem) {
            return problem.what();
        }
        return "none";
    }

    scratch_folder folder_;
};

TEST_F(OpenInventory, ReadsACdsFile) {
    expect_module(write("server.xml", cds_file(module("A1", "S1"))));
}

TEST_F(OpenInventory, ReadsADatabase) {
    expect_module(write_database("server.db"));
}

TEST_F(OpenInventory, TellsThemApartByContentAndNotByName) {
    expect_module(write_database("server.xml"));
    expect_module(write("server.db", cds_file(module("A1", "S1"))));
}

TEST_F(OpenInventory, ReadsAShortFileThatCanBeReadOnlyOnce) {
    const std::string path = write("short.xml", "<component/>");
    const replaced_stdin standard_input(path.c_str());
    EXPECT_TRUE(open_inventory("-").read(kinds::memory).rows.empty());
}

TEST_F(OpenInventory, KnowsTheBytesOfWhatWasNamed) {
    const std::string path = write("server.xml", cds_file(module("A1", "S1")));
    const opened_source of_file = open_source(path);
    EXPECT_EQ(of_file.file.name, path);
    EXPECT_EQ(of_file.file.bytes, fs::file_size(path));
    EXPECT_NE(of_file.document, nullptr);
    const opened_source of_database = open_source(write_database("server.db"));
    EXPECT_EQ(of_database.file.bytes, fs::file_size(folder_.file("server.db")));
    EXPECT_EQ(of_database.document, nullptr);
    const replaced_stdin standard_input(path.c_str());
    const opened_source of_standard_input = open_source("-");
    EXPECT_EQ(of_standard_input.file.sha256, of_file.file.sha256);
    EXPECT_EQ(of_standard_input.file.name, "-");
}

TEST_F(OpenInventory, WritesNothing) {
    const std::string path = write_database("server.db");
    const std::string before = content_of("server.db");
    expect_module(path);
    EXPECT_TRUE(content_of("server.db") == before);
    EXPECT_FALSE(fs::exists(path + "-journal"));
}

TEST_F(OpenInventory, RefusesWhatIsMissing) {
    const std::string path = folder_.file("none.xml");
    EXPECT_EQ(refusal_of(path), "cannot read '" + path + "': No such file or directory");
    EXPECT_EQ(refusal_of(""), "cannot read '': No such file or directory");
}

TEST_F(OpenInventory, RefusesAFolder) {
    EXPECT_EQ(refusal_of("."), "cannot read '.': Is a directory");
}

TEST_F(OpenInventory, RefusesAnEmptyFile) {
    const std::string path = write("empty", "");
    EXPECT_EQ(refusal_of(path), "cannot read '" + path + "': the file is empty");
}

TEST_F(OpenInventory, RefusesWhatIsNeitherAFileNorADatabase) {
    const std::string path = write("text", "hello\n");
    EXPECT_EQ(refusal_of(path), "cannot read '" + path + "': line 1, column 1: Start tag expected, '<' not found");
}

TEST_F(OpenInventory, RefusesXmlThatIsCutOff) {
    const std::string path = write("cut.xml", cds_file(module("A1", "S1")).substr(0, 100));
    EXPECT_THAT(refusal_of(path), StartsWith("cannot read '" + path + "': line "));
}

TEST_F(OpenInventory, RefusesWhatBreaksTheGrammarAndTellsWhere) {
    const std::string path = write("bad.xml", cds_file("<foo/>"));
    EXPECT_EQ(refusal_of(path), "cannot read '" + path + "': line 3: Unexpected node 'foo' in child_slot_group");
}

TEST_F(OpenInventory, RefusesAnotherRootElement) {
    const std::string path = write("bad.xml", "<inventory/>");
    EXPECT_EQ(refusal_of(path),
              "cannot read '" + path + "': its root element is not 'component', so it is no CDS file");
}

TEST_F(OpenInventory, RefusesADatabaseThatIsCutOff) {
    write_database("server.db");
    const std::string path = write("cut.db", content_of("server.db").substr(0, 5000));
    EXPECT_EQ(refusal_of(path), "cannot read '" + path + "': database disk image is malformed");
}
