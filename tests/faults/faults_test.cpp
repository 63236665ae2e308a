// SPDX-License-Identifier: Apache-2.0

// Whatever fails, the inventory is the old one or the new one, whole, and the exit status says which; a process that
// only reads prints everything or says why it does not.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "faults/outcomes.h"
#include "support/built.h"
#include "support/quoted.h"
#include "support/sandboxed_test.h"
#include "support/small_server.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* folder = "/tmp/faults";
constexpr const char* old_database = "/tmp/faults/old.db";
constexpr const char* database = "/tmp/faults/inventory.db";
constexpr const char* server = "/tmp/faults/server.xml";
constexpr const char* kept = "/tmp/faults/kept";

// What a refresh and its like leave behind besides.
constexpr const char* left_files[] = {place::pci_keys, place::adapter_keys, place::system_digest, place::pci_digest,
                                      place::bmc_address};

fs::path kept_copy(const fs::path& file) {
    return kept / file.filename();
}

void remove_database() {
    fs::remove(database);
    fs::remove(database + std::string("-journal"));
}

void keep_files() {
    fs::create_directory(kept);
    for (const fs::path file : left_files) {
        if (fs::exists(file)) {
            fs::copy_file(file, kept_copy(file));
        }
    }
}

void restore_files() {
    for (const fs::path file : left_files) {
        fs::remove(file);
        if (fs::exists(kept_copy(file))) {
            fs::copy_file(kept_copy(file), file);
        }
    }
}

void restore() {
    remove_database();
    fs::copy_file(old_database, database);
    restore_files();
}

/// The processes by what they do, with the statuses that they have to end with when nothing fails.
struct named_subject {
    const char* name;
    int status;
    subject tried;
};

void PrintTo(const named_subject& named, std::ostream* out) {
    *out << named.name;
}

using command_line = std::vector<std::string>;

command_line zebdb_cds(command_line arguments) {
    arguments.insert(arguments.begin(), built::command);
    return arguments;
}

command_line entry_point(command_line arguments) {
    arguments.insert(arguments.begin(), built::entry_point);
    return arguments;
}

subject reads(command_line command) {
    return {std::move(command), "", restore, {"0, whole", "2, message"}, {}, {}};
}

subject compares(command_line command) {
    return {std::move(command), "", restore, {"1, whole", "2, message"}, {}, {}};
}

// A file whose digest cannot be read counts as changed.
subject checks(command_line command) {
    return {std::move(command), "", restore, {"0, whole", "1, NOT WHOLE", "2, message"}, {}, {}};
}

// A file that cannot be read is told in its line.
subject exports(command_line command) {
    return {std::move(command), "", restore, {"0, whole", "2, message"}, {}, {"1, NOT WHOLE"}};
}

// Names that cannot be read are left away.
subject names(command_line command) {
    return {std::move(command), "", restore, {"0, whole", "2, message"}, {}, {"0, NOT WHOLE"}};
}

// What was committed stays when the message about it cannot be written.
subject writes(command_line command, std::function<void()> prepare = restore) {
    return {std::move(command), database, std::move(prepare), {"0, new", "2, message, old", "2, message, new"}, {}, {}};
}

// An exception for want of memory may pass, and leaves nothing behind that the next call would stumble over.
subject calls(command_line command) {
    return {std::move(command), "", restore, {"0, whole", "1, whole", "3"}, {"4"}, {}};
}

subject fills(command_line command) {
    return {std::move(command), database, restore, {"0, new", "1, message, old", "3, new"}, {"4, old", "4, new"}, {}};
}

