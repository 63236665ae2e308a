// SPDX-License-Identifier: Apache-2.0

// usage: soak SECONDS EVIDENCE
//
// Readers, loads, refreshes and checks of one database side by side, many of them killed, and others of databases that
// are still to be made. Prints what came of them. The first thing that should not be ends everything with status 1, and
// the folder EVIDENCE then holds what was there. In a private view of the file system, see scripts/soak.

#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "soak/process.h"
#include "soak/revisions.h"
#include "soak/tally.h"
#include "soak/write_history.h"
#include "support/server_of_revision.h"

namespace fs = std::filesystem;

namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr const char* folder = "/tmp/soak";

/// Something that should not be.
struct violation : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void require(bool holds, const std::string& problem) {
    if (!holds) {
        throw violation(problem);
    }
}

void require(bool holds, const ended_process& ended, const std::string& problem) {
    if (!holds) {
        throw violation(problem + "\ncommand: " + ended.command + "\nstatus: " + std::to_string(ended.status) +
                        "\nerrors: " + ended.err + "\noutput: " + ended.out);
    }
}

/// What a message may say of why there is no answer.
using reasons = std::vector<std::string>;

const reasons locked = {"database is locked"};
const reasons locked_or_bad = {"database is locked", "Couldn't find end of Start Tag"};
// A refresh writes the files of keys anew when its rows are committed.
const reasons locked_or_no_keys = {"database is locked", "inventory.fkey"};
const reasons locked_or_none = {"database is locked", "No such file or directory", "it holds no inventory"};

/// How long something takes that nobody kills, lately.
class usual_duration {
public:
    void learn(const ended_process& ended) {
        const auto took = std::chrono::duration_cast<microseconds>(ended.end - ended.start).count();
        recent_ = (7 * recent_ + took) / 8;
    }
    microseconds get() const { return microseconds(recent_); }

private:
    std::atomic<long> recent_{100'000};
};

/// For one thread.
class chance {
public:
    bool one_in(int parts) { return std::uniform_int_distribution<int>(1, parts)(engine_) == 1; }

    template <class Choices>
    const auto& one_of(const Choices& choices) {
        return choices[std::uniform_int_distribution<std::size_t>(0, choices.size() - 1)(engine_)];
    }

