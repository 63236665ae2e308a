// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zeb_db_workstation.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/inventory_service/service_database.h"
#include "support/sandboxed_test.h"
#include "support/sqlite_database.h"

using testing::MatchesRegex;
using testing::UnorderedElementsAre;

namespace {

// Places in a database, not hardware: they differ from one load of the same hardware to the next.
constexpr const char* row_ids = "('Id', 'ArrayId', 'ParentId', 'BridgeId')";

}  // namespace

class PciDigest : public sandboxed_test {
protected:
    void SetUp() override {
        sandboxed_test::SetUp();
        _zeb_db_handle_t* handle = nullptr;
        ASSERT_EQ(zeb_db_open(named_database, &handle), 0);
        zeb_db_close(handle);
        hardware = std::make_unique<sqlite_database>(named_database);
        ASSERT_EQ(setenv("ZEBDB_DATABASE", named_database, 1), 0);
    }

    void TearDown() override {
        hardware.reset();
        sandboxed_test::TearDown();
    }

    void add_two_rows_to_each_table() {
        for (const std::string& table : inventory_tables()) {
            for (const std::string row : {"1", "2"}) {
                std::string names;
                std::string values;
                for (const std::string& column : columns_of(table)) {
                    names += (names.empty() ? "" : ",") + column;
                    values += (values.empty() ? "" : ",") + row;
                }
                hardware->run("INSERT INTO " + table + " (" + names + ") VALUES (" + values + ")");
            }
        }
    }

    std::vector<std::string> columns_of(const std::string& table) {
        const auto columns = hardware->run("SELECT name FROM pragma_table_info('" + table + "') WHERE name NOT IN " +
                                           row_ids + " ORDER BY cid");
        EXPECT_GE(columns.size(), 3u) << table;
        return columns;
    }

    // Runs the script; whether it succeeded. `environment` goes before its name.
    static bool run(const std::string& environment = "") {
        return std::system((environment + " /bin/pci_digest.sh 2>/tmp/errors").c_str()) == 0;
    }

    void update() {
        ASSERT_TRUE(run());
        system_digest = content_of(place::system_digest);
        pci_digest = content_of(place::pci_digest);
    }

    // Changes `column` of one row, and checks that this changes the digests as said.
    void expect_change(const std::string& table, const std::string& column, bool of_system, bool of_pci) {
        const std::string before = system_digest;
        const std::string pci_before = pci_digest;
        const std::string row = " WHERE Id = (SELECT max(Id) FROM " + table + ")";
        hardware->run("UPDATE " + table + " SET " + column + " = 77" + row);
        update();
        EXPECT_EQ(system_digest != before, of_system) << table << '.' << column;
        EXPECT_EQ(pci_digest != pci_before, of_pci) << table << '.' << column;
    }

    // The digests stay as they are when the script fails, and it leaves nothing else behind.
    void expect_failure(const std::string& environment = "") {
        write_file(place::system_digest, "old system\n");
        write_file(place::pci_digest, "old pci\n");
        EXPECT_FALSE(run(environment));
        EXPECT_EQ(content_of(place::system_digest), "old system\n");
        EXPECT_EQ(content_of(place::pci_digest), "old pci\n");
        expect_nothing_but_digests();
    }

    void expect_nothing_but_digests() {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator("/var/vonk")) {
            files.push_back(entry.path());
        }
        EXPECT_THAT(files, UnorderedElementsAre(place::system_digest, place::pci_digest));
    }

    std::unique_ptr<sqlite_database> hardware;
    std::string system_digest;
    std::string pci_digest;
};

TEST_F(PciDigest, IsOneLineOf96LowercaseDigitsForEachHalf) {
    add_two_rows_to_each_table();
    update();
    EXPECT_THAT(system_digest, MatchesRegex("[0-9a-f]+\n"));
    EXPECT_THAT(pci_digest, MatchesRegex("[0-9a-f]+\n"));
    EXPECT_EQ(system_digest.size(), 97u);
    EXPECT_EQ(pci_digest.size(), 97u);
    EXPECT_NE(system_digest, pci_digest);
    expect_nothing_but_digests();
}

TEST_F(PciDigest, ExistsWithoutAnyRow) {
    update();
    EXPECT_EQ(system_digest.size(), 97u);
    EXPECT_EQ(pci_digest.size(), 97u);
}

