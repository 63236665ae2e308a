// SPDX-License-Identifier: Apache-2.0

#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/database_test.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using OpenDatabase = DatabaseTest;

TEST_F(OpenDatabase, KeepsTheRowsThatAreThere) {
    ASSERT_EQ(insert("CPU 1", 8), 0);
    const handle_ptr again = open();
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(OpenDatabase, MakesSmallPages) {
    EXPECT_THAT(rows("PRAGMA page_size"), ElementsAre("1024"));
}

TEST_F(OpenDatabase, KeepsThePagesThatAreThere) {
    rows("PRAGMA page_size=8192; VACUUM");
    ASSERT_EQ(insert(open().get(), "CPU 1", 8), 0);
    EXPECT_THAT(rows("PRAGMA page_size"), ElementsAre("8192"));
}

TEST_F(OpenDatabase, LogsNothingWhenAllIsWell) {
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(OpenDatabase, LosesAnOpenTransactionWhenItIsClosed) {
    handle_ptr writer = open();
    ASSERT_EQ(zeb_db_begin_transaction(writer.get()), 0);
    ASSERT_EQ(insert(writer.get(), "CPU 1", 8), 0);
    writer.reset();
    EXPECT_THAT(sockets(), IsEmpty());
}

TEST_F(OpenDatabase, InMemoryLeavesNoFile) {
    const std::string here = std::filesystem::current_path();
    std::filesystem::current_path(std::filesystem::path(path).parent_path());
    _zeb_db_handle_t* opened = nullptr;
    const int rc = zeb_db_open(":memory:", &opened);
    const int inserted = insert(opened, "CPU 1", 8);
    const bool left = std::filesystem::exists(":memory:");
    std::filesystem::current_path(here);
    zeb_db_close(opened);
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(inserted, 0);
    EXPECT_FALSE(left);
}

TEST_F(OpenDatabase, InMemoryIsNotSharedBetweenHandles) {
    _zeb_db_handle_t* first = nullptr;
    _zeb_db_handle_t* second = nullptr;
    ASSERT_EQ(zeb_db_open(":memory:", &first), 0);
    ASSERT_EQ(zeb_db_open(":memory:", &second), 0);
    ASSERT_EQ(insert(first, "CPU 1", 8), 0);
    const char* const columns[] = {"CoreCount"};
    zeb_db_result_t* result = nullptr;
    ASSERT_EQ(zeb_db_query(second, "Processor", columns, 1, nullptr, nullptr, 0, nullptr, &result), 0);
    EXPECT_EQ(zeb_db_result_step(result), SQLITE_DONE);
    zeb_db_free_result(result);
    zeb_db_close(first);
    zeb_db_close(second);
}

TEST_F(OpenDatabase, TellsThatTheFolderIsMissing) {
    const std::string missing = folder.file("none/inventory.db");
    auto* opened = handle.get();
    EXPECT_EQ(zeb_db_open(missing.c_str(), &opened), SQLITE_CANTOPEN);
    EXPECT_EQ(opened, nullptr);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: cannot open inventory database '" + missing +
                                       "': unable to open database file (No such file or directory)"));
}

TEST_F(OpenDatabase, TellsAPathWithPercentSignsAsItIs) {
    const std::string missing = folder.file("50%%/inventory.db");
    _zeb_db_handle_t* opened = nullptr;
    EXPECT_EQ(zeb_db_open(missing.c_str(), &opened), SQLITE_CANTOPEN);
    EXPECT_THAT(log.lines, ElementsAre(testing::HasSubstr(missing)));
}

TEST_F(OpenDatabase, LetsNoTriggerWriteWhereAVirtualTableKeepsItsOwn) {
    sqlite_database(path).run(
        "CREATE VIRTUAL TABLE Notes USING fts5(Text);"
        "CREATE TRIGGER hostile BEFORE INSERT ON Processor BEGIN INSERT INTO Notes_data VALUES (9, 'x'); END");
    EXPECT_NE(insert("CPU 1", 8), 0);
    EXPECT_THAT(log.lines, ElementsAre(testing::HasSubstr("table Notes_data may not be modified")));
}

TEST_F(OpenDatabase, RunsNothingUnsafeThatASchemaNames) {
    sqlite_database(path).run(
        "CREATE TRIGGER hostile BEFORE INSERT ON Processor BEGIN SELECT name FROM pragma_table_list; END");
    EXPECT_NE(insert("CPU 1", 8), 0);
    EXPECT_THAT(log.lines, ElementsAre(testing::HasSubstr("unsafe use of virtual table")));
}

TEST_F(OpenDatabase, TellsThatTheFileIsNoDatabase) {
    const std::string text = folder.file("text");
    std::ofstream(text) << std::string(4096, 'x');
    auto* opened = handle.get();
    EXPECT_EQ(zeb_db_open(text.c_str(), &opened), SQLITE_NOTADB);
    EXPECT_EQ(opened, nullptr);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: cannot open inventory database '" + text + "': file is not a database"));
}

TEST_F(OpenDatabase, LeavesAFileThatIsNoDatabaseAsItIs) {
    const std::string text = folder.file("text");
    std::ofstream(text) << std::string(4096, 'x');
    _zeb_db_handle_t* opened = nullptr;
    zeb_db_open(text.c_str(), &opened);
    std::ifstream in(text);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), std::string(4096, 'x'));
}

// Several programs of a controller may be the first to open the inventory.
TEST_F(OpenDatabase, MakesTheTablesForSeveralWhoOpenItAtTheSameTime) {
    for (int round = 0; round < 5; ++round) {
        const std::string fresh = folder.file("fresh" + std::to_string(round));
        std::vector<int> codes(4, -1);
        std::vector<std::thread> openers;
        for (int& code : codes) {
            openers.emplace_back([&fresh, &code] {
                _zeb_db_handle_t* opened = nullptr;
                code = zeb_db_open(fresh.c_str(), &opened);
                zeb_db_close(opened);
            });
        }
        for (std::thread& opener : openers) {
            opener.join();
        }
        ASSERT_THAT(codes, testing::Each(0)) << "round " << round;
    }
}

TEST_F(OpenDatabase, RefusesANullPath) {
    _zeb_db_handle_t* opened = nullptr;
    EXPECT_EQ(zeb_db_open(nullptr, &opened), SQLITE_MISUSE);
}

TEST_F(OpenDatabase, RefusesANullPlaceForTheHandle) {
    EXPECT_EQ(zeb_db_open(path.c_str(), nullptr), SQLITE_MISUSE);
}

TEST_F(OpenDatabase, ClosesNull) {
    zeb_db_close(nullptr);
    EXPECT_THAT(log.lines, IsEmpty());
}

}  // namespace
