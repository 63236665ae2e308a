// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "support/small_server.h"
#include "tools/subcommands/command_test.h"

using nlohmann::json;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

class Show : public command_test {
protected:
    Show() { load(small_server); }

    void load(const std::string& content) {
        write("x.xml", content);
        const command_result result = run("zebdb-cds load x.xml");
        if (result.status != 0) {
            throw std::runtime_error(result.err);
        }
    }

    std::string show(const std::string& arguments) {
        const command_result result = run("ZEBDB_PCI_IDS=none zebdb-cds show " + arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.err, IsEmpty());
        return without_age(result.out);
    }

    // Without the line that says when the rows were loaded, which is another one a second later.
    static std::string without_age(const std::string& shown) { return shown.substr(0, shown.find("\nLoaded ")); }

    json show_json(const std::string& arguments = "") { return json::parse(show(arguments + " --format json")); }
};

TEST_F(Show, TakesACdsFileOrADatabase) {
    const std::string shown = show("memory");
    EXPECT_EQ(show("memory x.xml"), shown);
    EXPECT_EQ(show("x.xml memory"), shown);
    EXPECT_EQ(show("memory inventory.db"), shown);
    EXPECT_EQ(show("memory - <x.xml"), shown);
    EXPECT_EQ(show("x.xml"), show(""));
}

TEST_F(Show, TakesADashForStandardInputWhateverFileHasThatName) {
    const std::string shown = show("memory");
    ASSERT_EQ(run("mv inventory.db ./-").status, 0);
    write("y.xml", "<component/>");
    EXPECT_EQ(show("memory - <y.xml"), "Memory (0)\n");
    EXPECT_EQ(show("memory ./-"), shown);
}

TEST_F(Show, TakesWhatGzipPacked) {
    ASSERT_EQ(run("gzip --keep x.xml; gzip --keep inventory.db").status, 0);
    const std::string shown = show("");
    EXPECT_EQ(show("x.xml.gz"), shown);
    EXPECT_EQ(show("inventory.db.gz"), shown);
    EXPECT_EQ(show("- <x.xml.gz"), shown);
    EXPECT_EQ(run("cat x.xml.gz | ZEBDB_PCI_IDS=none zebdb-cds show -").out, shown);
}

TEST_F(Show, OfAFileWritesNothing) {
    ASSERT_EQ(run("rm inventory.db").status, 0);
    EXPECT_EQ(left_in_tmp("zebdb-cds show x.xml"), "");
    EXPECT_THAT(names(), ElementsAre("x.xml"));
}

TEST_F(Show, TakesNoTwoFilesAndNoFileBesideADatabase) {
    const std::string help = "; see 'zebdb-cds show --help'\n";
    EXPECT_EQ(run("zebdb-cds show x.xml x.xml").err,
              "zebdb-cds: there is one KIND and one FILE at most, and 'x.xml' is another" + help);
    EXPECT_EQ(run("zebdb-cds show x.xml --database inventory.db").err,
              "zebdb-cds: FILE and --database exclude each other" + help);
}

TEST_F(Show, OfAMissingFileSaysSo) {
    const command_result result = run("zebdb-cds show missing.xml");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: cannot read 'missing.xml': No such file or directory\n");
}

TEST_F(Show, PrintsEveryKindAsATableForPeople) {
    EXPECT_EQ(
        show(""),
        "Processors (1)\n"
        "Id  Node  Socket  Version    Cores  Threads     Speed  L3 cache  Processor id        Serial number  "
        "Asset tag\n"
        " 1     1  CPU 1   Züri 9000  12/16       24  2100 MHz  24.8 MiB  0x000806f8bfebfbff  CPU-SECRET     "
        "CPU-TAG\n"
        "\n"
        "Memory (2)\n"
        "Id  Node  Slot  Locator       Size  Type           Speed  Manufacturer  Serial number   Capacity  App direct\n"
        " 1     1     3  DIMM A1     32 GiB  DDR4 (26)  2666 MT/s  Maker         DIMM-SECRET            -           -\n"
        " 2     1     -  DIMM A2  126.4 GiB  99                 -  Intel         -              126.4 GiB     126 GiB\n"
        "\n"
        "Bridges (2)\n"
        "Id  Node  Parent  Address       Vendor:dev  Revision  Class     Kind          Primary bus  Bus range\n"
        " 1     1       -  0000:00:1c.0  8086:a190   0xf9      0x060400  bridge (PCI)  00           3a-3f\n"
        " 2     1       1  0000:3a:02.1  -           -         -         -             -            -\n"
        "\n"
        "Devices (2)\n"
        "Id  Node  Bridge  Address       Slot  Designation  Vendor:dev  Subsystem  Class     Kind                Lanes "
        "                Link speed  Device key  Function key\n"
        " 1     1       1  0001:3b:1f.7     5  Slot 5       8086:1572   8086:0007  0x020000  network (Ethernet)    4/8 "
        " 8 GT/s (3) of 16 GT/s (4)  0x01010005  0x013b1f07\n"
        " 2     1       -  0000:00:02.0     -  -            -           -          -         -                       - "
        "                         -  0x0101ffff  0x00000200\n");
}

