// SPDX-License-Identifier: Apache-2.0

#include "sources/inventory.h"

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <zeb_db_workstation.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "console/failure.h"
#include "support/scratch_folder.h"
#include "support/sqlite_database.h"
#include "tools/memory_rows.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using testing::ThrowsMessage;

class Inventory : public testing::Test {
protected:
    inventory_value value_of(const inventory_kind& kind, const char* column) const {
        const inventory_table table = rows_.read().read(kind);
        return inventory_row(table, 0)[column];
    }

    memory_rows rows_;
};

TEST_F(Inventory, HasATableOfEveryKindInTheirOrder) {
    const std::vector<inventory_table> tables = rows_.read().read_all();
    ASSERT_EQ(tables.size(), std::size(kinds::all));
    for (std::size_t i = 0; i < tables.size(); ++i) {
        EXPECT_EQ(tables[i].kind, kinds::all[i]);
    }
}

TEST_F(Inventory, HasRowsInTheOrderOfTheirIds) {
    rows_.execute("INSERT INTO Memory (Id, DevLocator) VALUES (9, 'A9'), (2, 'A2')");
    const inventory_table memory = rows_.read().read(kinds::memory);
    EXPECT_EQ(inventory_row(memory, 0)["DevLocator"], inventory_value("A2"));
    EXPECT_EQ(inventory_row(memory, 1)["DevLocator"], inventory_value("A9"));
}

TEST_F(Inventory, HasOnlyTheRowsBehindAnId) {
    rows_.execute("INSERT INTO Memory (Id) VALUES (1), (2), (3)");
    EXPECT_EQ(rows_.read().read_after(kinds::memory, 1).rows.size(), 2u);
    const inventory rows = rows_.read();
    EXPECT_EQ(rows.read_after(kinds::memory, 2).rows.size(), 1u);
    EXPECT_EQ(rows.read_after(kinds::memory, 0).rows.size(), 3u);
    EXPECT_EQ(rows.count(kinds::memory), 3);
}

TEST_F(Inventory, HasAValueForEveryColumnOfARow) {
    rows_.execute("INSERT INTO Memory (Id) VALUES (1)");
    const inventory_table memory = rows_.read().read(kinds::memory);
    EXPECT_EQ(memory.rows[0].size(), memory.columns.size());
}

TEST_F(Inventory, IsRefusedWhenItsReadingIsInterrupted) {
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open_v2(rows_.database.sqlite_name().c_str(), &connection, SQLITE_OPEN_READWRITE, nullptr),
              SQLITE_OK);
    const inventory rows("the rows", connection);
    const auto interrupt = [](void*) { return 1; };
    sqlite3_progress_handler(connection, 1, interrupt, nullptr);
    EXPECT_THAT([&rows] { rows.count(kinds::memory); }, ThrowsMessage<failure>("cannot read the rows: interrupted"));
}

TEST_F(Inventory, HasUnsignedCapacitiesAndSignedRowIds) {
    rows_.execute("INSERT INTO Memory (Capacity, ArrayId) VALUES (-1, -2)");
    EXPECT_EQ(value_of(kinds::memory, "Capacity"), inventory_value(std::uint64_t{18446744073709551615u}));
    EXPECT_EQ(value_of(kinds::memory, "ArrayId"), inventory_value(std::int64_t{-2}));
}

TEST_F(Inventory, HasNothingInAColumnThatWasNeverPut) {
    rows_.execute("INSERT INTO Memory (DevLocator) VALUES ('')");
    EXPECT_EQ(value_of(kinds::memory, "PartNo"), inventory_value());
    EXPECT_EQ(value_of(kinds::memory, "DevLocator"), inventory_value(""));
}

TEST_F(Inventory, HasTextsInUtf8) {
    rows_.execute("INSERT INTO Memory (PartNo) VALUES (CAST(x'22FF5C0A' AS TEXT))");
    EXPECT_EQ(value_of(kinds::memory, "PartNo"), inventory_value("\"\uFFFD\\\n"));
}

TEST_F(Inventory, HasNamesOfColumnsInUtf8) {
    rows_.execute("ALTER TABLE Memory ADD COLUMN \"a\xFF\" TEXT");
    EXPECT_EQ(rows_.read().read(kinds::memory).columns.back(), "a\uFFFD");
}

TEST_F(Inventory, HasTextsWithZerosInThem) {
    rows_.execute("INSERT INTO Memory (PartNo) VALUES (CAST(x'610062' AS TEXT))");
    EXPECT_EQ(value_of(kinds::memory, "PartNo"), inventory_value(std::string("a\0b", 3)));
}

TEST_F(Inventory, IsRefusedWhenItLacksATable) {
    rows_.execute("DROP TABLE Processor");
    try {
        rows_.read().read_all();
        ADD_FAILURE() << "it was read";
    } catch (const failure& problem) {
        EXPECT_STREQ(problem.what(), "cannot read the inventory: no such table: Processor; it holds no inventory");
    }
}

