// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <inventory_service_workstation.h>
#include <unistd.h>
#include <zeb_db_workstation.h>

#include <climits>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "platform/inventory_service/service_database.h"
#include "platform/lack_of_memory.h"
#include "support/captured_log.h"
#include "support/failing_calloc.h"
#include "support/sandboxed_test.h"
#include "support/sqlite_database.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class InventoryService : public sandboxed_test {
protected:
    void SetUp() override {
        static bool used = false;
        ASSERT_FALSE(used) << "a process has one handle for good: run each test in a process of its own, as ctest does";
        used = true;
        sandboxed_test::SetUp();
        ASSERT_EQ(chdir("/tmp"), 0);
        ASSERT_EQ(setenv("ZEBDB_DATABASE", named_database, 1), 0);
    }

    // The base's checks do not hold here: the database stays open as long as the process.
    void TearDown() override {}

    captured_log log;
};

TEST_F(InventoryService, OpensTheDatabaseThatTheEnvironmentNames) {
    ASSERT_NE(get_dmdb_handle(), nullptr);
    EXPECT_THAT(sqlite_database(named_database).run("SELECT count(*) FROM PCIs"), ElementsAre("0"));
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(InventoryService, OpensInventoryDbInTheWorkingDirectoryWithoutAName) {
    unsetenv("ZEBDB_DATABASE");
    ASSERT_NE(get_dmdb_handle(), nullptr);
    EXPECT_THAT(sqlite_database("/tmp/inventory.db").run("SELECT count(*) FROM PCIs"), ElementsAre("0"));
}

TEST_F(InventoryService, OpensInventoryDbInTheWorkingDirectoryForAnEmptyName) {
    setenv("ZEBDB_DATABASE", "", 1);
    ASSERT_NE(get_dmdb_handle(), nullptr);
    EXPECT_THAT(sqlite_database("/tmp/inventory.db").run("SELECT count(*) FROM PCIs"), ElementsAre("0"));
}

TEST_F(InventoryService, GivesOneHandleForTheProcess) {
    _zeb_db_handle_t* handle = get_dmdb_handle();
    ASSERT_NE(handle, nullptr);
    setenv("ZEBDB_DATABASE", "/tmp/other.db", 1);
    EXPECT_EQ(get_dmdb_handle(), handle);
    EXPECT_FALSE(exists("/tmp/other.db"));
}

TEST_F(InventoryService, TakesBackAtTheEndOfTheProcessWhatIsNotCommitted) {
    const auto end_within_a_transaction = [] {
        zeb_db_begin_transaction(get_dmdb_handle());
        std::exit(agentless_update_inventory_sequence(0));
    };
    EXPECT_EXIT(end_within_a_transaction(), testing::ExitedWithCode(0), "");
    EXPECT_FALSE(exists(named_database + std::string("-journal")));
    EXPECT_THAT(sqlite_database(named_database).run("SELECT * FROM InventorySequence"), IsEmpty());
}

TEST_F(InventoryService, GivesNullAndTheReasonForADirectory) {
    setenv("ZEBDB_DATABASE", "/tmp", 1);
    EXPECT_EQ(get_dmdb_handle(), nullptr);
    EXPECT_THAT(log.lines,
                ElementsAre("ERROR: cannot open inventory database '/tmp': unable to open database file (Is a "
                            "directory)"));
}

TEST_F(InventoryService, GivesNullAndTheReasonForAMissingFolder) {
    setenv("ZEBDB_DATABASE", "/missing/inventory.db", 1);
    EXPECT_EQ(get_dmdb_handle(), nullptr);
    EXPECT_THAT(
        log.lines,
        ElementsAre("ERROR: cannot open inventory database '/missing/inventory.db': unable to open database file "
                    "(No such file or directory)"));
}

TEST_F(InventoryService, GivesNullAndTheReasonForAFileThatIsNoDatabase) {
    write_file(named_database, std::string(1000, 'x'));
    EXPECT_EQ(get_dmdb_handle(), nullptr);
    EXPECT_THAT(log.lines,
                ElementsAre("ERROR: cannot open inventory database '/tmp/named.db': file is not a database"));
}

TEST_F(InventoryService, TellsWhyItGivesNull) {
    write_file(named_database, std::string(1000, 'x'));
    ASSERT_EQ(get_dmdb_handle(), nullptr);
    ASSERT_NE(zeb_db_first_failure(), nullptr);
    EXPECT_EQ(zeb_db_first_failure()->code, SQLITE_NOTADB);
    EXPECT_STREQ(zeb_db_first_failure()->text,
                 "cannot open inventory database '/tmp/named.db': file is not a database");
}

TEST_F(InventoryService, GivesAHandleOnceTheDatabaseCanBeOpened) {
    write_file(named_database, std::string(1000, 'x'));
    ASSERT_EQ(get_dmdb_handle(), nullptr);
    std::filesystem::remove(named_database);
    EXPECT_NE(get_dmdb_handle(), nullptr);
}

// Everything below works on an open database, seen by the test through a connection of its own.
class OpenInventoryService : public InventoryService {
protected:
    void SetUp() override {
        InventoryService::SetUp();
        if (HasFatalFailure()) {
            return;
        }
        connection = connection_opened_by([this] { handle = get_dmdb_handle(); });
        ASSERT_NE(handle, nullptr);
        seen = std::make_unique<sqlite_database>(named_database);
    }

    _zeb_db_handle_t* handle = nullptr;
    sqlite3* connection = nullptr;
    std::unique_ptr<sqlite_database> seen;
};

class ParseAim : public OpenInventoryService {
protected:
    std::vector<std::string> adapters() {
        return seen->run("SELECT DevKey, PCIFuncKey, AimArgument FROM PCIAdapter ORDER BY Id");
    }
};

TEST_F(ParseAim, WritesOneRowADeviceKeyWithItsLowestFunctionKey) {
    seen->run("INSERT INTO PCIs (DevKey, FunKey) VALUES (20, 7), (10, 9), (20, 5), (10, 8), (20, 6)");
    EXPECT_EQ(parse_aim(handle, 3), 0);
    EXPECT_THAT(adapters(), ElementsAre("10|8|3", "20|5|3"));
}

TEST_F(ParseAim, TakesKeysAndArgumentsOf32BitsAsUnsigned) {
    seen->run("INSERT INTO PCIs (DevKey, FunKey) VALUES (4294967295, 4294967295), (4294967295, 2147483648)");
    EXPECT_EQ(parse_aim(handle, UINT_MAX), 0);
    EXPECT_THAT(adapters(), ElementsAre("4294967295|2147483648|4294967295"));
}

TEST_F(ParseAim, ReplacesTheRowsOfTheLastTime) {
    seen->run("INSERT INTO PCIs (DevKey, FunKey) VALUES (10, 8)");
    ASSERT_EQ(parse_aim(handle, 3), 0);
    seen->run("UPDATE PCIs SET DevKey = 20, FunKey = 9");
    EXPECT_EQ(parse_aim(handle, 4), 0);
    EXPECT_THAT(adapters(), ElementsAre("20|9|4"));
}

TEST_F(ParseAim, LeavesNoRowWithoutFunctions) {
    seen->run("INSERT INTO PCIAdapter (DevKey, PCIFuncKey) VALUES (10, 8)");
    EXPECT_EQ(parse_aim(handle, 3), 0);
    EXPECT_THAT(adapters(), IsEmpty());
}

TEST_F(ParseAim, IsTakenBackWithTheCallersTransaction) {
    seen->run("INSERT INTO PCIs (DevKey, FunKey) VALUES (10, 8)");
    ASSERT_EQ(parse_aim(handle, 3), 0);
    ASSERT_EQ(zeb_db_begin_transaction(handle), 0);
    EXPECT_EQ(parse_aim(handle, 4), 0);
    ASSERT_EQ(zeb_db_rollback_transaction(handle), 0);
    EXPECT_THAT(adapters(), ElementsAre("10|8|3"));
}

TEST_F(ParseAim, FailsWithALoggedReasonWithoutTheFunctionTable) {
    seen->run("DROP TABLE PCIs");
    EXPECT_EQ(parse_aim(handle, 3), SQLITE_ERROR);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: fill PCIAdapter: no such table: PCIs"));
}

TEST_F(ParseAim, RefusesANullHandle) {
    EXPECT_EQ(parse_aim(nullptr, 3), SQLITE_MISUSE);
}

class InventorySequence : public OpenInventoryService {
protected:
    std::vector<std::string> sequences() {
        return seen->run("SELECT Kind, Sequence FROM InventorySequence ORDER BY Kind");
    }
};

TEST_F(InventorySequence, StartsWith1AtTheFirstNotice) {
    EXPECT_THAT(sequences(), IsEmpty());
    EXPECT_EQ(agentless_update_inventory_sequence(0), 0);
    EXPECT_THAT(sequences(), ElementsAre("0|1"));
}

TEST_F(InventorySequence, IsRaisedBy1AtEachNoticeOfItsKind) {
    for (const int kind : {1, 0, 1, 1}) {
        EXPECT_EQ(agentless_update_inventory_sequence(kind), 0);
    }
    EXPECT_THAT(sequences(), ElementsAre("0|1", "1|3"));
}

TEST_F(InventorySequence, IsNotRaisedWithoutMemory) {
    expect_lack_of_memory_told(SQLITE_OK, [] { return agentless_update_inventory_sequence(0); });
    EXPECT_THAT(sequences(), ElementsAre("0|1"));
}

TEST_F(InventorySequence, FailsWithALoggedReasonWithoutItsTable) {
    seen->run("DROP TABLE InventorySequence");
    EXPECT_EQ(agentless_update_inventory_sequence(0), SQLITE_ERROR);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: raise the inventory sequence: no such table: "
                                       "InventorySequence"));
}

