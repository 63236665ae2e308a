#include <gmock/gmock.h>
#include <sqlite3.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "support/cds_text.h"
#include "support/command_test.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

std::vector<setting> pci_function(const std::string& bus, const std::string& device, const std::string& function,
                                  const std::vector<setting>& more = {}) {
    std::vector<setting> settings = {hex("Bus Number", bus), hex("Device Number", device),
                                     hex("Function Number", function)};
    settings.insert(settings.end(), more.begin(), more.end());
    return settings;
}

const std::string server_settings =
    cds_group("component_struct_info", {text("comp_type", "EFI_CT_MAIN_SERVER"), integer("slot_index", "1")});

// A server with one of everything.
const std::string server = cds_component(
    server_settings +
    cds_slots(cds_component("cpu_info", {text("Socket Designation", "CPU 1"), text("Processor Version", "Züri 9000"),
                                         hex("Processor ID", "0x000806F8BFEBFBFF"), integer("Core Count", "16"),
                                         integer("Core Enabled", "12"), integer("Thread Count", "24"),
                                         integer("Current Speed", "2100"), integer("L3 Cache Installed Size", "25344"),
                                         text("Serial Number", "CPU-SECRET"), text("Asset Tag", "CPU-TAG")}) +
              cds_component("memory_info", {integer("Slot Number", "3"), text("Device Locator", "DIMM A1"),
                                            integer("Size in MB", "32768"), integer("Memory Type", "26"),
                                            integer("Configured Memory Clock Speed", "2666"),
                                            text("Manufacturer", "Maker"), text("Serial Number", "DIMM-SECRET")}) +
              cds_component("memory_info",
                            {text("Device Locator", "DIMM A2"), integer("Size in MB", "129408"),
                             integer("Memory Type", "99"), text("Manufacturer", "Intel"), hex("Type Detail", "0x1080"),
                             hex("Capacity", "0x1F98000000"), hex("App Direct Capacity", "0x1F80000000")}) +
              cds_component(
                  "pci_bridge_info",
                  pci_function("0", "1C", "0",
                               {hex("Vendor ID", "8086"), hex("Device ID", "A190"), hex("Revision ID", "F9"),
                                hex("Class Code", "060400"), hex("Primary Bus Number", "0"),
                                hex("Secondary Bus Number", "3A"), hex("Subordinate Bus Number", "3F")}),
                  cds_component("pci_bridge_info", pci_function("3A", "2", "1")) +
                      cds_component(
                          "pci_device_info",
                          pci_function("3B", "1F", "7",
                                       {hex("Segment Number", "1"), integer("Location", "1"),
                                        integer("Slot Number", "5"), hex("Vendor ID", "8086"), hex("Device ID", "1572"),
                                        hex("Subsystem Vendor ID", "8086"), hex("Subsystem ID", "7"),
                                        hex("Class Code", "020000"), text("Slot Designation", "Slot 5"),
                                        integer("Negotiated Link Width", "4"), integer("Maximum Link Width", "8"),
                                        integer("Current Link Speed", "3"), integer("Max Link Speed", "4")}))) +
              cds_component("pci_device_info", pci_function("0", "2", "0", {integer("Location", "1")}))));

}  // namespace

class Show : public command_test {
protected:
    Show() { load(server); }

    void load(const std::string& content) {
        write("x.xml", content);
        const command_result result = run("zebdb-cds load x.xml");
        if (result.status != 0) {
            throw std::runtime_error(result.err);
        }
    }

    std::string show(const std::string& arguments) {
        const command_result result = run("zebdb-cds show " + arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.err, IsEmpty());
        return result.out;
    }