TEST_F(Show, SaysWhenAndFromWhatTheRowsWereLoaded) {
    EXPECT_THAT(run("zebdb-cds show bridges").out, ContainsRegex("\n\nLoaded .* UTC, from 'x\\.xml'\n$"));
    EXPECT_THAT(run("zebdb-cds show inventory.db").out, ContainsRegex("\nLoaded .* UTC, from 'x\\.xml'\n$"));
    EXPECT_THAT(run("zebdb-cds show x.xml").out, Not(HasSubstr("Loaded")));
    EXPECT_THAT(run("zebdb-cds show --format json").out, Not(HasSubstr("Loaded")));
    EXPECT_THAT(run("zebdb-cds show bridges --redact").out, ContainsRegex("\n\nLoaded .* UTC\n$"));
}

TEST_F(Show, HasALineForEachRowAsJsonl) {
    const std::string lines = show("--format jsonl");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 7);
    EXPECT_THAT(show("bridges --format jsonl"), StartsWith("{\"schema\":2,\"kind\":\"bridges\",\"Id\":1,"));
}

TEST_F(Show, TakesTextAsAnotherNameOfTheTable) {
    EXPECT_EQ(show("--format text"), show("--format table"));
}

TEST_F(Show, PrintsOneKind) {
    EXPECT_EQ(show("bridges"),
              "Bridges (2)\n"
              "Id  Node  Parent  Address       Vendor:dev  Revision  Class     Kind          Primary bus  Bus range\n"
              " 1     1       -  0000:00:1c.0  8086:a190   0xf9      0x060400  bridge (PCI)  00           3a-3f\n"
              " 2     1       1  0000:3a:02.1  -           -         -         -             -            -\n");
}

TEST_F(Show, NamesVendorsAndDevicesAsTheTreeDoes) {
    write("ids", "8086  Intel Corporation\n\ta190  Root Port\n");
    EXPECT_THAT(run("ZEBDB_PCI_IDS=ids zebdb-cds show bridges").out,
                HasSubstr("  8086:a190   Intel Corporation Root Port  "));
}

TEST_F(Show, FitsIntoTheWidthOfTheEnvironmentAlsoInAPipe) {
    const std::string shown = run("COLUMNS=40 NO_COLOR=1 zebdb-cds show processors").out;
    EXPECT_THAT(shown, HasSubstr("\nVersion        Züri 9000\n"));
    EXPECT_THAT(run("COLUMNS=nonsense zebdb-cds show processors").out, HasSubstr("\nId  Node  Socket  "));
}

TEST_F(Show, HasTheColumnsThatAreChosen) {
    EXPECT_EQ(show("memory --columns DevLocator,Attributes"),
              "Memory (2)\n"
              "DevLocator  Attributes\n"
              "DIMM A1     -\n"
              "DIMM A2     -\n");
}

TEST_F(Show, HasTheColumnsThatAreChosenInEachFormat) {
    EXPECT_EQ(show("memory --columns DevLocator,Attributes --format csv"),
              "DevLocator,Attributes\r\nDIMM A1,\r\nDIMM A2,\r\n");
    EXPECT_EQ(json::parse(show("memory --columns Id --format json")),
              json::parse(R"({"schema": 2, "memory": [{"Id": 1}, {"Id": 2}]})"));
}

TEST_F(Show, LeavesOutTheKindsThatHaveNoneOfTheColumnsThatAreChosen) {
    EXPECT_THAT(show("--columns DevLocator"), StartsWith("Memory (2)\n"));
    EXPECT_THAT(show("--columns DevLocator"), Not(HasSubstr("Processors")));
}

TEST_F(Show, JsonOfOneKindHoldsNoOther) {
    const json shown = show_json("memory");
    EXPECT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown["memory"].size(), 2u);
}

TEST_F(Show, CsvHasAHeaderAndALineARow) {
    EXPECT_EQ(
        show("bridges --format csv"),
        "Id,ParentId,NodeIndex,SegNo,BusNo,DevNo,FunNo,VendorId,DevId,RevId,ClsCode,PriBusNo,SndBusNo,SubBusNo\r\n"
        "1,,1,0,0,28,0,32902,41360,249,394240,0,58,63\r\n"
        "2,1,1,0,58,2,1,,,,,,,\r\n");
}

TEST_F(Show, RedactHidesSerialNumbersAndAssetTagsInEveryFormat) {
    for (const std::string format : {"table", "json", "csv"}) {
        const std::string shown = show("processors --redact --format " + format);
        EXPECT_THAT(shown, Not(HasSubstr("CPU-SECRET")));
        EXPECT_THAT(shown, Not(HasSubstr("CPU-TAG")));
        EXPECT_THAT(shown, HasSubstr("[redacted]"));
        EXPECT_THAT(shown, HasSubstr("CPU 1"));
    }
    EXPECT_THAT(show("memory --redact"), Not(HasSubstr("DIMM-SECRET")));
}