TEST_F(InventorySequence, HasNoOtherKinds) {
    EXPECT_EQ(agentless_update_inventory_sequence(2), SQLITE_MISUSE);
    EXPECT_EQ(agentless_update_inventory_sequence(-1), SQLITE_MISUSE);
    EXPECT_THAT(sequences(), IsEmpty());
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory service: there is no inventory of kind 2",
                                       "ERROR: inventory service: there is no inventory of kind -1"));
}

TEST_F(InventoryService, TakesNoNoticeWithoutADatabase) {
    setenv("ZEBDB_DATABASE", "/missing/inventory.db", 1);
    EXPECT_EQ(agentless_update_inventory_sequence(0), SQLITE_CANTOPEN);
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("/missing/inventory.db")));
}

class MemoryTables : public OpenInventoryService {
protected:
    std::vector<std::string> in_memory(const std::string& table) {
        return run_sql(connection, "SELECT * FROM memory." + table);
    }
    std::vector<std::string> in_file(const std::string& table) { return seen->run("SELECT * FROM " + table); }
};

TEST_F(MemoryTables, HoldTheRowsOfEveryInventoryTable) {
    for (const std::string& table : inventory_tables()) {
        seen->run("INSERT INTO " + table + " (Id) VALUES (7), (9)");
    }
    seen->run("UPDATE Processor SET Socket = 'CPU 1', ProcId = -1");
    EXPECT_EQ(rebuild_tables_in_memory(handle), 0);
    for (const std::string& table : inventory_tables()) {
        EXPECT_THAT(in_memory(table), testing::SizeIs(2));
        EXPECT_EQ(in_memory(table), in_file(table));
    }
}