const std::vector<named_subject>& subjects() {
    static const std::vector<named_subject> all = {
        {"Load", 0, writes(zebdb_cds({"load", server, "--database", database}))},
        {"LoadIntoANewDatabase", 0, writes(zebdb_cds({"load", server, "--database", database}), remove_database)},
        {"Refresh", 0, writes(zebdb_cds({"refresh", server, "--database", database}))},
        {"Check", 0, checks(zebdb_cds({"check", server, server, "--database", database}))},
        {"BmcAddress", 0, reads(zebdb_cds({"bmc-address", "--database", database}))},
        {"SaveDigest", 0, reads(zebdb_cds({"save-digest", server, server}))},
        {"Show", 0, names(zebdb_cds({"show", "--database", old_database}))},
        {"ShowAsJson", 0, reads(zebdb_cds({"show", "--database", old_database, "--format", "json"}))},
        {"Tree", 0, names(zebdb_cds({"tree", server}))},
        {"Diff", 1, compares(zebdb_cds({"diff", old_database, server}))},
        {"DiffAsJson", 1, compares(zebdb_cds({"diff", old_database, server, "--format", "json"}))},
        {"Explain", 0, reads(zebdb_cds({"explain", server}))},
        {"ExplainAsJson", 0, reads(zebdb_cds({"explain", server, "--format", "json"}))},
        {"Export", 0, exports(zebdb_cds({"export", server, "--at", "2026-11-19T10:00:00Z"}))},
        {"Dump", 0, reads(zebdb_cds({"dump", server}))},
        {"ParseCds", 0, fills(entry_point({"parse_cds", server}))},
        {"ParsePci", 0, fills(entry_point({"parse_pci", server}))},
        {"CheckPci", 0, calls(entry_point({"check_pci", server, server}))},
        {"SavePciDigest", 0, calls(entry_point({"save_pci_digest", server, server}))},
        {"UpdateBmcAddr", 0, calls(entry_point({"update_bmc_addr"}))},
        {"ReadInventoryDigest", 0, calls(entry_point({"read_inventory_digest"}))},
    };
    return all;
}

}  // namespace

class Faults : public sandboxed_test, public testing::WithParamInterface<named_subject> {
protected:
    // An inventory that is refreshed and unchanged, and loaded in the future, so that nobody is told how long ago.
    static void SetUpTestSuite() {
        ASSERT_NE(std::getenv("ZEBDB_SANDBOX"), nullptr) << "run this through ctest or tests/support/in-sandbox";
        fs::create_directory(folder);
        ASSERT_EQ(chdir(folder), 0);
        setenv("ZEBDB_DATABASE", database, 1);
        write_file(server, small_server);
        ASSERT_EQ(std::system(("exec >out 2>&1; zebdb_cds=" + quoted(built::command) +
                               "; old=" + quoted(SOURCE_DIR "/samples/two-socket-server.xml") +
                               "; \"$zebdb_cds\" refresh \"$old\" && \"$zebdb_cds\" save-digest server.xml server.xml"
                               " && sqlite3 inventory.db 'UPDATE Source SET LoadedAt = 4102444800'")
                                  .c_str()),
                  0)
            << content_of("out");
        fs::rename(database, old_database);
        keep_files();
    }

    static void TearDownTestSuite() {
        ASSERT_NE(std::getenv("ZEBDB_SANDBOX"), nullptr);
        ASSERT_EQ(chdir("/"), 0);
        fs::remove_all(folder);
    }

    static void fail_each(call_kind kind) { expect_outcomes(GetParam().tried, GetParam().status, kind); }
};

INSTANTIATE_TEST_SUITE_P(Of, Faults, testing::ValuesIn(subjects()),
                         [](const auto& named) { return std::string(named.param.name); });

TEST_P(Faults, OfAllocations) {
    fail_each(call_kind::allocation);
}

TEST_P(Faults, OfOpens) {
    fail_each(call_kind::open);
}

TEST_P(Faults, OfReads) {
    fail_each(call_kind::read);
}

TEST_P(Faults, OfWrites) {
    fail_each(call_kind::write);
}

TEST_P(Faults, OfSyncs) {
    fail_each(call_kind::sync);
}

TEST_P(Faults, OfRenames) {
    fail_each(call_kind::rename);
}

TEST_P(Faults, OfUnlinks) {
    fail_each(call_kind::unlink);
}