TEST_F(Inventory, OfANewerVersionIsRefused) {
    rows_.execute("PRAGMA user_version = 1000000");
    try {
        rows_.read();
        ADD_FAILURE() << "it was read";
    } catch (const failure& problem) {
        EXPECT_EQ(problem.what(),
                  "cannot read the inventory: it was made by a newer version (its schema is version "
                  "1000000, this one knows " +
                      std::to_string(zeb_db_schema_version()) + " and earlier); use that version or another database");
    }
}

TEST(InventoryFile, OfANewerVersionIsRefused) {
    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    std::ofstream(path).flush();
    sqlite_database(path).run("CREATE TABLE Memory (DevLocator TEXT); PRAGMA user_version = 1000000");
    EXPECT_THAT([&] { inventory(path, database_naming::argument); },
                ThrowsMessage<failure>(StartsWith("cannot read '" + path + "': it was made by a newer version")));
}

TEST(InventoryFile, HasASourceWithoutANameWhereNoneIsNoted) {
    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    std::ofstream(path).flush();
    sqlite_database(path).run(
        "CREATE TABLE Source (Name TEXT, Bytes INTEGER, Sha256 TEXT, LoadedAt INTEGER); INSERT INTO Source (Bytes) "
        "VALUES (7)");
    const auto source = inventory(path, database_naming::argument).source();
    ASSERT_TRUE(source.has_value());
    EXPECT_EQ(source->name, "");
    EXPECT_EQ(source->bytes, 7u);
}

TEST(InventoryFile, HasNoFunctionRunThatItsSchemaNames) {
    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    int (*const add_function)(sqlite3*, const char**, const sqlite3_api_routines*) = [](sqlite3* opened, const char**,
                                                                                        const sqlite3_api_routines*) {
        const auto one = [](sqlite3_context* context, int, sqlite3_value**) { sqlite3_result_int(context, 1); };
        return sqlite3_create_function(opened, "one", 0, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, one, nullptr,
                                       nullptr);
    };
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(add_function));
    std::ofstream(path).flush();
    sqlite_database(path).run(
        "CREATE TABLE Source (Name AS (one()), Bytes, Sha256, LoadedAt); INSERT INTO Source (Bytes) VALUES (7)");
    EXPECT_THAT([&] { inventory(path, database_naming::argument); },
                ThrowsMessage<failure>(HasSubstr("unsafe use of one()")));
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(add_function));
}

TEST(InventoryFile, IsWaitedForWhereAnotherProgramHasIt) {
    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    std::ofstream(path).flush();
    sqlite_database other(path);
    other.run("CREATE TABLE Memory (DevLocator TEXT); BEGIN EXCLUSIVE");
    std::thread releasing([&other] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        other.run("COMMIT");
    });
    EXPECT_NO_THROW(inventory(path, database_naming::argument));
    releasing.join();
}

TEST(InventoryFile, ThatIsNoDatabaseIsRefusedWhenItIsOpened) {
    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    std::ofstream(path) << std::string(4096, 'x');
    EXPECT_THAT([&] { inventory(path, database_naming::argument); },
                ThrowsMessage<failure>("cannot read '" + path + "': file is not a database"));
}

TEST_F(Inventory, WithAComputedColumnIsRefused) {
    rows_.execute("ALTER TABLE Memory ADD COLUMN Big AS (zeroblob(1000000000))");
    rows_.execute("INSERT INTO Memory (DevLocator) VALUES ('A1')");
    try {
        rows_.read().read(kinds::memory);
        ADD_FAILURE() << "it was read";
    } catch (const failure& problem) {
        EXPECT_STREQ(
            problem.what(),
            "cannot read the inventory: the column 'Big' of its table Memory holds nothing but is computed; it "
            "holds no inventory");
    }
}

TEST(LargeInventory, TakesTheMemoryOfItsValuesAndTheirTexts) {
    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    std::ofstream(path).flush();
    sqlite_database(path).run(
        "CREATE TABLE Memory (Size INTEGER, DevLocator TEXT); INSERT INTO Memory VALUES (1, 'A1')");
    const std::size_t bytes = 2 * sizeof(inventory_value) + 2;
    EXPECT_NO_THROW(inventory(path, database_naming::argument, bytes).read(kinds::memory));
    EXPECT_THROW(inventory(path, database_naming::argument, bytes - 1).read(kinds::memory), failure);
    EXPECT_EQ(inventory::most_bytes, std::size_t{536'870'912});
}

TEST(LargeInventory, IsReadAsFarAsItsTablesMayTakeMemory) {
    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    _zeb_db_handle_t* handle = nullptr;
    ASSERT_EQ(zeb_db_open(path.c_str(), &handle), 0);
    zeb_db_close(handle);
    sqlite_database(path).run("INSERT INTO Memory (PartNo) VALUES (CAST(zeroblob(700000) AS TEXT))");
    EXPECT_EQ(inventory(path, database_naming::argument, std::size_t{1} << 20).read(kinds::memory).rows.size(), 1u);
    sqlite_database(path).run("INSERT INTO Memory (PartNo) VALUES (CAST(zeroblob(700000) AS TEXT))");
    EXPECT_THAT([&] { inventory(path, database_naming::argument, std::size_t{1} << 20).read(kinds::memory); },
                ThrowsMessage<failure>("cannot read '" + path +
                                       "': its table Memory holds more than 1 MiB; it holds no inventory"));
}
