// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/inventory_service/service_database.h"
#include "support/built.h"
#include "support/cds_text.h"
#include "support/quoted.h"
#include "support/sandboxed_test.h"
#include "support/server_of_revision.h"
#include "support/sqlite_database.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr const char* database = "/tmp/inventory.db";
constexpr const char* journal = "/tmp/inventory.db-journal";

using clock = std::chrono::steady_clock;

// Starts a refresh in a process group of its own, with its log in /tmp/log.
pid_t start_refresh(const char* cds_path) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/tmp/log", O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    std::string program = built::refresh;
    std::string argument = cds_path;
    char* arguments[] = {program.data(), argument.data(), nullptr};
    pid_t started = -1;
    EXPECT_EQ(posix_spawn(&started, program.c_str(), &files, &attributes, arguments, environ), 0);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return started;
}

int wait_for(pid_t refresh) {
    int status = 0;
    EXPECT_EQ(waitpid(refresh, &status, 0), refresh);
    return status;
}

int refresh(const char* cds_path) {
    return WEXITSTATUS(wait_for(start_refresh(cds_path)));
}

// Every row of the inventory, once SQLite has found the file whole.
std::vector<std::string> inventory() {
    sqlite_database opened(database);
    EXPECT_THAT(opened.run("PRAGMA integrity_check"), ElementsAre("ok"));
    std::vector<std::string> rows;
    for (const std::string& table : inventory_tables()) {
        for (const std::string& row : opened.run("SELECT * FROM " + table + " ORDER BY Id")) {
            rows.push_back(table + ' ' + row);
        }
    }
    return rows;
}

bool is_running(pid_t refresh) {
    siginfo_t ended = {};
    EXPECT_EQ(waitid(P_PID, static_cast<id_t>(refresh), &ended, WEXITED | WNOHANG | WNOWAIT), 0);
    return ended.si_pid == 0;
}

