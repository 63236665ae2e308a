// SPDX-License-Identifier: Apache-2.0

// Each function of the database client and of the inventory service that needs memory says so when there is none, and
// has done nothing.

#include "platform/lack_of_memory.h"

#include <inventory_service.h>

#include <new>

#include "platform/database_test.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::IsNull;
using testing::Pointee;
using testing::StrEq;

namespace {

// Longer than what a string holds without memory of its own.
constexpr const char* long_condition = "Socket = ? AND Socket <> 'a socket that is nowhere'";

class LackOfMemory : public DatabaseTest {
protected:
    int erase(const char* table) {
        const char* const arguments[] = {"CPU 1"};
        return zeb_db_delete(handle.get(), table, long_condition, arguments, 1, 0);
    }

    int query(const char* table, const char* order_by, result_ptr& rows) {
        const char* const columns[] = {"Socket", "CoreCount"};
        const char* const arguments[] = {"CPU 1"};
        zeb_db_result_t* result = nullptr;
        const int code = zeb_db_query(handle.get(), table, columns, 2, long_condition, arguments, 1, order_by, &result);
        rows.reset(result);
        return code;
    }
};

TEST_F(LackOfMemory, IsToldByABufferThatCannotBeMade) {
    const failing_allocation memory(1);
    EXPECT_THAT(zeb_db_get_content_values(), IsNull());
}

TEST_F(LackOfMemory, IsToldByANumberThatCannotBePut) {
    const content_ptr content = new_content();
    expect_lack_of_memory_told(SQLITE_OK, [&] {
        return zeb_db_content_put_uint(content.get(), "AColumnThatIsLongerThanWhatAStringHolds", 8);
    });
}

TEST_F(LackOfMemory, IsToldByAnInsert) {
    const content_ptr content = new_content();
    zeb_db_content_put_text(content.get(), "Socket", "CPU 1");
    zeb_db_content_put_uint(content.get(), "CoreCount", 8);
    expect_lack_of_memory_told(SQLITE_OK,
                               [&] { return zeb_db_insert(handle.get(), "Processor", content.get(), 0, nullptr); });
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(LackOfMemory, IsRememberedByTheBufferWhateverIsPutBehind) {
    const content_ptr content = new_content();
    call_failing(1, [&] { return zeb_db_content_put_text(content.get(), "Socket", "CPU 1"); });
    EXPECT_EQ(zeb_db_content_put_uint(content.get(), "CoreCount", 8), SQLITE_OK);
    EXPECT_EQ(zeb_db_insert(handle.get(), "Processor", content.get(), 0, nullptr), SQLITE_NOMEM);
    EXPECT_THAT(sockets(), IsEmpty());
}

TEST_F(LackOfMemory, IsToldByAnInsertOfNoColumns) {
    const content_ptr content = new_content();
    expect_lack_of_memory_told(SQLITE_OK,
                               [&] { return zeb_db_insert(handle.get(), "Processor", content.get(), 0, nullptr); });
    EXPECT_THAT(sockets(), ElementsAre("null"));
}

TEST_F(LackOfMemory, IsToldByAnInsertThatIsRefused) {
    const content_ptr content = new_content();
    expect_lack_of_memory_told(SQLITE_ERROR,
                               [&] { return zeb_db_insert(handle.get(), "Fan", content.get(), 0, nullptr); });
}

TEST_F(LackOfMemory, IsToldByADelete) {
    ASSERT_EQ(insert("CPU 1", 8), 0);
    expect_lack_of_memory_told(SQLITE_OK, [&] { return erase("Processor"); });
    EXPECT_THAT(sockets(), IsEmpty());
}

TEST_F(LackOfMemory, IsToldByADeleteThatIsRefused) {
    expect_lack_of_memory_told(SQLITE_ERROR, [&] { return erase("Fan"); });
}

TEST_F(LackOfMemory, IsToldByAQuery) {
    ASSERT_EQ(insert("CPU 1", 8), 0);
    result_ptr rows;
    expect_lack_of_memory_told(SQLITE_OK, [&] { return query("Processor", "CoreCount, Socket", rows); });
    EXPECT_EQ(zeb_db_result_step(rows.get()), 9);
}

TEST_F(LackOfMemory, IsToldByAQueryThatIsRefused) {
    result_ptr rows;
    expect_lack_of_memory_told(SQLITE_ERROR, [&] { return query("Fan", nullptr, rows); });
    EXPECT_EQ(rows, nullptr);
}

TEST_F(LackOfMemory, IsToldByAStepThatIsInterrupted) {
    ASSERT_EQ(insert("CPU 1", 8), 0);
    ASSERT_EQ(insert("CPU 1", 8), 0);
    result_ptr rows;
    const auto prepare = [&] {
        EXPECT_EQ(query("Processor", nullptr, rows), 0);
        EXPECT_EQ(zeb_db_result_step(rows.get()), 9);
        sqlite3_interrupt(connection);
    };
    const auto step = [&] { return zeb_db_result_step(rows.get()); };
    expect_lack_of_memory_told(SQLITE_ERROR, step, prepare);
}

TEST_F(LackOfMemory, IsToldByATransactionThatIsRefused) {
    expect_lack_of_memory_told(SQLITE_ERROR, [&] { return zeb_db_rollback_transaction(handle.get()); });
}

TEST_F(LackOfMemory, IsToldByADatabaseThatIsOpened) {
    handle_ptr other;
    expect_lack_of_memory_told(SQLITE_OK, [&] {
        _zeb_db_handle_t* opened = nullptr;
        const int code = zeb_db_open(path.c_str(), &opened);
        other.reset(opened);
        return code;
    });
    EXPECT_NE(other, nullptr);
}

TEST_F(LackOfMemory, IsToldByADatabaseThatCannotBeOpened) {
    const std::string missing = folder.file("missing/inventory.db");
    expect_lack_of_memory_told(SQLITE_CANTOPEN, [&] {
        _zeb_db_handle_t* opened = nullptr;
        const int code = zeb_db_open(missing.c_str(), &opened);
        EXPECT_EQ(opened, nullptr);
        return code;
    });
}

TEST_F(LackOfMemory, IsToldByTheAdapters) {
    rows("INSERT INTO PCIs (DevKey, FunKey) VALUES (1, 7)");
    expect_lack_of_memory_told(SQLITE_OK, [&] { return parse_aim(handle.get(), 3); });
    EXPECT_THAT(rows("SELECT DevKey, PCIFuncKey, AimArgument FROM PCIAdapter"), ElementsAre("1|7|3"));
}

TEST_F(LackOfMemory, IsToldByTheInMemoryTables) {
    rows("INSERT INTO PCIs (FunKey) VALUES (7)");
    expect_lack_of_memory_told(SQLITE_OK, [&] { return rebuild_tables_in_memory(handle.get()); });
    EXPECT_THAT(run_sql(connection, "SELECT FunKey FROM memory.PCIs"), ElementsAre("7"));
}

TEST_F(LackOfMemory, IsLogged) {
    call_failing(1, [this] { return erase("Processor"); });
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: out of memory"));
}

TEST_F(LackOfMemory, IsKeptWhenTheLogHasNoneEither) {
    vonk_log::set_sink([](void*, vonk_log::level, const char*) { throw std::bad_alloc(); }, nullptr);
    const failing_allocation memory(1);
    EXPECT_EQ(erase("Processor"), SQLITE_NOMEM);
    EXPECT_THAT(zeb_db_first_failure(), Pointee(AllOf(Field(&zeb_db_failure_t::code, SQLITE_NOMEM),
                                                      Field(&zeb_db_failure_t::text, StrEq("out of memory")))));
}

}  // namespace
