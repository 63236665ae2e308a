// SPDX-License-Identifier: Apache-2.0

#include "platform/database_test.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

constexpr int row_available = 9;

class QueryDatabase : public DatabaseTest {
protected:
    QueryDatabase() {
        insert("CPU 1", 8);
        insert("CPU 2", 16);
        insert("CPU 3", 4);
    }

    result_ptr query(const std::vector<const char*>& columns, const char* condition = nullptr,
                     const std::vector<const char*>& arguments = {}, const char* order_by = nullptr) {
        zeb_db_result_t* result = nullptr;
        code = zeb_db_query(handle.get(), "Processor", columns.data(), static_cast<unsigned>(columns.size()), condition,
                            arguments.data(), static_cast<unsigned>(arguments.size()), order_by, &result);
        return result_ptr(result);
    }

    static std::uint32_t number(const result_ptr& result, unsigned column) {
        std::uint32_t value = 0;
        EXPECT_EQ(zeb_db_result_column_uint(result.get(), column, &value), 0);
        return value;
    }

    /// The first column of every row to come.
    static std::vector<std::uint32_t> numbers(const result_ptr& result) {
        std::vector<std::uint32_t> found;
        while (zeb_db_result_step(result.get()) == row_available) {
            found.push_back(number(result, 0));
        }
        return found;
    }

    int code = -1;
};

TEST_F(QueryDatabase, FindsEveryRowWithoutACondition) {
    EXPECT_THAT(numbers(query({"CoreCount"})), ElementsAre(8, 16, 4));
    EXPECT_EQ(code, 0);
}

TEST_F(QueryDatabase, FindsNothingInAnEmptyTable) {
    zeb_db_delete(handle.get(), "Processor", nullptr, nullptr, 0, 0);
    EXPECT_THAT(numbers(query({"CoreCount"})), IsEmpty());
    EXPECT_EQ(code, 0);
}

TEST_F(QueryDatabase, GivesTheColumnsInTheOrderAskedFor) {
    const result_ptr result = query({"CoreCount", "Id"});
    ASSERT_EQ(zeb_db_result_step(result.get()), row_available);
    EXPECT_EQ(number(result, 0), 8U);
    EXPECT_EQ(number(result, 1), 1U);
}

TEST_F(QueryDatabase, KeepsToTheCondition) {
    EXPECT_THAT(numbers(query({"CoreCount"}, "CoreCount=16 AND Id=2")), ElementsAre(16));
}

TEST_F(QueryDatabase, FillsTheArgumentsIntoTheCondition) {
    EXPECT_THAT(numbers(query({"CoreCount"}, "Socket = ? OR CoreCount = ?", {"CPU 1", "4"})), ElementsAre(8, 4));
}

TEST_F(QueryDatabase, KeepsACopyOfItsArguments) {
    std::string socket = "CPU 2";
    const result_ptr result = query({"CoreCount"}, "Socket = ?", {socket.c_str()});
    socket[4] = '9';
    EXPECT_THAT(numbers(result), ElementsAre(16));
}

TEST_F(QueryDatabase, OrdersTheRows) {
    EXPECT_THAT(numbers(query({"CoreCount"}, nullptr, {}, "CoreCount DESC")), ElementsAre(16, 8, 4));
}

TEST_F(QueryDatabase, RefusesAnUnknownColumn) {
    EXPECT_EQ(query({"Fan"}), nullptr);
    EXPECT_EQ(code, SQLITE_ERROR);
    // Later versions of SQLite say more.
    EXPECT_THAT(log.lines,
                ElementsAre(MatchesRegex("ERROR: inventory database: query Processor: no such column: "
                                         "(Fan|\"Fan\" - should this be a string literal in single-quotes\\?)")));
}

TEST_F(QueryDatabase, RefusesAnUnknownTable) {
    const char* const columns[] = {"Id"};
    zeb_db_result_t* result = nullptr;
    EXPECT_EQ(zeb_db_query(handle.get(), "Fan", columns, 1, nullptr, nullptr, 0, nullptr, &result), SQLITE_ERROR);
    EXPECT_EQ(result, nullptr);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: query Fan: no such table: Fan"));
}

TEST_F(QueryDatabase, RefusesMoreArgumentsThanTheConditionHasPlacesFor) {
    EXPECT_EQ(query({"CoreCount"}, "Socket = ?", {"CPU 1", "CPU 2"}), nullptr);
    EXPECT_EQ(code, SQLITE_RANGE);
}

TEST_F(QueryDatabase, StepsToADoneCodeBehindTheLastRow) {
    const result_ptr result = query({"CoreCount"}, "Id = 1");
    EXPECT_EQ(zeb_db_result_step(result.get()), row_available);
    EXPECT_EQ(zeb_db_result_step(result.get()), SQLITE_DONE);
}

TEST_F(QueryDatabase, StaysBehindTheLastRow) {
    const result_ptr result = query({"CoreCount"}, "Id = 1");
    EXPECT_THAT(numbers(result), ElementsAre(8));
    EXPECT_EQ(zeb_db_result_step(result.get()), SQLITE_DONE);
    EXPECT_EQ(zeb_db_result_step(result.get()), SQLITE_DONE);
}