TEST_F(MemoryTables, AreRebuiltWhole) {
    seen->run("INSERT INTO PCIs (FunKey) VALUES (7), (9)");
    ASSERT_EQ(rebuild_tables_in_memory(handle), 0);
    seen->run("DELETE FROM PCIs WHERE FunKey = 7; UPDATE PCIs SET FunKey = 10; INSERT INTO Memory (SlotNo) VALUES (1)");
    EXPECT_EQ(rebuild_tables_in_memory(handle), 0);
    for (const std::string& table : inventory_tables()) {
        EXPECT_EQ(in_memory(table), in_file(table));
    }
}

TEST_F(MemoryTables, StayAsTheyAreBetweenRebuilds) {
    ASSERT_EQ(rebuild_tables_in_memory(handle), 0);
    seen->run("INSERT INTO PCIs (FunKey) VALUES (7)");
    EXPECT_THAT(in_memory("PCIs"), IsEmpty());
}

TEST_F(MemoryTables, AreNotInTheFile) {
    const auto tables = seen->run("SELECT name FROM sqlite_schema ORDER BY name");
    EXPECT_EQ(rebuild_tables_in_memory(handle), 0);
    EXPECT_EQ(seen->run("SELECT name FROM sqlite_schema ORDER BY name"), tables);
}

