// SPDX-License-Identifier: Apache-2.0

#include <limits>

#include "platform/database_test.h"
#include "support/allocations.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

class WriteDatabase : public DatabaseTest {
protected:
    int insert_content(std::int64_t* row_id = nullptr, const char* table = "Processor") {
        return zeb_db_insert(handle.get(), table, content.get(), 0, row_id);
    }

    /// How many statements the handle keeps.
    int statements() const {
        int count = 0;
        for (sqlite3_stmt* at = sqlite3_next_stmt(connection, nullptr); at != nullptr;
             at = sqlite3_next_stmt(connection, at)) {
            ++count;
        }
        return count;
    }

    const content_ptr content = new_content();
};

TEST_F(WriteDatabase, InsertsTextAndNumbers) {
    zeb_db_content_put_text(content.get(), "Socket", "CPU 1");
    zeb_db_content_put_uint(content.get(), "CoreCount", 8);
    zeb_db_content_put_uint64(content.get(), "ProcId", 0x000806F8BFEBFBFF);
    ASSERT_EQ(insert_content(), 0);
    EXPECT_THAT(rows("SELECT Socket, CoreCount, ProcId FROM Processor"), ElementsAre("CPU 1|8|2259465255255039"));
}

TEST_F(WriteDatabase, GivesEachTableRowIdsFromOne) {
    zeb_db_content_put_uint(content.get(), "NodeIndex", 0);
    std::vector<std::int64_t> ids(4, -1);
    insert_content(&ids[0]);
    insert_content(&ids[1]);
    insert_content(&ids[2], "Memory");
    insert_content(&ids[3]);
    EXPECT_THAT(ids, ElementsAre(1, 2, 1, 3));
    EXPECT_THAT(rows("SELECT Id FROM Processor"), ElementsAre("1", "2", "3"));
}

TEST_F(WriteDatabase, InsertsWithoutAPlaceForTheRowId) {
    zeb_db_content_put_uint(content.get(), "CoreCount", 8);
    EXPECT_EQ(insert_content(nullptr), 0);
    EXPECT_THAT(rows("SELECT CoreCount FROM Processor"), ElementsAre("8"));
}

TEST_F(WriteDatabase, LeavesColumnsNullThatWereNotPut) {
    zeb_db_content_put_uint(content.get(), "CoreCount", 8);
    ASSERT_EQ(insert_content(), 0);
    EXPECT_THAT(rows("SELECT Socket IS NULL, NodeIndex IS NULL FROM Processor"), ElementsAre("1|1"));
}

TEST_F(WriteDatabase, InsertsARowOfNullsFromAnEmptyBuffer) {
    ASSERT_EQ(insert_content(), 0);
    EXPECT_THAT(rows("SELECT Id, Socket, CoreCount FROM Processor"), ElementsAre("1|null|null"));
}

TEST_F(WriteDatabase, StoresTextAsItIs) {
    const std::string text = " O'Brien \"x\" % \xC3\xA9\n";
    zeb_db_content_put_text(content.get(), "Socket", text.c_str());
    zeb_db_content_put_text(content.get(), "SerialNo", "");
    zeb_db_content_put_text(content.get(), "PartNo", "0123");
    ASSERT_EQ(insert_content(), 0);
    EXPECT_THAT(rows("SELECT Socket, SerialNo, PartNo FROM Processor"), ElementsAre(text + "||0123"));
    EXPECT_THAT(rows("SELECT typeof(Socket), typeof(SerialNo), typeof(PartNo) FROM Processor"),
                ElementsAre("text|text|text"));
}