// SQLite's own code for an interrupted statement is the one that stands for a row here.
TEST_F(QueryDatabase, TakesAnInterruptedStatementForNoRow) {
    static_assert(SQLITE_INTERRUPT == row_available);
    const result_ptr result = query({"CoreCount"});
    ASSERT_EQ(zeb_db_result_step(result.get()), row_available);
    sqlite3_interrupt(connection);
    EXPECT_EQ(zeb_db_result_step(result.get()), SQLITE_ERROR);
    EXPECT_EQ(sqlite3_errcode(connection), SQLITE_INTERRUPT);
}

TEST_F(QueryDatabase, StaysAtAnError) {
    const result_ptr result = query({"CoreCount"});
    ASSERT_EQ(zeb_db_result_step(result.get()), row_available);
    sqlite3_interrupt(connection);
    ASSERT_EQ(zeb_db_result_step(result.get()), SQLITE_ERROR);
    EXPECT_EQ(zeb_db_result_step(result.get()), SQLITE_ERROR);
}

TEST_F(QueryDatabase, GivesNoColumnBeforeTheFirstRow) {
    const result_ptr result = query({"CoreCount"});
    std::uint32_t value = 42;
    EXPECT_EQ(zeb_db_result_column_uint(result.get(), 0, &value), SQLITE_MISUSE);
    EXPECT_EQ(value, 42U);
}

TEST_F(QueryDatabase, GivesNoColumnBehindTheLastRow) {
    const result_ptr result = query({"CoreCount"});
    numbers(result);
    std::uint32_t value = 42;
    EXPECT_EQ(zeb_db_result_column_uint(result.get(), 0, &value), SQLITE_MISUSE);
    EXPECT_EQ(value, 42U);
}

TEST_F(QueryDatabase, GivesNoColumnThatWasNotAskedFor) {
    const result_ptr result = query({"CoreCount"});
    ASSERT_EQ(zeb_db_result_step(result.get()), row_available);
    std::uint32_t value = 42;
    EXPECT_EQ(zeb_db_result_column_uint(result.get(), 1, &value), SQLITE_RANGE);
    EXPECT_EQ(zeb_db_result_column_uint(result.get(), 0x80000000U, &value), SQLITE_RANGE);
    EXPECT_EQ(value, 42U);
}

TEST_F(QueryDatabase, GivesNoNumberForNull) {
    const result_ptr result = query({"ThreadCount"});
    ASSERT_EQ(zeb_db_result_step(result.get()), row_available);
    std::uint32_t value = 42;
    EXPECT_EQ(zeb_db_result_column_uint(result.get(), 0, &value), SQLITE_MISMATCH);
    EXPECT_EQ(value, 42U);
}

TEST_F(QueryDatabase, GivesNoNumberForText) {
    const result_ptr result = query({"Socket"});
    ASSERT_EQ(zeb_db_result_step(result.get()), row_available);
    std::uint32_t value = 42;
    EXPECT_EQ(zeb_db_result_column_uint(result.get(), 0, &value), SQLITE_MISMATCH);
    EXPECT_EQ(value, 42U);
}

TEST_F(QueryDatabase, GivesTheWholeRangeOfUnsigned32BitNumbers) {
    insert("CPU 4", 0xFFFFFFFF);
    EXPECT_THAT(numbers(query({"CoreCount"}, "Id = 4")), ElementsAre(0xFFFFFFFF));
}

TEST_F(QueryDatabase, CutsWiderNumbersToTheirLow32Bits) {
    const content_ptr content = new_content();
    zeb_db_content_put_uint64(content.get(), "ProcId", 0x8000000100000002);
    ASSERT_EQ(zeb_db_insert(handle.get(), "Processor", content.get(), 0, nullptr), 0);
    EXPECT_THAT(numbers(query({"ProcId"}, "Id = 4")), ElementsAre(2));
}

TEST_F(QueryDatabase, RefusesNulls) {
    const char* const columns[] = {"Id", nullptr};
    zeb_db_result_t* result = nullptr;
    EXPECT_EQ(zeb_db_query(nullptr, "PCIs", columns, 1, nullptr, nullptr, 0, nullptr, &result), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_query(handle.get(), nullptr, columns, 1, nullptr, nullptr, 0, nullptr, &result), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_query(handle.get(), "PCIs", nullptr, 1, nullptr, nullptr, 0, nullptr, &result), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_query(handle.get(), "PCIs", columns, 0, nullptr, nullptr, 0, nullptr, &result), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_query(handle.get(), "PCIs", columns, 2, nullptr, nullptr, 0, nullptr, &result), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_query(handle.get(), "PCIs", columns, 1, "Id = ?", nullptr, 1, nullptr, &result), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_query(handle.get(), "PCIs", columns, 1, nullptr, nullptr, 0, nullptr, nullptr), SQLITE_MISUSE);
    EXPECT_EQ(result, nullptr);
}

TEST_F(QueryDatabase, StepsAndReadsNoNullResult) {
    std::uint32_t value = 42;
    EXPECT_EQ(zeb_db_result_step(nullptr), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_result_column_uint(nullptr, 0, &value), SQLITE_MISUSE);
    zeb_db_free_result(nullptr);
    EXPECT_EQ(value, 42U);
}

TEST_F(QueryDatabase, StoresNoColumnThroughNull) {
    const result_ptr result = query({"CoreCount"});
    ASSERT_EQ(zeb_db_result_step(result.get()), row_available);
    EXPECT_EQ(zeb_db_result_column_uint(result.get(), 0, nullptr), SQLITE_MISUSE);
}

}  // namespace