TEST_F(Show, TakesTheDatabaseFromTheEnvironment) {
    fs::rename(folder() / "inventory.db", folder() / "other.db");
    EXPECT_THAT(run("ZEBDB_DATABASE=other.db zebdb-cds show processors").out, StartsWith("Processors (1)\n"));
}

TEST_F(Show, ReadsADatabaseThatMayNotBeWritten) {
    fs::permissions(folder() / "inventory.db", fs::perms::owner_read);
    EXPECT_THAT(run_unprivileged("zebdb-cds show processors").out, StartsWith("Processors (1)\n"));
}

TEST_F(Show, LeavesTheDatabaseAsItIs) {
    const std::string before = read("inventory.db");
    show("--format json");
    EXPECT_TRUE(read("inventory.db") == before);
    EXPECT_THAT(names(), ElementsAre("inventory.db", "x.xml"));
}

TEST_F(Show, ShowsWhatWasThereBeforeALoadThatWasKilled) {
    // The first write of a transaction that outgrows the cache reaches the file; the copy is what a crash leaves.
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open((folder() / "inventory.db").c_str(), &connection), SQLITE_OK);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> writer(connection, sqlite3_close);
    ASSERT_EQ(sqlite3_exec(connection,
                           "PRAGMA cache_size = 1; BEGIN; DELETE FROM Processor;"
                           "INSERT INTO Memory (BankLocator) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
                           "FROM n WHERE i < 5000) SELECT 'bank' || i FROM n",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    fs::copy(folder() / "inventory.db", folder() / "crashed.db");
    fs::copy(folder() / "inventory.db-journal", folder() / "crashed.db-journal");

    EXPECT_THAT(show("processors --database crashed.db"), StartsWith("Processors (1)\n"));
    EXPECT_THAT(show("memory --database crashed.db"), StartsWith("Memory (2)\n"));
}

TEST_F(Show, GoesQuietlyWhenNobodyReads) {
    const command_result result = run("{ zebdb-cds show; echo $? >status; } | true");
    EXPECT_EQ(read("status"), "0\n");
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Show, FailsWhenItsOutputCannotBeWritten) {
    const command_result result = run("zebdb-cds show >/dev/full");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: cannot write to standard output: No space left on device\n");
}

TEST_F(Show, FailsWhenItsOutputIsClosed) {
    const command_result result = run("zebdb-cds show >&-");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zebdb-cds: cannot write to standard output: Bad file descriptor\n");
}

class ShowFailure : public command_test {
protected:
    void expect_failure(const std::string& database, const std::string& message) {
        const command_result result = run("zebdb-cds show --format json --database " + database);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, "zebdb-cds: " + message + "\n");
        EXPECT_THAT(result.out, IsEmpty());
    }
};

TEST_F(ShowFailure, OfAMissingDatabase) {
    expect_failure("x.db",
                   "cannot read database 'x.db': No such file or directory; make it with 'zebdb-cds load' or name "
                   "another with --database");
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(ShowFailure, OfAFolder) {
    expect_failure(".", "database '.' is a folder; name a file with --database");
}

TEST_F(ShowFailure, OfAPipe) {
    ASSERT_EQ(run("mkfifo pipe").status, 0);
    expect_failure("pipe", "database 'pipe' is a pipe or a device; name a file with --database");
}

TEST_F(ShowFailure, OfAFileThatIsNoDatabase) {
    write("letter.txt", std::string(1000, 'a'));
    expect_failure("letter.txt", "cannot read 'letter.txt': file is not a database; name another file with --database");
}

TEST_F(ShowFailure, OfADatabaseThatAnotherProcessHasLocked) {
    execute("x.db", "CREATE TABLE Processor (Id INTEGER)");
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open((folder() / "x.db").c_str(), &connection), SQLITE_OK);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> other(connection, sqlite3_close);
    ASSERT_EQ(sqlite3_exec(connection, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    expect_failure("x.db",
                   "cannot read 'x.db': database is locked; another program is using it, try again when that is done");
}

TEST_F(ShowFailure, OfADatabaseWithoutAnInventory) {
    execute("stamps.db", "CREATE TABLE Stamps (Id INTEGER)");
    expect_failure("stamps.db",
                   "cannot read 'stamps.db': no such table: Processor; it holds no inventory, name another with "
                   "--database");
}

TEST_F(ShowFailure, OfADatabaseThatHasAViewInPlaceOfATable) {
    execute("views.db", "CREATE VIEW Processor AS SELECT 1 AS Id");
    expect_failure(
        "views.db",
        "cannot read 'views.db': access to view \"Processor\" prohibited; it holds no inventory, name another "
        "with --database");
}
