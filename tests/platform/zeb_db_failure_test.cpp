// SPDX-License-Identifier: Apache-2.0

#include <fstream>
#include <thread>

#include "platform/database_test.h"

using testing::AllOf;
using testing::Field;
using testing::IsNull;
using testing::Pointee;
using testing::StrEq;

namespace {

class DatabaseFailure : public DatabaseTest {
protected:
    DatabaseFailure() { zeb_db_forget_failure(); }

    static auto is_failure(int code, const std::string& text) {
        return Pointee(AllOf(Field(&zeb_db_failure_t::code, code), Field(&zeb_db_failure_t::text, StrEq(text))));
    }

    int insert_into(const char* table) {
        const content_ptr content = new_content();
        return zeb_db_insert(handle.get(), table, content.get(), 0, nullptr);
    }

    result_ptr query(const char* table, const char* column = "Id") {
        zeb_db_result_t* result = nullptr;
        zeb_db_query(handle.get(), table, &column, 1, nullptr, nullptr, 0, nullptr, &result);
        return result_ptr(result);
    }

    static int open_database(const std::string& at) {
        _zeb_db_handle_t* opened = nullptr;
        const int code = zeb_db_open(at.c_str(), &opened);
        zeb_db_close(opened);
        return code;
    }
};

TEST_F(DatabaseFailure, IsNoneWhenAllIsWell) {
    zeb_db_begin_transaction(handle.get());
    insert("CPU 1", 8);
    zeb_db_commit_transaction(handle.get());
    const result_ptr rows = query("Processor");
    while (zeb_db_result_step(rows.get()) == 9) {
    }
    zeb_db_delete(handle.get(), "Processor", nullptr, nullptr, 0, 0);
    EXPECT_THAT(zeb_db_first_failure(), IsNull());
}

TEST_F(DatabaseFailure, TellsOfAnInsert) {
    insert_into("Fan");
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_ERROR, "insert into Fan: no such table: Fan"));
}

TEST_F(DatabaseFailure, TellsOfADelete) {
    zeb_db_delete(handle.get(), "Fan", nullptr, nullptr, 0, 0);
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_ERROR, "delete from Fan: no such table: Fan"));
}

TEST_F(DatabaseFailure, TellsOfAQuery) {
    query("Fan");
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_ERROR, "query Fan: no such table: Fan"));
}

TEST_F(DatabaseFailure, TellsOfAStep) {
    insert("CPU 1", 8);
    insert("CPU 2", 8);
    const result_ptr rows = query("Processor");
    ASSERT_EQ(zeb_db_result_step(rows.get()), 9);
    sqlite3_interrupt(connection);
    const int code = zeb_db_result_step(rows.get());
    EXPECT_THAT(zeb_db_first_failure(), is_failure(code, "query Processor: interrupted"));
}

TEST_F(DatabaseFailure, TellsOfTheBeginOfATransaction) {
    sqlite_database other(path);
    other.run("BEGIN IMMEDIATE");
    sqlite3_busy_timeout(connection, 10);
    zeb_db_begin_transaction(handle.get());
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_BUSY, "begin a transaction: database is locked"));
}

TEST_F(DatabaseFailure, TellsOfACommit) {
    sqlite3_busy_timeout(connection, 10);
    zeb_db_begin_transaction(handle.get());
    insert("CPU 1", 8);
    sqlite_database reader(path);
    reader.run("BEGIN; SELECT * FROM Processor");
    zeb_db_commit_transaction(handle.get());
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_BUSY, "commit: database is locked"));
}

TEST_F(DatabaseFailure, TellsOfARollback) {
    zeb_db_rollback_transaction(handle.get());
    EXPECT_THAT(zeb_db_first_failure(),
                is_failure(SQLITE_ERROR, "roll back: cannot rollback - no transaction is active"));
}

TEST_F(DatabaseFailure, TellsOfADatabaseThatCannotBeOpened) {
    const std::string missing = folder.file("none/inventory.db");
    open_database(missing);
    EXPECT_THAT(zeb_db_first_failure(),
                is_failure(SQLITE_CANTOPEN, "cannot open inventory database '" + missing +
                                                "': unable to open database file (No such file or directory)"));
}

