// SPDX-License-Identifier: Apache-2.0

#include "platform/workstation/migration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zeb_db_workstation.h>

#include "support/scratch_folder.h"
#include "support/sqlite_database.h"

using testing::ElementsAre;
using testing::Eq;
using testing::Field;
using testing::IsEmpty;
using testing::Optional;

namespace {

constexpr const char* good_steps[] = {
    "CREATE TABLE Fan (Id INTEGER PRIMARY KEY, Speed INTEGER); CREATE INDEX BySpeed ON Fan (Speed)",
    "ALTER TABLE Fan ADD COLUMN Place TEXT",
    "ALTER TABLE Fan ADD COLUMN Blades INTEGER DEFAULT 7",
};

/// The first two of them make one change each before they fail.
constexpr const char* bad_steps[] = {
    "CREATE TABLE Fan (Id INTEGER PRIMARY KEY, Speed INTEGER)",
    "ALTER TABLE Fan ADD COLUMN Place TEXT; ALTER TABLE Pump ADD COLUMN Place TEXT",
};

constexpr database_schema first_version = {good_steps, 1};
constexpr database_schema second_version = {good_steps, 2};
constexpr database_schema third_version = {good_steps, 3};
constexpr database_schema bad_version = {bad_steps, 2};

class Migration : public testing::Test {
protected:
    Migration() {
        EXPECT_EQ(sqlite3_open(path.c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_busy_timeout(connection, 10), SQLITE_OK);
    }
    ~Migration() override { sqlite3_close(connection); }
    Migration(const Migration&) = delete;
    Migration& operator=(const Migration&) = delete;

    std::optional<refusal> take(const database_schema& schema) { return migrate(connection, schema); }

    std::vector<std::string> rows(const std::string& sql) const { return sqlite_database(path).run(sql); }
    std::vector<std::string> version() const { return rows("PRAGMA user_version"); }
    std::vector<std::string> columns() const { return rows("SELECT name FROM pragma_table_info('Fan')"); }

    const scratch_folder folder;
    const std::string path = folder.file("x.db");
    sqlite3* connection = nullptr;
};

TEST_F(Migration, TakesEveryStepOfANewDatabase) {
    EXPECT_EQ(take(third_version), std::nullopt);
    EXPECT_THAT(columns(), ElementsAre("Id", "Speed", "Place", "Blades"));
    EXPECT_THAT(version(), ElementsAre("3"));
}

TEST_F(Migration, TakesTheStepsThatAnEarlierVersionDidNotKnow) {
    ASSERT_EQ(take(first_version), std::nullopt);
    EXPECT_EQ(take(third_version), std::nullopt);
    EXPECT_THAT(columns(), ElementsAre("Id", "Speed", "Place", "Blades"));
    EXPECT_THAT(version(), ElementsAre("3"));
}

TEST_F(Migration, KeepsTheRowsThatAreThere) {
    ASSERT_EQ(take(first_version), std::nullopt);
    rows("INSERT INTO Fan (Speed) VALUES (1200)");
    EXPECT_EQ(take(third_version), std::nullopt);
    EXPECT_THAT(rows("SELECT Id, Speed, Place, Blades FROM Fan"), ElementsAre("1|1200|null|7"));
}

TEST_F(Migration, TakesNoStepTwice) {
    ASSERT_EQ(take(third_version), std::nullopt);
    EXPECT_EQ(take(third_version), std::nullopt);
    EXPECT_THAT(version(), ElementsAre("3"));
}

TEST_F(Migration, WritesNothingWhenThereIsNothingToDo) {
    ASSERT_EQ(take(second_version), std::nullopt);
    sqlite_database writer(path);
    writer.run("BEGIN IMMEDIATE");
    EXPECT_EQ(take(second_version), std::nullopt);
}

TEST_F(Migration, RefusesANewerDatabaseAndSaysWhatToDo) {
    ASSERT_EQ(take(third_version), std::nullopt);
    const auto refused = take(second_version);
    ASSERT_NE(refused, std::nullopt);
    EXPECT_EQ(refused->code, zeb_db_is_newer);
    EXPECT_EQ(
        refused->reason,
        "it was made by a newer version (its schema is version 3, this one knows 2 and earlier); use that version "
        "or another database");
    EXPECT_THAT(version(), ElementsAre("3"));
}

TEST_F(Migration, RefusesAVersionBelowTheFirst) {
    rows("PRAGMA user_version=-1");
    EXPECT_THAT(take(first_version), Optional(Field(&refusal::code, Eq(zeb_db_is_newer))));
}

TEST_F(Migration, UndoesTheStepThatFails) {
    take(bad_version);
    EXPECT_THAT(columns(), ElementsAre("Id", "Speed"));
}

TEST_F(Migration, KeepsTheStepsBeforeTheOneThatFails) {
    take(bad_version);
    EXPECT_THAT(version(), ElementsAre("1"));
}

TEST_F(Migration, TellsWhyAStepFails) {
    const auto refused = take(bad_version);
    ASSERT_NE(refused, std::nullopt);
    EXPECT_EQ(refused->code, SQLITE_ERROR);
    EXPECT_EQ(refused->reason, "no such table: Pump");
}

TEST_F(Migration, LeavesNoTransactionOpenWhenAStepFails) {
    take(bad_version);
    EXPECT_NE(sqlite3_get_autocommit(connection), 0);
}

/// Lets a connection read its version once; it may not read it again.
class version_read_once {
public:
    explicit version_read_once(sqlite3* connection) { sqlite3_set_authorizer(connection, answer, this); }

private:
    static int answer(void* self, int action, const char* pragma, const char* value, const char*, const char*) {
        const bool reads = action == SQLITE_PRAGMA && std::string(pragma) == "user_version" && value == nullptr;
        return reads && ++static_cast<version_read_once*>(self)->readings_ > 1 ? SQLITE_DENY : SQLITE_OK;
    }