TEST_F(MemoryTables, AreKeptWhenTheyCannotBeRebuilt) {
    seen->run("INSERT INTO Processor (Socket) VALUES ('CPU 1')");
    ASSERT_EQ(rebuild_tables_in_memory(handle), 0);
    const auto before = in_memory("Processor");
    seen->run("DELETE FROM Processor; DROP TABLE PCIAdapter");
    EXPECT_EQ(rebuild_tables_in_memory(handle), SQLITE_ERROR);
    EXPECT_EQ(in_memory("Processor"), before);
    EXPECT_THAT(in_memory("PCIAdapter"), IsEmpty());
    EXPECT_THAT(log.lines,
                ElementsAre("ERROR: inventory database: rebuild the in-memory tables: no such table: main.PCIAdapter"));
}

TEST_F(MemoryTables, TellWhyTheyCannotBeKept) {
    seen->run("DROP TABLE PCIAdapter");
    sqlite3_set_authorizer(
        connection,
        [](void*, int action, const char* operation, const char*, const char*, const char*) {
            return action == SQLITE_SAVEPOINT && operation == std::string("ROLLBACK") ? SQLITE_DENY : SQLITE_OK;
        },
        nullptr);
    EXPECT_EQ(rebuild_tables_in_memory(handle), SQLITE_ERROR);
    EXPECT_THAT(log.lines,
                ElementsAre("ERROR: inventory database: rebuild the in-memory tables: no such table: main.PCIAdapter",
                            "ERROR: inventory database: keep the in-memory tables: not authorized"));
}

TEST_F(MemoryTables, AreNotRebuiltWithoutMemory) {
    ASSERT_EQ(rebuild_tables_in_memory(handle), SQLITE_OK);
    expect_lack_of_memory_told(SQLITE_OK, [this] { return rebuild_tables_in_memory(handle); });
    EXPECT_THAT(log.lines, testing::Each("ERROR: inventory database: out of memory"));
}

TEST_F(MemoryTables, TellWhyTheyCannotBeRebuilt) {
    seen->run("DROP TABLE PCIAdapter");
    ASSERT_NE(rebuild_tables_in_memory(handle), 0);
    ASSERT_NE(zeb_db_first_failure(), nullptr);
    EXPECT_STREQ(zeb_db_first_failure()->text, "rebuild the in-memory tables: no such table: main.PCIAdapter");
}

TEST_F(MemoryTables, CanBeRebuiltAfterAFailure) {
    seen->run("INSERT INTO Processor (Socket) VALUES ('CPU 1'); ALTER TABLE PCIAdapter RENAME TO Aside");
    ASSERT_NE(rebuild_tables_in_memory(handle), 0);
    seen->run("ALTER TABLE Aside RENAME TO PCIAdapter");
    EXPECT_EQ(rebuild_tables_in_memory(handle), 0);
    EXPECT_EQ(in_memory("Processor"), in_file("Processor"));
}

TEST_F(MemoryTables, AreNotRebuiltWhereThereIsNoPlaceForThem) {
    sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, 0);
    EXPECT_EQ(rebuild_tables_in_memory(handle), SQLITE_ERROR);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: attach the in-memory tables: too many attached "
                                       "databases - max 0"));
}