    /// Of so many processes one is killed, at any moment; some are done by then.
    std::optional<planned_kill> kill_one_in(int parts, const usual_duration& usual) {
        if (!one_in(parts)) {
            return std::nullopt;
        }
        const double part = std::uniform_real_distribution<double>(0, 1.2)(engine_);
        return planned_kill{one_in(2) ? SIGKILL : SIGTERM,
                            std::chrono::duration_cast<microseconds>(usual.get() * part)};
    }

private:
    std::mt19937 engine_{std::random_device()()};
};

using connection_ptr = std::unique_ptr<sqlite3, int (*)(sqlite3*)>;

connection_ptr open(const std::string& database, int flags) {
    sqlite3* opened = nullptr;
    sqlite3_open_v2(database.c_str(), &opened, flags, nullptr);
    sqlite3_busy_timeout(opened, 60'000);
    return {opened, sqlite3_close};
}

// Whether a write was interrupted, which the next one to open the database rolls back.
bool has_hot_journal(const std::string& database) {
    const connection_ptr reader = open(database, SQLITE_OPEN_READONLY);
    sqlite3_exec(reader.get(), "SELECT count(*) FROM sqlite_schema", nullptr, nullptr, nullptr);
    return sqlite3_extended_errcode(reader.get()) == SQLITE_READONLY_ROLLBACK;
}

// What SQLite says of the file, which has to be "ok".
std::string integrity(const std::string& database) {
    const connection_ptr writer = open(database, SQLITE_OPEN_READWRITE);
    const auto append = [](void* all, int, char** values, char**) {
        *static_cast<std::string*>(all) += values[0] == nullptr ? "null" : values[0];
        return 0;
    };
    std::string text;
    const int rc = sqlite3_exec(writer.get(), "PRAGMA integrity_check", append, &text, nullptr);
    return rc == SQLITE_OK ? text : text + sqlite3_errmsg(writer.get());
}

std::vector<std::string> names_in(const fs::path& path) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void require_names(const fs::path& path, std::vector<std::string> expected) {
    std::sort(expected.begin(), expected.end());
    std::string problem = path.string() + " holds";
    for (const std::string& name : names_in(path)) {
        problem += " '" + name + "'";
    }
    require(names_in(path) == expected, problem);
}

/// A database and everybody who writes to it.
struct written_database {
    std::string path;
    std::string title;  ///< in front of what is counted
    write_history history;
};

class soak {
public:
    /// Makes the databases. Throws std::runtime_error when that fails.
    explicit soak(const fs::path& evidence);

    /// Whether all was as it should be.
    bool run_for(std::chrono::seconds duration);

    void print(std::ostream& out) const { tally_.print(out); }

private:
    using action = void (soak::*)(chance& random);
    using outcome = write_history::outcome;
    using optional_kill = std::optional<planned_kill>;

    void guard(const std::function<void()>& act);
    void repeat(action act, moment end);
    void keep_evidence(const std::string& problem);

    void load(chance& random);
    void refresh(chance& random);
    void check(chance& random);
    void read(chance& random);
    void make_a_database(chance& random);
    void finish();

    ended_process write(written_database& database, const std::string& subcommand, const optional_kill& kill,
                        const reasons& refusals);
    void write_bad_file(const written_database& database, const std::string& subcommand);
    void read(written_database& database, const reading_command& command, const optional_kill& kill,
              const reasons& refusals);
    void look_into(const written_database& database);

    bool was_killed(const ended_process& ended, const std::string& who, const optional_kill& kill);
    bool was_refused(const ended_process& ended, const std::string& who, const reasons& refusals);
    outcome outcome_of(const ended_process& ended, const std::string& who, const optional_kill& kill,
                       const reasons& refusals);

    const fs::path evidence_;
    std::vector<std::string> names_in_tmp_;
    tally tally_;
    std::atomic<bool> is_stopped_{false};
    std::mutex evidence_mutex_;
    std::mutex refresh_mutex_;  // two at a time would mix their files, which is their callers' business
    std::atomic<int> next_revision_{revisions::first};
    std::unique_ptr<revisions> revisions_;
    written_database kept_{"kept.db", "", {}};
    usual_duration usual_load_;
    usual_duration usual_refresh_;
    usual_duration usual_check_;
    usual_duration usual_read_;
};

// --- what came of a process
// --------------------------------------------------------------------------------------------

bool soak::was_killed(const ended_process& ended, const std::string& who, const optional_kill& kill) {
    if (ended.signal == 0) {
        require(ended.status <= 2, ended, "the exit status is none of three");
        return false;
    }
    require(kill && ended.signal == kill->signal, ended, "a signal ended it that nobody sent");
    tally_.count(who + (ended.signal == SIGKILL ? ": killed by SIGKILL" : ": killed by SIGTERM"));
    return true;
}

bool soak::was_refused(const ended_process& ended, const std::string& who, const reasons& refusals) {
    if (ended.status != 2) {
        return false;
    }
    const std::string line = ended.last_error_line();
    const auto said = std::find_if(refusals.begin(), refusals.end(),
                                   [&line](const std::string& text) { return line.find(text) != std::string::npos; });
    require(said != refusals.end(), ended, "it was refused for a reason that there is not");
    tally_.count(who + ": refused, '" + *said + "'");
    return true;
}

// What is committed stays so when the report about it fails.
soak::outcome soak::outcome_of(const ended_process& ended, const std::string& who, const optional_kill& kill,
                               const reasons& refusals) {
    if (was_killed(ended, who, kill)) {
        return outcome::unknown;
    }
    const bool lacks_report = ended.last_error_line().find(" all the same") != std::string::npos;
    if (!lacks_report && was_refused(ended, who, refusals)) {
        return outcome::refused;
    }
    require(lacks_report || ended.status == 0, ended, "it is neither done nor refused");
    tally_.count(who + (lacks_report ? ": committed, without a report" : ": committed"));
    return outcome::committed;
}

// --- what is done to a database
// ----------------------------------------------------------------------------------------

ended_process soak::write(written_database& database, const std::string& subcommand, const optional_kill& kill,
                          const reasons& refusals) {
    const int revision = next_revision_++;
    const std::string file = "server-" + std::to_string(revision) + ".xml";
    std::ofstream(file) << revisions_->cds_file(revision);
    database.history.begin(revision, steady_clock::now());
    const ended_process ended = run(zebdb_cds({subcommand, file, "--database", database.path}), kill);
    const outcome came = outcome_of(ended, database.title + subcommand, kill, refusals);
    require(database.history.end(revision, ended.end, came), ended, "somebody found what was refused");
    fs::remove(file);
    return ended;
}

void soak::write_bad_file(const written_database& database, const std::string& subcommand) {
    const ended_process ended = run(zebdb_cds({subcommand, "bad.xml", "--database", database.path}));
    require(was_refused(ended, database.title + subcommand + " of a bad file", locked_or_bad), ended,
            "it was not refused");
}

void soak::read(written_database& database, const reading_command& command, const optional_kill& kill,
                const reasons& refusals) {
    const std::string who = database.title + command.words.front();
    const ended_process ended = run(command.line(database.path), kill);
    if (was_killed(ended, who, kill) || was_refused(ended, who, refusals)) {
        return;
    }
    const int revision = revisions::revision_in(ended.out);
    const bool is_whole = revisions::without_age(ended.out) == revisions_->output(command, revision);
    require(ended.status == command.status && is_whole, ended, "it found no whole inventory");
    const std::string objection = database.history.objection(revision, ended.start, ended.end);
    require(objection.empty(), ended, "it found revision " + std::to_string(revision) + ", but " + objection);
    tally_.count(who + ": whole");
    if (!kill) {
        usual_read_.learn(ended);
    }
}

void soak::look_into(const written_database& database) {
    const bool is_interrupted = has_hot_journal(database.path);
    const std::string found = integrity(database.path);
    require(found == "ok", "the integrity check of " + database.path + " says: " + found);
    tally_.count(database.title + "integrity check: ok" + (is_interrupted ? ", a write rolled back" : ""));
}

// --- a database that is always there
// -----------------------------------------------------------------------------------

void soak::load(chance& random) {
    const optional_kill kill = random.kill_one_in(2, usual_load_);
    const ended_process ended = write(kept_, "load", kill, locked);
    if (!kill) {
        usual_load_.learn(ended);
    }
    if (ended.signal != 0) {
        if (random.one_in(2)) {
            read(random);  // may be the first one to open it
        }
        look_into(kept_);
    }
}

void soak::refresh(chance& random) {
    const std::lock_guard<std::mutex> lock(refresh_mutex_);
    const optional_kill kill = random.kill_one_in(2, usual_refresh_);
    const ended_process ended = write(kept_, "refresh", kill, locked);
    if (!kill) {
        usual_refresh_.learn(ended);
    }
    if (ended.signal != 0) {
        look_into(kept_);
    }
}

void soak::check(chance& random) {
    const optional_kill kill = random.kill_one_in(8, usual_check_);
    const ended_process ended = run(zebdb_cds({"check", "first.xml", "first.xml", "--database", kept_.path}), kill);
    if (was_killed(ended, "check", kill) || was_refused(ended, "check", locked_or_no_keys)) {
        return;
    }
    const std::string answer = ended.status == 0 ? "unchanged" : "changed";
    require(ended.out.compare(0, answer.size() + 1, answer + '\n') == 0, ended, "it has no answer");
    tally_.count("check: " + answer);
    if (!kill) {
        usual_check_.learn(ended);
    }
}

void soak::read(chance& random) {
    const optional_kill kill = random.kill_one_in(8, usual_read_);
    read(kept_, random.one_of(reading_commands()), kill, locked);
}

// --- one that is made again and again
// ----------------------------------------------------------------------------------

// By two who fill it, one of whom is to be killed, beside one who is refused and one who reads.
void soak::make_a_database(chance& random) {
    const std::string good = random.one_in(4) ? "refresh" : "load";
    const std::string bad = good == "load" && random.one_in(2) ? "refresh" : "load";
    std::unique_lock<std::mutex> lock(refresh_mutex_, std::defer_lock);
    if (good == "refresh" || bad == "refresh") {
        lock.lock();
    }
    const optional_kill kill = random.kill_one_in(1, usual_load_);
    const reading_command& show = reading_commands().front();
    written_database made{"new.db", "new database, ", {}};
    if (random.one_in(2)) {
        std::ofstream("new.db").flush();
    }
    if (good == "refresh") {  // which makes the tables first
        made.history.begin(revisions::none, steady_clock::now());
        made.history.end(revisions::none, steady_clock::now(), outcome::unknown);
    }
    const std::function<void()> acts[] = {
        [&] { write(made, "load", kill, locked); },
        [&] { write(made, good, std::nullopt, locked); },
        [&] { write_bad_file(made, bad); },
        [&] { read(made, show, std::nullopt, locked_or_none); },
    };
    std::vector<std::future<void>> done;
    for (const auto& act : acts) {
        done.push_back(std::async(std::launch::async, act));
    }
    std::for_each(done.begin(), done.end(), [](std::future<void>& each) { each.wait(); });
    std::for_each(done.begin(), done.end(), [](std::future<void>& each) { each.get(); });

    read(made, show, std::nullopt, made.history.has_committed() ? reasons{} : locked_or_none);
    write(made, "load", std::nullopt, {});
    read(made, show, std::nullopt, {});
    look_into(made);
    require(!fs::exists("new.db-journal"), "there is a journal of new.db that nobody needs");
    fs::remove("new.db");
}

// --- all of it
// ---------------------------------------------------------------------------------------------------------

soak::soak(const fs::path& evidence) : evidence_(fs::absolute(evidence)), names_in_tmp_(names_in("/tmp")) {
    fs::remove_all(evidence_);
    fs::create_directory(folder);
    fs::current_path(folder);
    revisions_ = std::make_unique<revisions>();
    const std::string whole = server_of_revision(200, revisions::first);
    std::ofstream("bad.xml") << whole.substr(0, whole.rfind("<component") + 5);
    require(run(zebdb_cds({"save-digest", "first.xml", "first.xml"})).status == 0, "digests cannot be saved");
    write(kept_, "refresh", std::nullopt, {});
}

void soak::keep_evidence(const std::string& problem) {
    const std::lock_guard<std::mutex> lock(evidence_mutex_);
    if (is_stopped_.exchange(true)) {
        return;
    }
    fs::create_directories(evidence_);
    for (const fs::path place : {folder, "/var/DS", "/var/vonk"}) {
        std::error_code is_gone;  // files come and go
        fs::copy(place, evidence_ / place.filename(), fs::copy_options::recursive, is_gone);
    }
    std::ofstream(evidence_ / "problem.txt") << problem << '\n';
    std::cout << problem.substr(0, 4000) << "\nwhat was there then is in " << evidence_.string() << '\n';
}

void soak::guard(const std::function<void()>& act) {
    try {
        act();
    } catch (const std::exception& problem) {
        keep_evidence(problem.what());
    }
}

void soak::repeat(action act, moment end) {
    guard([&] {
        chance random;
        while (!is_stopped_ && steady_clock::now() < end) {
            (this->*act)(random);
        }
    });
}

// When nobody is killed any more, everything works and nothing is left over.
void soak::finish() {
    write(kept_, "load", std::nullopt, {});
    write(kept_, "refresh", std::nullopt, {});
    for (const reading_command& command : reading_commands()) {
        read(kept_, command, std::nullopt, {});
    }
    const ended_process checked = run(zebdb_cds({"check", "first.xml", "first.xml", "--database", kept_.path}));
    require(checked.out == "unchanged\n", checked, "a refresh is out of date at once");
    look_into(kept_);
    require_names(folder, {"bad.xml", "first.xml", "first.xml.digest", "kept.db", "other.db"});
    require_names("/var/DS", {"inventory.fkey", "pci_inventory.fkey"});
    require_names("/var/vonk", {"pci_inventory.digest", "sys_inventory.digest"});
    names_in_tmp_.insert(names_in_tmp_.end(), {".dmdb_memory_deleted_flag", "soak"});
    require_names("/tmp", names_in_tmp_);
}

bool soak::run_for(std::chrono::seconds duration) {
    constexpr action actions[] = {&soak::load, &soak::load, &soak::refresh, &soak::check,
                                  &soak::read, &soak::read, &soak::read,    &soak::make_a_database};
    const moment end = steady_clock::now() + duration;
    std::vector<std::thread> threads;
    for (const action act : actions) {
        threads.emplace_back([this, act, end] { repeat(act, end); });
    }
    std::for_each(threads.begin(), threads.end(), [](std::thread& thread) { thread.join(); });
    if (!is_stopped_) {
        guard([this] { finish(); });
    }
    fs::remove_all(folder);
    return !is_stopped_;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 || std::getenv("ZEBDB_SANDBOX") == nullptr) {
        std::cerr << "usage: soak SECONDS EVIDENCE, in a private view; see scripts/soak\n";
        return 2;
    }
    try {
        adopt_orphans();
        soak all(argv[2]);
        const bool is_good = all.run_for(std::chrono::seconds(std::atoi(argv[1])));
        all.print(std::cout);
        return is_good ? 0 : 1;
    } catch (const std::exception& problem) {
        std::cerr << "soak: " << problem.what() << '\n';
        return 2;
    }
}