TEST_F(WriteDatabase, KeepsACopyOfThePutText) {
    std::string text = "CPU 1";
    zeb_db_content_put_text(content.get(), "Socket", text.c_str());
    text.assign("other");
    ASSERT_EQ(insert_content(), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(WriteDatabase, StoresUnsigned32BitNumbersAsTheyAre) {
    zeb_db_content_put_uint(content.get(), "CoreCount", std::numeric_limits<std::uint32_t>::max());
    ASSERT_EQ(insert_content(), 0);
    EXPECT_THAT(rows("SELECT CoreCount FROM Processor"), ElementsAre("4294967295"));
}

TEST_F(WriteDatabase, StoresUnsigned64BitNumbersAsSignedOnesOfTheSameBits) {
    for (const std::uint64_t value :
         {std::uint64_t{0x7FFFFFFFFFFFFFFF}, std::uint64_t{0x8000000000000000}, std::uint64_t{0xFFFFFFFFFFFFFFFF}}) {
        zeb_db_content_clear(content.get());
        zeb_db_content_put_uint64(content.get(), "ProcId", value);
        ASSERT_EQ(insert_content(), 0);
    }
    EXPECT_THAT(rows("SELECT ProcId FROM Processor ORDER BY Id"),
                ElementsAre("9223372036854775807", "-9223372036854775808", "-1"));
}

TEST_F(WriteDatabase, LeavesTheBufferAsItWas) {
    zeb_db_content_put_text(content.get(), "Socket", "CPU 1");
    ASSERT_EQ(insert_content(), 0);
    ASSERT_EQ(insert_content(), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1", "CPU 1"));
}

TEST_F(WriteDatabase, ForgetsClearedValues) {
    zeb_db_content_put_text(content.get(), "Socket", "CPU 1");
    zeb_db_content_put_uint(content.get(), "CoreCount", 8);
    zeb_db_content_clear(content.get());
    zeb_db_content_put_uint(content.get(), "ThreadCount", 16);
    ASSERT_EQ(insert_content(), 0);
    EXPECT_THAT(rows("SELECT Socket, CoreCount, ThreadCount FROM Processor"), ElementsAre("null|null|16"));
}

// A buffer keeps its memory when it is cleared: what was a text may become a number, and the other way round.
TEST_F(WriteDatabase, RefillsAClearedBufferWithValuesOfOtherTypes) {
    zeb_db_content_put_text(content.get(), "Socket", "CPU 1");
    zeb_db_content_put_uint(content.get(), "CoreCount", 8);
    zeb_db_content_clear(content.get());
    zeb_db_content_put_uint(content.get(), "CoreCount", 4);
    zeb_db_content_put_text(content.get(), "Socket", "CPU 2");
    ASSERT_EQ(insert_content(), 0);
    EXPECT_THAT(rows("SELECT Socket, CoreCount FROM Processor"), ElementsAre("CPU 2|4"));
}

TEST_F(WriteDatabase, PreparesOneStatementForRowsOfTheSameColumns) {
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(insert("CPU " + std::to_string(i), 8), 0);
    }
    EXPECT_EQ(statements(), 1);
    EXPECT_EQ(sockets().size(), 10U);
}

TEST_F(WriteDatabase, KeepsNoMoreThan64Statements) {
    constexpr unsigned sets = 200;
    const char* const columns[] = {"CoreCount", "CoreEnabled", "ThreadCount", "MaxSpeed",
                                   "CurSpeed",  "ExtClock",    "Family",      "Status"};
    std::vector<std::string> expected;
    ASSERT_EQ(zeb_db_begin_transaction(handle.get()), 0);
    for (unsigned set = 1; set <= sets; ++set) {
        zeb_db_content_clear(content.get());
        std::string row;
        for (unsigned column = 0; column < 8; ++column) {
            const bool put = (set >> column & 1U) != 0;
            if (put) {
                zeb_db_content_put_uint(content.get(), columns[column], set);
            }
            row += (column == 0 ? "" : "|") + (put ? std::to_string(set) : "null");
        }
        expected.push_back(row);
        ASSERT_EQ(insert_content(), 0);
        ASSERT_LE(statements(), 64);
    }
    ASSERT_EQ(zeb_db_commit_transaction(handle.get()), 0);
    EXPECT_EQ(rows("SELECT CoreCount, CoreEnabled, ThreadCount, MaxSpeed, CurSpeed, ExtClock, Family, Status "
                   "FROM Processor ORDER BY Id"),
              expected);
}

TEST_F(WriteDatabase, InsertsOnAfterTheSchemaHasChanged) {
    ASSERT_EQ(insert("CPU 1", 8), 0);
    sqlite3_exec(connection, "ALTER TABLE Processor ADD COLUMN Note TEXT DEFAULT 'none'", nullptr, nullptr, nullptr);
    ASSERT_EQ(insert("CPU 2", 8), 0);
    EXPECT_THAT(rows("SELECT Socket, Note FROM Processor ORDER BY Id"), ElementsAre("CPU 1|none", "CPU 2|none"));
}

TEST_F(WriteDatabase, InsertsOnAfterARefusedRow) {
    sqlite3_exec(connection, "CREATE UNIQUE INDEX one ON Processor (Socket)", nullptr, nullptr, nullptr);
    ASSERT_EQ(insert("CPU 1", 8), 0);
    EXPECT_EQ(insert("CPU 1", 8), SQLITE_CONSTRAINT);
    EXPECT_EQ(insert("CPU 2", 8), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1", "CPU 2"));
}

TEST_F(WriteDatabase, LogsWhyARowIsRefused) {
    sqlite3_exec(connection, "CREATE UNIQUE INDEX one ON Processor (Socket)", nullptr, nullptr, nullptr);
    insert("CPU 1", 8);
    insert("CPU 1", 8);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: insert into Processor: UNIQUE constraint failed: "
                                       "Processor.Socket"));
}

TEST_F(WriteDatabase, RefusesARowThatLacksAValueForWantOfMemory) {
    for (long n = 1;; ++n) {
        {
            const failing_allocation memory(n);
            const int put =
                zeb_db_content_put_text(content.get(), "Socket", "longer than what fits in a string itself");
            if (!memory.fired()) {
                break;
            }
            EXPECT_EQ(put, SQLITE_NOMEM) << n;
        }
        EXPECT_EQ(insert_content(), SQLITE_NOMEM) << n;
        EXPECT_EQ(log.lines.back(),
                  "ERROR: inventory database: insert into Processor: no memory for one of the values");
        zeb_db_content_clear(content.get());
    }
    EXPECT_THAT(log.lines, Not(IsEmpty()));
    EXPECT_EQ(insert_content(), 0);
    EXPECT_THAT(sockets(), ElementsAre("longer than what fits in a string itself"));
}

TEST_F(WriteDatabase, RefusesAnUnknownTable) {
    zeb_db_content_put_uint(content.get(), "CoreCount", 8);
    EXPECT_EQ(insert_content(nullptr, "Fan"), SQLITE_ERROR);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: insert into Fan: no such table: Fan"));
}

TEST_F(WriteDatabase, TellsTablesApartWhoseNamesGoOnInThatOfAColumn) {
    zeb_db_content_put_text(content.get(), "SerialNo", "1");
    ASSERT_EQ(zeb_db_insert(handle.get(), "Processor", content.get(), 0, nullptr), 0);
    zeb_db_content_clear(content.get());
    zeb_db_content_put_text(content.get(), "No", "1");
    EXPECT_EQ(zeb_db_insert(handle.get(), "ProcessorSerial", content.get(), 0, nullptr), SQLITE_ERROR);
}

TEST_F(WriteDatabase, RefusesAnUnknownColumn) {
    zeb_db_content_put_uint(content.get(), "Fan", 8);
    EXPECT_EQ(insert_content(), SQLITE_ERROR);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: insert into Processor: table Processor has no "
                                       "column named Fan"));
}