    json show_json(const std::string& arguments = "") { return json::parse(show(arguments + " --format json")); }
};

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
        "Id  Node  Slot  Locator       Size  Type      Speed  Manufacturer  Serial number   Capacity  App direct  "
        "Array\n"
        " 1     1     3  DIMM A1     32 GiB  DDR4  2666 MT/s  Maker         DIMM-SECRET            -           -  "
        "    -\n"
        " 2     1     -  DIMM A2  126.4 GiB  99            -  Intel         -              126.4 GiB     126 GiB  "
        "    -\n"
        "\n"
        "Bridges (2)\n"
        "Id  Node  Parent  Address       Vendor:dev  Revision  Class     Primary bus  Bus range\n"
        " 1     1       -  0000:00:1c.0  8086:a190   0xf9      0x060400  00           3a-3f\n"
        " 2     1       1  0000:3a:02.1  -           -         -         -            -\n"
        "\n"
        "Devices (2)\n"
        "Id  Node  Bridge  Address       Slot  Designation  Vendor:dev  Subsystem  Class     Lanes  PCIe  "
        "Device key  Function key\n"
        " 1     1       1  0001:3b:1f.7     5  Slot 5       8086:1572   8086:0007  0x020000    4/8   3/4  "
        "0x01010005  0x013b1f07\n"
        " 2     1       -  0000:00:02.0     -  -            -           -          -             -     -  "
        "0x0101ffff  0x00000200\n");
}

TEST_F(Show, TakesTextAsAnotherNameOfTheTable) {
    EXPECT_EQ(show("--format text"), show("--format table"));
}

TEST_F(Show, PrintsOneKind) {
    EXPECT_EQ(show("bridges"),
              "Bridges (2)\n"
              "Id  Node  Parent  Address       Vendor:dev  Revision  Class     Primary bus  Bus range\n"
              " 1     1       -  0000:00:1c.0  8086:a190   0xf9      0x060400  00           3a-3f\n"
              " 2     1       1  0000:3a:02.1  -           -         -         -            -\n");
}

TEST_F(Show, PrintsADashForNoNode) {
    load(cds_file(cds_component("cpu_info", {text("Socket Designation", "CPU 1")})));
    EXPECT_THAT(show("processors"), HasSubstr("\n 1     -  CPU 1 "));
}

TEST_F(Show, PrintsTheKindsWithoutRowsOfAnEmptyInventory) {
    load(cds_file(""));
    EXPECT_EQ(show(""), "Processors (0)\n\nMemory (0)\n\nBridges (0)\n\nDevices (0)\n");
}

TEST_F(Show, KeepsControlCharactersFromTheTerminal) {
    execute("inventory.db", "UPDATE Processor SET Version = 'a' || char(27) || '[2J' || char(10) || char(155) || 'b'");
    EXPECT_THAT(show("processors"), HasSubstr("  a\\x1b[2J\\n\\x9bb  "));
}

TEST_F(Show, WritesAReplacementCharacterForTextThatIsNotUtf8) {
    execute("inventory.db", "UPDATE Processor SET Version = CAST(x'61FF62C3' AS TEXT)");
    EXPECT_THAT(show("processors"), HasSubstr("  a\uFFFDb\uFFFD  "));
    EXPECT_EQ(show_json("processors")["processors"][0]["Version"], "a\uFFFDb\uFFFD");
    EXPECT_THAT(show("processors --format csv"), HasSubstr(",a\uFFFDb\uFFFD,"));
}

TEST_F(Show, JsonHoldsTheSchemaNumberAndTheKindsInOrder) {
    const auto shown = nlohmann::ordered_json::parse(show("--format json"));
    std::vector<std::string> keys;
    for (const auto& item : shown.items()) {
        keys.push_back(item.key());
    }
    EXPECT_THAT(keys, ElementsAre("schema", "processors", "memory", "bridges", "devices"));
    EXPECT_EQ(shown["schema"], 1);
}

TEST_F(Show, JsonOfOneKindHoldsNoOther) {
    const json shown = show_json("memory");
    EXPECT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown["memory"].size(), 2u);
}