template <class Condition>
void wait_while_running(pid_t refresh, Condition until) {
    while (!until() && is_running(refresh)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

bool has_database_open(pid_t process) {
    std::error_code gone;
    const std::filesystem::directory_iterator descriptors("/proc/" + std::to_string(process) + "/fd", gone);
    return std::any_of(begin(descriptors), end(descriptors), [&gone](const auto& descriptor) {
        return std::filesystem::equivalent(descriptor, database, gone);
    });
}

// Kills the refresh with everything that it has started; whether it was still running.
bool kill_refresh(pid_t refresh) {
    kill(-refresh, SIGKILL);
    return WIFSIGNALED(wait_for(refresh));
}

// One moment in each of `count` equal parts of `duration`, in random order.
std::vector<clock::duration> random_moments(clock::duration duration, int count) {
    std::mt19937 random(20240229);
    std::vector<clock::duration> moments;
    for (int part = 0; part < count; ++part) {
        std::uniform_real_distribution<double> within(part, part + 1);
        moments.push_back(std::chrono::duration_cast<clock::duration>(duration * (within(random) / count)));
    }
    std::shuffle(moments.begin(), moments.end(), random);
    return moments;
}

}  // namespace

// Two servers; the first one is in the database.
class Refresh : public sandboxed_test {
protected:
    static constexpr const char* first_server = "/tmp/first.xml";
    static constexpr const char* second_server = "/tmp/second.xml";

    void SetUp() override {
        sandboxed_test::SetUp();
        ASSERT_EQ(setenv("ZEBDB_DATABASE", database, 1), 0);
        write_file(first_server, server_of_revision(600, 1));
        write_file(second_server, server_of_revision(500, 2));
        ASSERT_EQ(refresh(first_server), 0) << content_of("/tmp/log");
        first_inventory = inventory();
        ASSERT_EQ(first_inventory.size(), 600u * 5);
    }

    // Refreshes from `cds_path`, which must fail and change nothing.
    void expect_failure(const char* cds_path, const std::string& reason) {
        const auto files = kept_files();
        EXPECT_EQ(refresh(cds_path), 1);
        EXPECT_THAT(content_of("/tmp/log"), HasSubstr(reason));
        EXPECT_TRUE(inventory() == first_inventory);
        EXPECT_EQ(kept_files(), files);
    }

    // The median of several refreshes, the last of which is from the first server.
    static clock::duration usual_duration() {
        std::array<clock::duration, 5> durations = {};
        bool from_first = true;
        for (clock::duration& duration : durations) {
            const auto start = clock::now();
            EXPECT_EQ(refresh(from_first ? first_server : second_server), 0);
            duration = clock::now() - start;
            from_first = !from_first;
        }
        std::sort(durations.begin(), durations.end());
        return durations[durations.size() / 2];
    }

    static std::vector<std::string> kept_files() {
        return {content_of(place::pci_keys), content_of(place::adapter_keys), content_of(place::system_digest),
                content_of(place::pci_digest)};
    }

    std::vector<std::string> first_inventory;
};

TEST_F(Refresh, LeavesTheOldInventoryWhenItIsKilledBeforeItsTransaction) {
    sqlite_database writer(database);
    writer.run("BEGIN IMMEDIATE");  // no other transaction can begin
    const pid_t killed = start_refresh(second_server);
    wait_while_running(killed, [killed] { return has_database_open(killed); });
    EXPECT_TRUE(kill_refresh(killed));
    writer.run("COMMIT");
    EXPECT_TRUE(inventory() == first_inventory);
}

TEST_F(Refresh, LeavesTheOldInventoryWhenItIsKilledWithinItsTransaction) {
    sqlite_database reader(database);
    reader.run("BEGIN; SELECT count(*) FROM PCIs");  // no other transaction can be committed
    const pid_t killed = start_refresh(second_server);
    wait_while_running(killed, [] { return exists(journal); });
    EXPECT_TRUE(kill_refresh(killed));
    EXPECT_TRUE(exists(journal));
    reader.run("COMMIT");
    EXPECT_TRUE(inventory() == first_inventory);
}

TEST_F(Refresh, LeavesTheNewInventoryWhenItIsKilledAfterItsTransaction) {
    const std::string digest_script = content_of(place::digest_script);
    write_file(place::digest_script, "#!/bin/sh\n>/tmp/committed; while :; do sleep 1; done\n");
    const pid_t killed = start_refresh(second_server);
    wait_while_running(killed, [] { return exists("/tmp/committed"); });
    EXPECT_TRUE(kill_refresh(killed));
    EXPECT_EQ(inventory().size(), 500u * 5);

    write_file(place::digest_script, digest_script);
    EXPECT_EQ(refresh(second_server), 0);
    EXPECT_THAT(content_of("/tmp/log"), HasSubstr("INFO: system inventory changed\n"));
    EXPECT_THAT(content_of("/tmp/log"), HasSubstr("INFO: pci inventory changed\n"));
}

// Kills at as many moments as there is time for.
TEST_F(Refresh, LeavesTheOldInventoryOrTheNewOneWheneverItIsKilled) {
    constexpr int moments = 200;
    constexpr std::chrono::seconds time_for_them(20);
    ASSERT_EQ(refresh(second_server), 0);
    const auto second_inventory = inventory();
    const auto duration = usual_duration();

    const auto end = clock::now() + time_for_them;
    int rounds = 0;
    int finished = 0;
    bool first_is_old = true;
    for (const auto moment : random_moments(duration, moments)) {
        const pid_t killed = start_refresh(first_is_old ? second_server : first_server);
        std::this_thread::sleep_for(moment);
        const bool done = !kill_refresh(killed);

        const auto found = inventory();
        const bool is_first = found == first_inventory;
        ASSERT_TRUE(is_first || found == second_inventory) << "neither the old inventory nor the new one";
        ASSERT_FALSE(done && is_first == first_is_old) << "a finished refresh left the old inventory";
        first_is_old = is_first;
        finished += done ? 1 : 0;
        if (++rounds; clock::now() >= end) {
            break;
        }
    }
    std::cout << "killed " << rounds - finished << " times at " << rounds << " of " << moments << " moments within "
              << std::chrono::duration_cast<std::chrono::milliseconds>(duration).count() << " ms\n";
    EXPECT_EQ(refresh(second_server), 0);
    EXPECT_TRUE(inventory() == second_inventory);
}

TEST_F(Refresh, ThatIsCommittedChangesTheInventory) {
    EXPECT_EQ(refresh(second_server), 0);
    const auto found = inventory();
    EXPECT_EQ(found.size(), 500u * 5);
    EXPECT_TRUE(std::none_of(found.begin(), found.end(),
                             [](const std::string& row) { return row.find("revision 1") != std::string::npos; }));
}

TEST_F(Refresh, OfTheSameHardwareKeepsTheDigestsAndGivesNoNotice) {
    const auto files = kept_files();
    EXPECT_EQ(refresh(first_server), 0);
    EXPECT_EQ(kept_files(), files);
    EXPECT_THAT(content_of("/tmp/log"), HasSubstr("INFO: no system inventory change\n"));
    EXPECT_THAT(content_of("/tmp/log"), HasSubstr("INFO: no pci inventory change\n"));
    EXPECT_THAT(sqlite_database(database).run("SELECT * FROM InventorySequence ORDER BY Kind"),
                ElementsAre("0|1", "1|1"));
}

TEST_F(Refresh, OfAMissingCdsFileChangesNothing) {
    expect_failure("/tmp/missing.xml", "CDS XML ERROR");
}

TEST_F(Refresh, OfACutCdsFileChangesNothing) {
    const std::string whole = content_of(second_server);
    write_file("/tmp/cut.xml", whole.substr(0, whole.size() / 2));
    expect_failure("/tmp/cut.xml", "CDS XML ERROR");
}

TEST_F(Refresh, OfACdsFileThatBreaksTheGrammarChangesNothing) {
    write_file("/tmp/grammar.xml", cds_component(cds_slots("<component><setting_group/></component>")));
    expect_failure("/tmp/grammar.xml", "CDS XML ERROR");
}

TEST_F(Refresh, WithADeleteThatFailsChangesNothing) {
    sqlite_database(database).run(
        "CREATE TRIGGER refuse BEFORE DELETE ON PCIBridge WHEN OLD.Id = 300 BEGIN SELECT RAISE(ABORT, 'refused'); END");
    expect_failure(second_server, "failed to delete PCI Bridges");
}

TEST_F(Refresh, WithAnInsertThatFailsChangesNothing) {
    sqlite_database(database).run(
        "CREATE TRIGGER refuse BEFORE INSERT ON PCIs WHEN NEW.SlotNo = 300 BEGIN SELECT RAISE(ABORT, 'refused'); END");
    expect_failure(second_server, "failed to insert PCI device");
}

TEST_F(Refresh, WithAnAdapterThatCannotBeInsertedChangesNothing) {
    sqlite_database(database).run(
        "CREATE TRIGGER refuse BEFORE INSERT ON PCIAdapter BEGIN SELECT RAISE(ABORT, 'refused'); END");
    expect_failure(second_server, "parse_aim return error, rc = 0x");
}

TEST_F(Refresh, WithAnErrorAtWhichSqliteRollsBackByItselfChangesNothing) {
    sqlite_database(database).run(
        "CREATE TRIGGER refuse BEFORE INSERT ON PCIs WHEN NEW.SlotNo = 300 BEGIN SELECT RAISE(ROLLBACK, 'refused'); "
        "END");
    expect_failure(second_server, "failed to insert PCI device");
}

// The reader's lock outlasts the five seconds for which the database waits.
TEST_F(Refresh, ThatCannotCommitBesideAReaderChangesNothing) {
    sqlite_database reader(database);
    reader.run("BEGIN; SELECT count(*) FROM PCIs");
    expect_failure(second_server, "unable to commit pci transaction");
}

TEST_F(Refresh, OnAFullDiskChangesNothing) {
    write_file("/tmp/on_a_full_disk", std::string("export ZEBDB_DATABASE=/tmp/disk/inventory.db\n") +
                                          "cp /tmp/inventory.db $ZEBDB_DATABASE || exit 2\n" +
                                          "sqlite3 $ZEBDB_DATABASE .dump >/tmp/before || exit 3\n" +
                                          quoted(built::refresh) + " /tmp/second.xml 2>/tmp/log && exit 4\n" +
                                          "sqlite3 $ZEBDB_DATABASE .dump | cmp - /tmp/before || exit 5\n");
    const std::string size = std::to_string(std::filesystem::file_size(database) + 65536);
    std::filesystem::create_directory("/tmp/disk");
    const std::string on_disk = "'" SOURCE_DIR "/tests/support/on-small-disk' " + size + " /tmp/disk ";
    const int status = std::system((on_disk + "sh /tmp/on_a_full_disk").c_str());
    if (WEXITSTATUS(status) == 77) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    EXPECT_EQ(status, 0);
    EXPECT_THAT(content_of("/tmp/log"), HasSubstr("database or disk is full"));
}
