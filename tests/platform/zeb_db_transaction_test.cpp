// SPDX-License-Identifier: Apache-2.0

#include <signal.h>
#include <sys/resource.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "platform/database_test.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Transaction : public DatabaseTest {
protected:
    int begin() { return zeb_db_begin_transaction(handle.get()); }
    int commit() { return zeb_db_commit_transaction(handle.get()); }
    int rollback() { return zeb_db_rollback_transaction(handle.get()); }
};

TEST_F(Transaction, KeepsItsRowsWhenItIsCommitted) {
    EXPECT_EQ(begin(), 0);
    EXPECT_EQ(insert("CPU 1", 8), 0);
    EXPECT_EQ(commit(), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(Transaction, IsNotSeenByOthersBeforeItIsCommitted) {
    begin();
    insert("CPU 1", 8);
    EXPECT_THAT(sockets(), IsEmpty());
    commit();
}

TEST_F(Transaction, TakesEverythingBackWhenItIsRolledBack) {
    insert("CPU 1", 8);
    begin();
    zeb_db_delete(handle.get(), "Processor", nullptr, nullptr, 0, 0);
    insert("CPU 2", 8);
    EXPECT_EQ(rollback(), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(Transaction, FollowsAnEarlierOne) {
    begin();
    insert("CPU 1", 8);
    rollback();
    EXPECT_EQ(begin(), 0);
    insert("CPU 2", 8);
    EXPECT_EQ(commit(), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 2"));
}

TEST_F(Transaction, DoesNotNest) {
    begin();
    insert("CPU 1", 8);
    EXPECT_EQ(begin(), SQLITE_ERROR);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: begin a transaction: cannot start a transaction "
                                       "within a transaction"));
    EXPECT_EQ(commit(), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(Transaction, MustBeOpenToBeCommitted) {
    EXPECT_EQ(commit(), SQLITE_ERROR);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: commit: cannot commit - no transaction is active"));
}

TEST_F(Transaction, MustBeOpenToBeRolledBack) {
    EXPECT_EQ(rollback(), SQLITE_ERROR);
    EXPECT_THAT(log.lines,
                ElementsAre("ERROR: inventory database: roll back: cannot rollback - no transaction is active"));
}

TEST_F(Transaction, StaysOpenWhenItCannotBeRolledBack) {
    begin();
    insert("CPU 1", 8);
    sqlite3_set_authorizer(
        connection,
        [](void*, int action, const char*, const char*, const char*, const char*) {
            return action == SQLITE_TRANSACTION ? SQLITE_DENY : SQLITE_OK;
        },
        nullptr);
    EXPECT_EQ(rollback(), SQLITE_AUTH);
    sqlite3_set_authorizer(connection, nullptr, nullptr);
    sqlite3_exec(connection, "ROLLBACK", nullptr, nullptr, nullptr);
    EXPECT_EQ(insert("CPU 2", 8), SQLITE_ABORT) << "the caller still counts on the transaction";
}

TEST_F(Transaction, GoesOnAfterARefusedRow) {
    begin();
    insert("CPU 1", 8);
    const content_ptr content = new_content();
    EXPECT_NE(zeb_db_insert(handle.get(), "Fan", content.get(), 0, nullptr), 0);
    EXPECT_EQ(insert("CPU 2", 8), 0);
    EXPECT_EQ(commit(), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1", "CPU 2"));
}

TEST_F(Transaction, RefusesANullHandle) {
    EXPECT_EQ(zeb_db_begin_transaction(nullptr), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_commit_transaction(nullptr), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_rollback_transaction(nullptr), SQLITE_MISUSE);
}

TEST_F(Transaction, IsRefusedToASecondHandleWhileOneIsOpen) {
    const handle_ptr other = open();
    sqlite3_busy_timeout(connection_of_newest(), 10);
    begin();
    EXPECT_EQ(zeb_db_begin_transaction(other.get()), SQLITE_BUSY);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: begin a transaction: database is locked"));
}

TEST_F(Transaction, WaitsForTheOneOfAnotherHandleToEnd) {
    const handle_ptr other = open();
    begin();
    insert("CPU 1", 8);
    std::thread committing([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        EXPECT_EQ(commit(), 0);
    });
    EXPECT_EQ(zeb_db_begin_transaction(other.get()), 0);
    committing.join();
    EXPECT_EQ(insert(other.get(), "CPU 2", 8), 0);
    EXPECT_EQ(zeb_db_commit_transaction(other.get()), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1", "CPU 2"));
}

TEST_F(Transaction, KeepsRowsOfOtherHandlesOutWhileItIsOpen) {
    const handle_ptr other = open();
    sqlite3_busy_timeout(connection_of_newest(), 10);
    begin();
    EXPECT_EQ(insert(other.get(), "CPU 2", 8), SQLITE_BUSY);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: insert into Processor: database is locked"));
}

TEST_F(Transaction, StaysOpenWhenAReaderHoldsUpItsCommit) {
    const handle_ptr reader = open();
    insert("CPU 1", 8);
    const char* const columns[] = {"Id"};
    zeb_db_result_t* reading = nullptr;
    ASSERT_EQ(zeb_db_query(reader.get(), "Processor", columns, 1, nullptr, nullptr, 0, nullptr, &reading), 0);
    result_ptr result(reading);
    ASSERT_EQ(zeb_db_result_step(reading), 9);
    sqlite3_busy_timeout(connection, 10);
    begin();
    insert("CPU 2", 8);
    EXPECT_EQ(commit(), SQLITE_BUSY);
    result.reset();
    EXPECT_EQ(commit(), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1", "CPU 2"));
}

// SQLite gives up the whole transaction when there is no room left for a page. What came after it would be permanent
// at once, although the caller still counts on taking everything back.
TEST_F(Transaction, ThatIsNoneCannotBeCommittedAndStopsNoRow) {
    EXPECT_EQ(commit(), SQLITE_ERROR);
    EXPECT_EQ(insert("CPU 1", 8), 0);
}

class LostTransaction : public Transaction {
protected:
    LostTransaction() {
        insert("kept", 8);
        begin();
        insert("lost", 8);
    }

    void fill_up() {
        leave_room_for(0);
        const std::string big(100000, 'x');
        failure = insert(big, 8);
    }

    void leave_room_for(int pages) {
        const std::string sql =
            "PRAGMA max_page_count = " + std::to_string(std::stoi(rows("PRAGMA page_count").at(0)) + pages);
        ASSERT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    }

    int failure = 0;
};

TEST_F(LostTransaction, IsToldByTheRowThatFindsNoRoom) {
    fill_up();
    EXPECT_EQ(failure, SQLITE_FULL);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: insert into Processor: database or disk is full"));
    EXPECT_NE(sqlite3_get_autocommit(connection), 0) << "the transaction was not lost after all";
}

TEST_F(LostTransaction, RefusesFurtherRows) {
    fill_up();
    EXPECT_EQ(insert("later", 8), SQLITE_ABORT);
    EXPECT_EQ(log.lines.back(),
              "ERROR: inventory database: insert into Processor: the transaction was rolled back by an "
              "earlier error");
    EXPECT_THAT(sockets(), ElementsAre("kept"));
}

TEST_F(LostTransaction, RefusesFurtherRowsAlsoBehindASecondBeginThatWasRefused) {
    EXPECT_EQ(begin(), SQLITE_ERROR);
    fill_up();
    EXPECT_EQ(insert("later", 8), SQLITE_ABORT);
}

TEST_F(LostTransaction, RefusesToDelete) {
    fill_up();
    EXPECT_EQ(zeb_db_delete(handle.get(), "Processor", nullptr, nullptr, 0, 0), SQLITE_ABORT);
    EXPECT_EQ(log.lines.back(),
              "ERROR: inventory database: delete from Processor: the transaction was rolled back by an "
              "earlier error");
    EXPECT_THAT(sockets(), ElementsAre("kept"));
}

TEST_F(LostTransaction, CannotBeCommitted) {
    fill_up();
    EXPECT_EQ(commit(), SQLITE_ABORT);
    EXPECT_EQ(log.lines.back(),
              "ERROR: inventory database: commit: the transaction was rolled back by an earlier error");
    EXPECT_THAT(sockets(), ElementsAre("kept"));
}

TEST_F(LostTransaction, EndsWhenItIsRolledBack) {
    fill_up();
    EXPECT_EQ(rollback(), 0);
    EXPECT_EQ(rollback(), SQLITE_ERROR) << "it was still open";
    EXPECT_THAT(sockets(), ElementsAre("kept"));
}

TEST_F(LostTransaction, IsFollowedByAnotherOnceThereIsRoom) {
    fill_up();
    rollback();
    leave_room_for(100);
    EXPECT_EQ(begin(), 0);
    EXPECT_EQ(insert("new", 8), 0);
    EXPECT_EQ(commit(), 0);
    EXPECT_THAT(sockets(), ElementsAre("kept", "new"));
}

/// The kernel refuses to let any file of the process grow beyond a size as long as this lives.
class file_size_limit {
public:
    explicit file_size_limit(std::uintmax_t bytes) {
        usual_handler_ = signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &usual_);
        rlimit limit = usual_;
        limit.rlim_cur = static_cast<rlim_t>(bytes);
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~file_size_limit() {
        setrlimit(RLIMIT_FSIZE, &usual_);
        signal(SIGXFSZ, usual_handler_);
    }
    file_size_limit(const file_size_limit&) = delete;
    file_size_limit& operator=(const file_size_limit&) = delete;

private:
    rlimit usual_ = {};
    void (*usual_handler_)(int) = nullptr;
};

TEST_F(LostTransaction, LeavesTheDatabaseAsItWasWhenTheKernelRefusesToWrite) {
    const std::string big(1000000, 'x');
    {
        const file_size_limit limit(std::filesystem::file_size(path) + 100000);
        int rc = 0;
        for (int i = 0; i < 100 && rc == 0; ++i) {  // SQLite keeps the first ones in memory
            rc = insert(big, 8);
        }
        EXPECT_NE(rc, 0);
        EXPECT_EQ(insert("later", 8), SQLITE_ABORT);
        EXPECT_EQ(commit(), SQLITE_ABORT);
        EXPECT_EQ(rollback(), 0);
    }
    EXPECT_THAT(sockets(), ElementsAre("kept"));
    EXPECT_THAT(rows("PRAGMA integrity_check"), ElementsAre("ok"));
}

TEST_F(LostTransaction, LeavesTheDatabaseAsItWasWhenTheKernelRefusesToCommit) {
    const std::string big(1000000, 'x');
    {
        const file_size_limit limit(std::filesystem::file_size(path) + 100000);
        ASSERT_EQ(insert(big, 8), 0);
        EXPECT_NE(commit(), 0);
        EXPECT_EQ(insert("later", 8), SQLITE_ABORT);
        EXPECT_EQ(rollback(), 0);
    }
    EXPECT_THAT(sockets(), ElementsAre("kept"));
    EXPECT_THAT(rows("PRAGMA integrity_check"), ElementsAre("ok"));
}

}  // namespace