TEST_F(Show, JsonHoldsEveryColumnWithItsRawNumber) {
    EXPECT_EQ(show_json("bridges")["bridges"],
              json::parse(R"([{"Id": 1, "ParentId": -1, "NodeIndex": 1, "SegNo": 0, "BusNo": 0, "DevNo": 28, "FunNo": 0,
                               "VendorId": 32902, "DevId": 41360, "RevId": 249, "ClsCode": 394240, "PriBusNo": 0,
                               "SndBusNo": 58, "SubBusNo": 63},
                              {"Id": 2, "ParentId": 1, "NodeIndex": 1, "SegNo": 0, "BusNo": 58, "DevNo": 2, "FunNo": 1,
                               "VendorId": null, "DevId": null, "RevId": null, "ClsCode": null, "PriBusNo": null,
                               "SndBusNo": null, "SubBusNo": null}])"));
}

TEST_F(Show, JsonHasTheColumnsOfEachTable) {
    const json shown = show_json();
    EXPECT_EQ(shown["processors"][0].size(), 33u);
    EXPECT_EQ(shown["memory"][0].size(), 32u);
    EXPECT_EQ(shown["bridges"][0].size(), 14u);
    EXPECT_EQ(shown["devices"][0].size(), 30u);
}

TEST_F(Show, JsonWritesCapacitiesUnsignedAndRowReferencesSigned) {
    execute("inventory.db", "UPDATE Processor SET ProcId = -1");
    execute("inventory.db",
            "UPDATE Memory SET Capacity = -1, MemCapacity = -2, AppDirCap = -3, UnconfigCap = -4, InaccCap = -5, "
            "ReservedCap = -6");
    const json shown = show_json();
    EXPECT_EQ(shown["processors"][0]["ProcId"], 18446744073709551615u);
    const json& module = shown["memory"][0];
    EXPECT_EQ(module["Capacity"], 18446744073709551615u);
    EXPECT_EQ(module["MemCapacity"], 18446744073709551614u);
    EXPECT_EQ(module["AppDirCap"], 18446744073709551613u);
    EXPECT_EQ(module["UnconfigCap"], 18446744073709551612u);
    EXPECT_EQ(module["InaccCap"], 18446744073709551611u);
    EXPECT_EQ(module["ReservedCap"], 18446744073709551610u);
    EXPECT_EQ(module["ArrayId"], -1);
    EXPECT_EQ(shown["bridges"][0]["ParentId"], -1);
    EXPECT_EQ(shown["devices"][1]["BridgeId"], -1);
}

TEST_F(Show, JsonOfAnEmptyInventoryHoldsEmptyLists) {
    load(cds_file(""));
    EXPECT_EQ(show_json(),
              json::parse(R"({"schema": 1, "processors": [], "memory": [], "bridges": [], "devices": []})"));
}

TEST_F(Show, OrdersRowsByTheirId) {
    execute("inventory.db", "UPDATE Memory SET Id = 9 WHERE Id = 1");
    const json rows = show_json("memory")["memory"];
    EXPECT_EQ(rows[0]["Id"], 2);
    EXPECT_EQ(rows[1]["Id"], 9);
}

TEST_F(Show, CsvHasAHeaderAndALineARow) {
    EXPECT_EQ(
        show("bridges --format csv"),
        "Id,ParentId,NodeIndex,SegNo,BusNo,DevNo,FunNo,VendorId,DevId,RevId,ClsCode,PriBusNo,SndBusNo,SubBusNo\r\n"
        "1,-1,1,0,0,28,0,32902,41360,249,394240,0,58,63\r\n"
        "2,1,1,0,58,2,1,,,,,,,\r\n");
}

TEST_F(Show, CsvQuotesWhatWouldEndAField) {
    execute("inventory.db",
            "UPDATE Processor SET Socket = 'a,b', Manufacturer = 'c\"d', Version = 'e' || char(13) || char(10) || 'f',"
            "SerialNo = '', AssetTag = ' g '");
    EXPECT_THAT(show("processors --format csv"),
                HasSubstr("\r\n1,1,\"a,b\",,,\"c\"\"d\",2259465255255039,\"e\r\nf\",,,,2100,,,\"\", g ,,16,"));
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

TEST_F(Show, RedactLeavesWhatIsAbsentAbsent) {
    const json shown = show_json("memory --redact")["memory"];
    EXPECT_EQ(shown[0]["SerialNo"], "[redacted]");
    EXPECT_EQ(shown[0]["AssetTag"], nullptr);
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