TEST_F(MemoryTables, AreNotRebuiltForANullHandle) {
    EXPECT_EQ(rebuild_tables_in_memory(nullptr), SQLITE_MISUSE);
}

class PendingFirmware : public OpenInventoryService {
protected:
    ~PendingFirmware() override { std::free(list.entries); }

    const zebdb_pldm_firmware_pending_entry& entry(std::size_t index) const {
        return static_cast<const zebdb_pldm_firmware_pending_entry*>(list.entries)[index];
    }

    zebdb_pldm_firmware_pending_list list = {0, nullptr};
};

TEST_F(PendingFirmware, IsAnEmptyListWhenNoneIsPending) {
    list.count = 77;
    EXPECT_EQ(zebdb_get_pldm_firmware_pending_list(&list), 0);
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.entries, nullptr);
}

TEST_F(PendingFirmware, ListsEveryRowInTheOrderOfItsIds) {
    seen->run("INSERT INTO PendingFirmware VALUES (9, 'NIC 1', '2.0'), (3, 'GPU 1', '1.5'), (5, '', '')");
    ASSERT_EQ(zebdb_get_pldm_firmware_pending_list(&list), 0);
    ASSERT_EQ(list.count, 3u);
    EXPECT_STREQ(entry(0).component, "GPU 1");
    EXPECT_STREQ(entry(0).version, "1.5");
    EXPECT_STREQ(entry(1).component, "");
    EXPECT_STREQ(entry(1).version, "");
    EXPECT_STREQ(entry(2).component, "NIC 1");
    EXPECT_STREQ(entry(2).version, "2.0");
}

TEST_F(PendingFirmware, HasPercentSignsAsTheyAre) {
    seen->run("INSERT INTO PendingFirmware (Component, Version) VALUES ('NIC %s', '100%%')");
    ASSERT_EQ(zebdb_get_pldm_firmware_pending_list(&list), 0);
    EXPECT_STREQ(entry(0).component, "NIC %s");
    EXPECT_STREQ(entry(0).version, "100%%");
}

TEST_F(PendingFirmware, CutsTextsToFit) {
    seen->run("INSERT INTO PendingFirmware (Component, Version) VALUES ('" + std::string(64, 'c') + "', '" +
              std::string(32, 'v') + "')");
    ASSERT_EQ(zebdb_get_pldm_firmware_pending_list(&list), 0);
    ASSERT_EQ(list.count, 1u);
    EXPECT_EQ(entry(0).component, std::string(63, 'c'));
    EXPECT_EQ(entry(0).version, std::string(31, 'v'));
}

TEST_F(PendingFirmware, LeavesTheListAloneWhenItCannotBeRead) {
    list.count = 77;
    seen->run("DROP TABLE PendingFirmware");
    EXPECT_EQ(zebdb_get_pldm_firmware_pending_list(&list), SQLITE_ERROR);
    EXPECT_EQ(list.count, 77u);
    EXPECT_EQ(list.entries, nullptr);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory service: cannot read the pending firmware: no such table: "
                                       "PendingFirmware"));
    ASSERT_NE(zeb_db_first_failure(), nullptr);
    EXPECT_EQ(zeb_db_first_failure()->code, SQLITE_ERROR);
    EXPECT_STREQ(zeb_db_first_failure()->text, "cannot read the pending firmware: no such table: PendingFirmware");
}

TEST_F(PendingFirmware, RefusesANullList) {
    EXPECT_EQ(zebdb_get_pldm_firmware_pending_list(nullptr), SQLITE_MISUSE);
}

TEST_F(InventoryService, ListsNoPendingFirmwareWithoutADatabase) {
    setenv("ZEBDB_DATABASE", "/missing/inventory.db", 1);
    zebdb_pldm_firmware_pending_list list = {77, nullptr};
    EXPECT_EQ(zebdb_get_pldm_firmware_pending_list(&list), SQLITE_CANTOPEN);
    EXPECT_EQ(list.count, 77u);
}