TEST_F(DatabaseFailure, TellsOfAFileThatIsNoDatabase) {
    const std::string text = folder.file("text");
    std::ofstream(text) << std::string(4096, 'x');
    open_database(text);
    EXPECT_THAT(zeb_db_first_failure(),
                is_failure(SQLITE_NOTADB, "cannot open inventory database '" + text + "': file is not a database"));
}

TEST_F(DatabaseFailure, TellsOfANewerDatabase) {
    rows("PRAGMA user_version=" + std::to_string(zeb_db_schema_version() + 1));
    open_database(path);
    EXPECT_THAT(zeb_db_first_failure(), Pointee(Field(&zeb_db_failure_t::code, int{zeb_db_is_newer})));
}

TEST_F(DatabaseFailure, IsTheFirstOfSeveral) {
    insert_into("Fan");
    insert_into("Pump");
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_ERROR, "insert into Fan: no such table: Fan"));
}

TEST_F(DatabaseFailure, IsTheCauseWhenATransactionIsLost) {
    zeb_db_begin_transaction(handle.get());
    rows("SELECT 1");
    sqlite3_exec(connection,
                 "CREATE TEMP TRIGGER refuse BEFORE INSERT ON Processor BEGIN SELECT RAISE(ROLLBACK, "
                 "'refused'); END",
                 nullptr, nullptr, nullptr);
    insert("CPU 1", 8);
    insert("CPU 2", 8);
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_CONSTRAINT, "insert into Processor: refused"));
}

TEST_F(DatabaseFailure, OfALostTransactionIsOneToo) {
    zeb_db_begin_transaction(handle.get());
    sqlite3_exec(connection, "ROLLBACK", nullptr, nullptr, nullptr);
    insert("CPU 1", 8);
    EXPECT_THAT(zeb_db_first_failure(),
                is_failure(SQLITE_ABORT, "insert into Processor: the transaction was rolled back by an earlier error"));
}

TEST_F(DatabaseFailure, IsCutAt1023Characters) {
    const std::string table(1023, 'F');
    insert_into(table.c_str());
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_ERROR, ("insert into " + table).substr(0, 1023)));
}

TEST_F(DatabaseFailure, IsForgotten) {
    insert_into("Fan");
    zeb_db_forget_failure();
    EXPECT_THAT(zeb_db_first_failure(), IsNull());
}

TEST_F(DatabaseFailure, IsTheFirstSinceTheOthersWereForgotten) {
    insert_into("Fan");
    zeb_db_forget_failure();
    insert_into("Pump");
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_ERROR, "insert into Pump: no such table: Pump"));
}

TEST_F(DatabaseFailure, OutlivesSuccess) {
    insert_into("Fan");
    insert("CPU 1", 8);
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_ERROR, "insert into Fan: no such table: Fan"));
}

TEST_F(DatabaseFailure, OutlivesItsHandle) {
    handle_ptr other = open();
    zeb_db_delete(other.get(), "Fan", nullptr, nullptr, 0, 0);
    other.reset();
    EXPECT_THAT(zeb_db_first_failure(), is_failure(SQLITE_ERROR, "delete from Fan: no such table: Fan"));
}

TEST_F(DatabaseFailure, IsNotThatOfAnotherThread) {
    std::thread([this] { insert_into("Fan"); }).join();
    EXPECT_THAT(zeb_db_first_failure(), IsNull());
}

TEST_F(DatabaseFailure, IsNotAMistakeOfTheCaller) {
    insert_into(nullptr);
    open_database(path);
    insert("CPU 1", 8);
    const result_ptr rows = query("Processor", "ThreadCount");
    zeb_db_result_step(rows.get());
    std::uint32_t number = 0;
    ASSERT_EQ(zeb_db_result_column_uint(rows.get(), 0, &number), SQLITE_MISMATCH);
    ASSERT_EQ(zeb_db_result_column_uint(rows.get(), 1, &number), SQLITE_RANGE);
    EXPECT_THAT(zeb_db_first_failure(), IsNull());
}

}  // namespace
