// SPDX-License-Identifier: Apache-2.0

#include "faults/outcomes.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>

#include "support/built.h"

namespace {

constexpr unsigned longest_run = 60;  // seconds
constexpr long usual_places = 6;

struct closer {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};

/// A file that has no name, for a process that is started.
class nameless_file {
public:
    nameless_file() : descriptor_(memfd_create("", 0)) { EXPECT_NE(descriptor_, -1); }
    ~nameless_file() { close(descriptor_); }
    nameless_file(const nameless_file&) = delete;
    nameless_file& operator=(const nameless_file&) = delete;

    int descriptor() const { return descriptor_; }

    std::string content() const {
        std::string text(static_cast<std::size_t>(lseek(descriptor_, 0, SEEK_END)), '\0');
        EXPECT_EQ(pread(descriptor_, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
        return text;
    }

private:
    int descriptor_;
};

/// The plan in a file that a process can share.
class shared_plan {
public:
    explicit shared_plan(const fault_plan& plan) {
        EXPECT_EQ(ftruncate(file_.descriptor(), sizeof plan), 0);
        void* shared = mmap(nullptr, sizeof plan, PROT_READ | PROT_WRITE, MAP_SHARED, file_.descriptor(), 0);
        plan_ = static_cast<fault_plan*>(shared);
        *plan_ = plan;
    }
    ~shared_plan() { munmap(plan_, sizeof *plan_); }
    shared_plan(const shared_plan&) = delete;
    shared_plan& operator=(const shared_plan&) = delete;

    fault_plan* operator->() const { return plan_; }
    int descriptor() const { return file_.descriptor(); }

private:
    nameless_file file_;
    fault_plan* plan_;
};

struct run_result {
    int status;  // as a shell tells it
    std::string out;
    std::string err;
    long calls;
};

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

void put_first(const char* variable, const std::string& first) {
    const std::string others = environment(variable);
    setenv(variable, (first + (others.empty() ? "" : ':' + others)).c_str(), 1);
}

// In the new process.
[[noreturn]] void start(const std::vector<std::string>& command, const shared_plan& plan, const nameless_file& out,
                        const nameless_file& err) {
    // By its name: what is preloaded is told apart by blanks, which its folder may have.
    const std::filesystem::path library = built::failing_calls;
    put_first("LD_PRELOAD", library.filename());
    put_first("LD_LIBRARY_PATH", library.parent_path());
    setenv(fault_plan_variable, std::to_string(plan.descriptor()).c_str(), 1);
    dup2(out.descriptor(), STDOUT_FILENO);
    dup2(err.descriptor(), STDERR_FILENO);
    alarm(longest_run);
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    plan->process = getpid();
    execv(arguments[0], arguments.data());
    _exit(127);
}

run_result run(const subject& tried, const fault_plan& faults) {
    tried.prepare();
    const shared_plan plan(faults);
    const nameless_file out;
    const nameless_file err;
    const pid_t child = fork();
    if (child == 0) {
        start(tried.command, plan, out, err);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(plan->is_known) << built::failing_calls << " was not preloaded";
    return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), out.content(), err.content(),
            plan->calls};
}

// Everything that the rows of the inventory say. Empty for none; SQLite's words for a database that is damaged.
std::string rows_of(const std::string& database) {
    sqlite3* opened = nullptr;
    const int opening = sqlite3_open_v2(database.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, closer> connection(opened);
    std::string rows;
    if (opening != SQLITE_OK) {
        return rows;
    }
    const auto add = [](void* all, int count, char** values, char**) {
        for (int i = 0; i < count; ++i) {
            *static_cast<std::string*>(all) += values[i] == nullptr ? "null|" : values[i] + std::string("|");
        }
        return 0;
    };
    std::string damage;
    sqlite3_exec(opened, "PRAGMA integrity_check", add, &damage, nullptr);
    if (damage != "ok|") {
        return damage;
    }
    for (const char* table : {"Processor", "Memory", "PCIBridge", "PCIs", "PCIAdapter"}) {
        sqlite3_exec(opened, (std::string("SELECT * FROM ") + table).c_str(), add, &rows, nullptr);
    }
    return rows;
}

/// What a process does that nothing disturbs.
struct reference {
    std::string old_rows;
    std::string new_rows;
    std::string out;
};

// The command, which alone ends with 2, says whose message it is; the library's log may stand before it.
bool is_whole_message(const run_result& result) {
    const bool is_named = result.status != 2 || result.err.find("zebdb-cds: ") != std::string::npos;
    return is_named && result.err.back() == '\n';
}

std::string outcome(const subject& tried, const run_result& result, const reference& undisturbed) {
    std::string text = std::to_string(result.status);
    if (result.status == 2 || (result.status == 1 && !tried.database.empty())) {
        text += result.err.empty() ? ", silent" : is_whole_message(result) ? ", message" : ", PART OF A MESSAGE";
    }
    if (tried.database.empty()) {
        return text + (result.status > 1 ? "" : result.out == undisturbed.out ? ", whole" : ", NOT WHOLE");
    }
    const std::string rows = rows_of(tried.database);
    const bool is_new = rows == undisturbed.new_rows;
    if (is_new && result.err.find("unchanged") != std::string::npos) {
        text += ", SAYS UNCHANGED";
    }
    return text + (is_new ? ", new" : rows == undisturbed.old_rows ? ", old" : ", NEITHER OLD NOR NEW: " + rows);
}

bool is_allowed(const subject& tried, call_kind kind, bool also_after, const std::string& outcome) {
    return tried.outcomes.count(outcome) != 0 || (also_after && tried.lasting_outcomes.count(outcome) != 0) ||
           (kind != call_kind::allocation && tried.file_outcomes.count(outcome) != 0);
}

// One call after the other, or so many of them.
long step(long calls) {
    const std::string wanted = environment("ZEBDB_FAULTS");
    if (wanted == "all") {
        return 1;
    }
    const long places = wanted.empty() ? usual_places : std::stol(wanted);
    return std::max(1L, (calls + places - 1) / std::max(1L, places));
}

const char* name_of(call_kind kind) {
    constexpr const char* names[] = {"allocations", "opens", "reads", "writes", "syncs", "renames", "unlinks"};
    return names[static_cast<int>(kind)];
}

void print(call_kind kind, const std::map<std::string, int>& counts) {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    for (const auto& [text, count] : counts) {
        std::cout << "faults: " << test.substr(test.find('/') + 1) << ", " << name_of(kind) << ": " << count << " x "
                  << text << '\n';
    }
}

}  // namespace

void expect_outcomes(const subject& tried, int status, call_kind kind) {
    tried.prepare();
    reference undisturbed;
    undisturbed.old_rows = rows_of(tried.database);
    const run_result usual = run(tried, {0, kind, 0, false, 0, false});
    ASSERT_EQ(usual.status, status) << usual.out << usual.err;
    undisturbed.new_rows = rows_of(tried.database);
    undisturbed.out = usual.out;
    ASSERT_TRUE(undisturbed.new_rows != undisturbed.old_rows || tried.database.empty());

    std::map<std::string, int> counts;
    for (const bool also_after : {false, true}) {
        for (long first = 1;; first += step(usual.calls)) {
            const run_result result = run(tried, {0, kind, first, also_after, 0, false});
            if (result.calls < first) {
                break;
            }
            const std::string came = outcome(tried, result, undisturbed);
            ++counts[came];
            EXPECT_TRUE(is_allowed(tried, kind, also_after, came))
                << came << " when of the " << name_of(kind) << " number " << first
                << (also_after ? " and all after it" : "") << " failed\n"
                << result.err;
        }
    }
    print(kind, counts);
}