TEST_F(PendingFirmware, IsNotListedWithoutMemory) {
    seen->run("INSERT INTO PendingFirmware (Component, Version) VALUES ('NIC 1', '2.0'), ('GPU 1', '1.5')");
    expect_lack_of_memory_told(SQLITE_OK, [this] { return zebdb_get_pldm_firmware_pending_list(&list); });
    EXPECT_EQ(list.count, 2u);
}

TEST_F(PendingFirmware, IsNotListedWithoutMemoryForTheReason) {
    seen->run("DROP TABLE PendingFirmware");
    expect_lack_of_memory_told(SQLITE_ERROR, [this] { return zebdb_get_pldm_firmware_pending_list(&list); });
    EXPECT_EQ(list.count, 0u);
}

TEST_F(PendingFirmware, IsNotListedWithoutMemoryForTheList) {
    seen->run("INSERT INTO PendingFirmware (Component, Version) VALUES ('NIC 1', '2.0'), ('GPU 1', '1.5')");
    const failing_calloc no_memory(2 * sizeof(zebdb_pldm_firmware_pending_entry));
    EXPECT_EQ(zebdb_get_pldm_firmware_pending_list(&list), SQLITE_NOMEM);
    EXPECT_TRUE(no_memory.fired());
    EXPECT_EQ(list.entries, nullptr);
    EXPECT_THAT(log.lines, ElementsAre("ERROR: inventory database: out of memory"));
}

/// SQLite has no more memory than it uses and so many bytes, as long as this lives.
class sqlite_memory_limit {
public:
    explicit sqlite_memory_limit(sqlite3_int64 bytes) { sqlite3_hard_heap_limit64(sqlite3_memory_used() + bytes); }
    ~sqlite_memory_limit() { sqlite3_hard_heap_limit64(0); }
    sqlite_memory_limit(const sqlite_memory_limit&) = delete;
    sqlite_memory_limit& operator=(const sqlite_memory_limit&) = delete;
};

// SQLite has to turn the texts of such a database into UTF-8, for which it needs memory while it gives a row.
class PendingFirmwareInUtf16 : public InventoryService, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        InventoryService::SetUp();
        write_file(named_database, "");
        sqlite_database opened(named_database);
        opened.run("PRAGMA encoding = 'UTF-16le'; CREATE TABLE Aside (Id)");
        ASSERT_NE(get_dmdb_handle(), nullptr);
        opened.run("INSERT INTO PendingFirmware (Component, Version) SELECT 'NIC', '2.0'; UPDATE PendingFirmware SET " +
                   std::string(GetParam()) + " = printf('%.*c', 100000, 'x')");
    }
};

INSTANTIATE_TEST_SUITE_P(LongText, PendingFirmwareInUtf16, testing::Values("Component", "Version"));

TEST_P(PendingFirmwareInUtf16, IsListedWholeOrNotAtAll) {
    constexpr sqlite3_int64 step = 10000;
    zebdb_pldm_firmware_pending_list list = {77, nullptr};
    int code = SQLITE_NOMEM;
    int refusals = 0;
    for (sqlite3_int64 bytes = 0; code != SQLITE_OK; bytes += step, ++refusals) {
        const sqlite_memory_limit memory(bytes);
        code = zebdb_get_pldm_firmware_pending_list(&list);
        EXPECT_THAT(code, testing::AnyOf(SQLITE_OK, SQLITE_NOMEM)) << bytes;
        EXPECT_EQ(list.count, code == SQLITE_OK ? 1u : 77u) << bytes;
    }
    EXPECT_GT(refusals, 1);
    const auto* entry = static_cast<const zebdb_pldm_firmware_pending_entry*>(list.entries);
    const std::string texts = "SELECT substr(Component, 1, 63), substr(Version, 1, 31) FROM PendingFirmware";
    EXPECT_THAT(sqlite_database(named_database).run(texts),
                ElementsAre(std::string(entry->component) + '|' + entry->version));
    std::free(list.entries);
}