TEST_F(PciDigest, IsTheSameForTheSameHardware) {
    add_two_rows_to_each_table();
    update();
    const std::string before = system_digest + pci_digest;
    update();
    EXPECT_EQ(system_digest + pci_digest, before);
}

TEST_F(PciDigest, DoesNotDependOnTheOrderOfTheRows) {
    hardware->run("INSERT INTO PCIs (FunKey, SlotDesignation) VALUES (1, 'a'), (2, 'b'), (3, NULL)");
    hardware->run("INSERT INTO Memory (SlotNo, DevLocator) VALUES (1, 'a'), (2, 'b'), (3, NULL)");
    update();
    const std::string before = system_digest + pci_digest;
    hardware->run("DELETE FROM PCIs; DELETE FROM Memory");
    hardware->run("INSERT INTO PCIs (FunKey, SlotDesignation) VALUES (3, NULL), (1, 'a'), (2, 'b')");
    hardware->run("INSERT INTO Memory (SlotNo, DevLocator) VALUES (2, 'b'), (3, NULL), (1, 'a')");
    update();
    EXPECT_EQ(system_digest + pci_digest, before);
}

TEST_F(PciDigest, DoesNotDependOnRowIds) {
    add_two_rows_to_each_table();
    update();
    for (const std::string& table : inventory_tables()) {
        for (const std::string& id :
             hardware->run("SELECT name FROM pragma_table_info('" + table + "') WHERE name IN " + row_ids)) {
            expect_change(table, id, false, false);
        }
    }
}

class EveryValue : public PciDigest, public testing::WithParamInterface<std::string> {};

TEST_P(EveryValue, ChangesTheDigestOfItsHalfAlone) {
    const std::string& table = GetParam();
    const bool of_system = table == "Processor" || table == "Memory";
    add_two_rows_to_each_table();
    update();
    for (const std::string& column : columns_of(table)) {
        expect_change(table, column, of_system, !of_system);
    }
}

INSTANTIATE_TEST_SUITE_P(Of, EveryValue, testing::ValuesIn(inventory_tables()),
                         [](const auto& table) { return table.param; });

TEST_F(PciDigest, TellsNullEmptyZeroAndTheirTextsApart) {
    hardware->run("INSERT INTO PCIs (FunKey) VALUES (1)");
    std::vector<std::string> digests;
    for (const std::string values : {"NULL, NULL", "0, NULL", "NULL, ''", "NULL, 'NULL'", "NULL, '0'", "NULL, ' '",
                                     "NULL, 'a,b'", "NULL, 'a'',''b'", "NULL, 'a' || char(10) || 'b'"}) {
        hardware->run("UPDATE PCIs SET (SlotType, SlotDesignation) = (" + values + ")");
        update();
        EXPECT_THAT(digests, testing::Not(testing::Contains(pci_digest))) << values;
        digests.push_back(pci_digest);
    }
}

TEST_F(PciDigest, ChangesWhenValuesTradePlaces) {
    hardware->run("INSERT INTO PCIs (FunKey, SlotNo, Location) VALUES (1, 2, 3)");
    update();
    const std::string before = pci_digest;
    hardware->run("UPDATE PCIs SET SlotNo = 3, Location = 2");
    update();
    EXPECT_NE(pci_digest, before);
}

TEST_F(PciDigest, CountsRowsThatAreAlike) {
    hardware->run("INSERT INTO Processor (Socket) VALUES ('CPU')");
    update();
    const std::string before = system_digest;
    hardware->run("INSERT INTO Processor (Socket) VALUES ('CPU')");
    update();
    EXPECT_NE(system_digest, before);
}

TEST_F(PciDigest, TakesTheNameOfAColumnForNothingElse) {
    hardware->run(R"sql(ALTER TABLE Processor ADD COLUMN "writefile('/tmp/written', 'x')" TEXT)sql");
    hardware->run(R"(ALTER TABLE Processor ADD COLUMN "a ""quoted"", name" TEXT)");
    hardware->run("INSERT INTO Processor (Socket) VALUES ('CPU')");
    update();
    EXPECT_FALSE(exists("/tmp/written"));
    EXPECT_EQ(system_digest.size(), 97u);
}