TEST_F(WriteDatabase, KeepsTheRowIdOfACallerWhoseRowIsRefused) {
    std::int64_t row_id = 42;
    EXPECT_NE(insert_content(&row_id, "Fan"), 0);
    EXPECT_EQ(row_id, 42);
}

TEST_F(WriteDatabase, TakesATableNameForANameOnly) {
    ASSERT_EQ(insert("CPU 1", 8), 0);
    EXPECT_EQ(zeb_db_delete(handle.get(), "Memory\"; DELETE FROM \"Processor", nullptr, nullptr, 0, 0), SQLITE_ERROR);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: delete from Memory\"; DELETE FROM \"Processor: no "
                                       "such table: Memory\"; DELETE FROM \"Processor"));
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(WriteDatabase, DeletesEveryRowWithoutACondition) {
    insert("CPU 1", 8);
    insert("CPU 2", 8);
    EXPECT_EQ(zeb_db_delete(handle.get(), "Processor", nullptr, nullptr, 0, 0), 0);
    EXPECT_THAT(sockets(), IsEmpty());
}

TEST_F(WriteDatabase, DeletesTheRowsOfACondition) {
    insert("CPU 1", 8);
    insert("CPU 2", 16);
    EXPECT_EQ(zeb_db_delete(handle.get(), "Processor", "CoreCount > 8", nullptr, 0, 0), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(WriteDatabase, FillsTheArgumentsIntoACondition) {
    insert("CPU 1", 8);
    insert("CPU 2", 8);
    insert("CPU 3", 16);
    const char* const arguments[] = {"CPU 2", "16"};
    EXPECT_EQ(zeb_db_delete(handle.get(), "Processor", "Socket = ? OR CoreCount = ?", arguments, 2, 0), 0);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(WriteDatabase, RefusesMoreArgumentsThanTheConditionHasPlacesFor) {
    insert("CPU 1", 8);
    const char* const arguments[] = {"CPU 1", "8"};
    EXPECT_EQ(zeb_db_delete(handle.get(), "Processor", "Socket = ?", arguments, 2, 0), SQLITE_RANGE);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(WriteDatabase, RefusesArgumentsOfAConditionWithoutAPlace) {
    insert("CPU 1", 8);
    const char* const arguments[] = {"CPU 1", "8"};
    EXPECT_EQ(zeb_db_delete(handle.get(), "Processor", "CoreCount = 8", arguments, 2, 0), SQLITE_RANGE);
    EXPECT_THAT(sockets(), ElementsAre("CPU 1"));
}

TEST_F(WriteDatabase, RefusesAConditionThatIsNoSql) {
    EXPECT_EQ(zeb_db_delete(handle.get(), "Processor", "CoreCount >", nullptr, 0, 0), SQLITE_ERROR);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: delete from Processor: incomplete input"));
}

TEST_F(WriteDatabase, RefusesNulls) {
    EXPECT_EQ(zeb_db_insert(nullptr, "Processor", content.get(), 0, nullptr), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_insert(handle.get(), nullptr, content.get(), 0, nullptr), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_insert(handle.get(), "Processor", nullptr, 0, nullptr), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_delete(nullptr, "Processor", nullptr, nullptr, 0, 0), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_delete(handle.get(), nullptr, nullptr, nullptr, 0, 0), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_delete(handle.get(), "Processor", "Socket = ?", nullptr, 1, 0), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_content_put_text(nullptr, "Socket", "CPU 1"), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_content_put_text(content.get(), nullptr, "CPU 1"), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_content_put_text(content.get(), "Socket", nullptr), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_content_put_uint(nullptr, "CoreCount", 8), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_content_put_uint(content.get(), nullptr, 8), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_content_put_uint64(nullptr, "ProcId", 8), SQLITE_MISUSE);
    EXPECT_EQ(zeb_db_content_put_uint64(content.get(), nullptr, 8), SQLITE_MISUSE);
}

TEST_F(WriteDatabase, PutsNothingWhenItRefusesAValue) {
    zeb_db_content_put_text(content.get(), "Socket", nullptr);
    zeb_db_content_put_uint(content.get(), nullptr, 8);
    ASSERT_EQ(insert_content(), 0);
    EXPECT_THAT(rows("SELECT Socket, CoreCount FROM Processor"), ElementsAre("null|null"));
}

TEST_F(WriteDatabase, ClearsAndReleasesNull) {
    zeb_db_content_clear(nullptr);
    zeb_db_free_content_values(nullptr);
    EXPECT_THAT(log.lines, IsEmpty());
}

}  // namespace