    int readings_ = 0;
};

TEST_F(Migration, TakesNoStepWhenTheVersionCannotBeReadInTheTransaction) {
    const version_read_once once(connection);
    EXPECT_THAT(take(first_version), Optional(Field(&refusal::code, Eq(SQLITE_AUTH))));
    EXPECT_THAT(columns(), IsEmpty());
    EXPECT_NE(sqlite3_get_autocommit(connection), 0);
}

TEST_F(Migration, WaitsForNobodyLongerThanTheConnectionDoes) {
    ASSERT_EQ(take(first_version), std::nullopt);
    sqlite_database writer(path);
    writer.run("BEGIN IMMEDIATE");
    EXPECT_THAT(take(third_version), Optional(Field(&refusal::code, Eq(SQLITE_BUSY))));
}

TEST_F(Migration, ChangesNothingWhileSomebodyKeepsReading) {
    ASSERT_EQ(take(first_version), std::nullopt);
    sqlite_database reader(path);
    reader.run("BEGIN; SELECT * FROM Fan");
    EXPECT_THAT(take(third_version), Optional(Field(&refusal::code, Eq(SQLITE_BUSY))));
    EXPECT_THAT(columns(), ElementsAre("Id", "Speed"));
    EXPECT_THAT(version(), ElementsAre("1"));
}

/// Takes the steps on a connection of its own when it is called back while `connection` waits for the lock, and then
/// lets go of the lock.
class faster_process {
public:
    faster_process(const std::string& path, sqlite3* slower, const database_schema& schema)
        : locked_(path), schema_(schema) {
        locked_.run("BEGIN IMMEDIATE");
        sqlite3_busy_handler(slower, take_steps, this);
    }

private:
    static int take_steps(void* process, int) {
        auto& self = *static_cast<faster_process*>(process);
        self.locked_.run(std::string(self.schema_.steps[1]) + "; PRAGMA user_version=2; COMMIT");
        return 1;
    }

    sqlite_database locked_;
    const database_schema& schema_;
};

TEST_F(Migration, LeavesOutTheStepThatAnotherProcessTakesMeanwhile) {
    ASSERT_EQ(take(first_version), std::nullopt);
    const faster_process other(path, connection, second_version);
    EXPECT_EQ(take(third_version), std::nullopt);
    EXPECT_THAT(columns(), ElementsAre("Id", "Speed", "Place", "Blades"));
    EXPECT_THAT(version(), ElementsAre("3"));
}

TEST_F(Migration, TakesNoStepWhenAnotherProcessTakesTheLastMeanwhile) {
    ASSERT_EQ(take(first_version), std::nullopt);
    const faster_process other(path, connection, second_version);
    EXPECT_EQ(take(second_version), std::nullopt);
    EXPECT_THAT(columns(), ElementsAre("Id", "Speed", "Place"));
    EXPECT_THAT(version(), ElementsAre("2"));
}

TEST_F(Migration, TakesNoStepOfAnEmptySchema) {
    EXPECT_EQ(take({nullptr, 0}), std::nullopt);
    EXPECT_THAT(rows("SELECT name FROM sqlite_schema"), IsEmpty());
}

}  // namespace