TEST_F(PciDigest, DoesNotDependOnTheUsersSettingsOfTheShell) {
    add_two_rows_to_each_table();
    update();
    const std::string before = system_digest + pci_digest;
    write_file("/tmp/.sqliterc", ".headers on\n");
    ASSERT_TRUE(run("HOME=/tmp"));
    EXPECT_EQ(content_of(place::system_digest) + content_of(place::pci_digest), before);
}

TEST_F(PciDigest, IsOfADatabaseThatIsNamedLikeAnOption) {
    std::filesystem::rename(named_database, "/tmp/-x.db");
    EXPECT_TRUE(run("cd /tmp; ZEBDB_DATABASE=-x.db"));
    expect_nothing_but_digests();
}

TEST_F(PciDigest, ThatIsTerminatedLeavesNothing) {
    update();
    hardware->run("BEGIN EXCLUSIVE");
    EXPECT_EQ(std::system("timeout 1 /bin/pci_digest.sh 2>/tmp/errors; [ $? -eq 124 ]"), 0);
    expect_nothing_but_digests();
}

TEST_F(PciDigest, KeepsAll64BitsOfANumber) {
    hardware->run("INSERT INTO Processor (ProcId) VALUES (-1)");
    update();
    const std::string before = system_digest;
    hardware->run("UPDATE Processor SET ProcId = -2");
    update();
    EXPECT_NE(system_digest, before);
}

TEST_F(PciDigest, IsOfInventoryDbInTheWorkingDirectoryWithoutAName) {
    add_two_rows_to_each_table();
    update();
    std::filesystem::rename(named_database, "/tmp/inventory.db");
    const std::string before = system_digest + pci_digest;
    std::filesystem::remove(place::system_digest);
    std::filesystem::remove(place::pci_digest);
    EXPECT_TRUE(run("cd /tmp && env -u ZEBDB_DATABASE"));
    EXPECT_EQ(content_of(place::system_digest) + content_of(place::pci_digest), before);
}

TEST_F(PciDigest, IsWrittenToANewFileThatTakesThePlaceOfTheOld) {
    write_file(place::system_digest, "old system\n");
    write_file(place::pci_digest, "old pci\n");
    std::ifstream old_system(place::system_digest);
    std::ifstream old_pci(place::pci_digest);
    update();
    std::string line;
    EXPECT_TRUE(std::getline(old_system, line));
    EXPECT_EQ(line, "old system");
    EXPECT_TRUE(std::getline(old_pci, line));
    EXPECT_EQ(line, "old pci");
    EXPECT_EQ(system_digest.size(), 97u);
    EXPECT_EQ(pci_digest.size(), 97u);
}

TEST_F(PciDigest, FailsWithoutADatabaseAndMakesNone) {
    expect_failure("ZEBDB_DATABASE=/tmp/missing.db");
    EXPECT_FALSE(exists("/tmp/missing.db"));
}

TEST_F(PciDigest, FailsOnAFileThatIsNoDatabase) {
    write_file("/tmp/text.db", std::string(1000, 'x'));
    expect_failure("ZEBDB_DATABASE=/tmp/text.db");
}

TEST_F(PciDigest, FailsWithoutATableOfTheFirstHalf) {
    hardware->run("DROP TABLE Processor");
    expect_failure();
}

TEST_F(PciDigest, FailsWithoutTheLastTable) {
    hardware->run("DROP TABLE PCIAdapter");
    expect_failure();
}

TEST_F(PciDigest, FailsWhenSha384sumFails) {
    make_directory("/tmp/bin");
    write_file("/tmp/bin/sha384sum", "#!/bin/sh\necho 0000 -\nexit 1\n");
    std::filesystem::permissions("/tmp/bin/sha384sum", std::filesystem::perms::owner_all);
    expect_failure("PATH=/tmp/bin:$PATH");
}

TEST_F(PciDigest, FailsOnAFullDisk) {
    add_two_rows_to_each_table();
    write_file(place::system_digest, "old system\n");
    write_file(place::pci_digest, "old pci\n");
    {
        const file_size_limit full(0);
        EXPECT_NE(std::system(place::digest_script), 0);
    }
    EXPECT_EQ(content_of(place::system_digest), "old system\n");
    EXPECT_EQ(content_of(place::pci_digest), "old pci\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("/var/vonk"), {}), 2) << "a scratch folder was left";
}
