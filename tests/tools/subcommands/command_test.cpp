// SPDX-License-Identifier: Apache-2.0

#include "tools/subcommands/command_test.h"

#include <fcntl.h>
#include <spawn.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>

#include "support/built.h"

namespace fs = std::filesystem;

namespace {

std::string content_of(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

// The places of the private view that the tests run in. They have been empty from the beginning, but for the way to
// what is kept of the machine's own, which stays.
class private_places {
public:
    private_places() : at_the_beginning_(entries()) {}

    void empty() const {
        for (const fs::path& entry : entries()) {
            if (at_the_beginning_.count(entry) == 0) {
                fs::remove_all(entry);
            }
        }
    }

private:
    static std::set<fs::path> entries() {
        const char* view = std::getenv("ZEBDB_SANDBOX");
        if (view == nullptr) {
            throw std::runtime_error("run this through ctest or tests/support/in-sandbox");
        }
        std::set<fs::path> found;
        for (const char* place : {"/var/DS", "/var/vonk", "/var/log", "/tmp"}) {
            const fs::directory_iterator folder(view + std::string(place));
            found.insert(begin(folder), end(folder));
        }
        return found;
    }

    std::set<fs::path> at_the_beginning_;
};

class file_actions {
public:
    file_actions() { posix_spawn_file_actions_init(&actions_); }
    ~file_actions() { posix_spawn_file_actions_destroy(&actions_); }
    file_actions(const file_actions&) = delete;
    file_actions& operator=(const file_actions&) = delete;

    void write_to(int descriptor, const fs::path& path) {
        posix_spawn_file_actions_addopen(&actions_, descriptor, path.c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
    }
    void read_from(int source) {
        if (source == -1) {
            posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        } else {
            posix_spawn_file_actions_adddup2(&actions_, source, STDIN_FILENO);
        }
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

int run_and_wait(std::vector<std::string> command, const file_actions& actions) {
    std::vector<char*> arguments;
    std::transform(command.begin(), command.end(), std::back_inserter(arguments),
                   [](std::string& argument) { return argument.data(); });
    arguments.push_back(nullptr);
    pid_t child = -1;
    const int error = posix_spawnp(&child, arguments[0], actions.get(), nullptr, arguments.data(), environ);
    if (error != 0) {
        throw std::runtime_error("cannot run " + command[0]);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string test_name() {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test->test_suite_name()) + '.' + test->name();
    std::replace(name.begin(), name.end(), '/', '.');
    return name;
}

}  // namespace

std::string command_result::last_error_line() const {
    const std::string lines = err.substr(0, err.find_last_not_of('\n') + 1);
    return lines.substr(lines.rfind('\n') + 1);
}

command_test::command_test() : folder_(fs::path(built::folder) / "tests" / "folders" / test_name()) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    setenv("PATH", (fs::path(built::command).parent_path().string() + ":" + std::getenv("PATH")).c_str(), 1);
    setenv("TERM", "xterm", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    for (const char* name : {"ZEBDB_DATABASE", "VONK_LOG", "NO_COLOR", "COLUMNS"}) {
        unsetenv(name);
    }
}

command_test::~command_test() {
    fs::remove_all(folder_);
}

command_result command_test::run(const std::string& shell_command, int standard_input) const {
    return run_by({}, shell_command, standard_input);
}

command_result command_test::run_unprivileged(const std::string& shell_command) const {
    if (geteuid() != 0) {
        return run(shell_command);
    }
    return run_by({"setpriv", "--bounding-set=-all", "--inh-caps=-all"}, shell_command, -1);
}

// A blank ends the name of what is preloaded, and may stand in the name of the project's folder.
command_result command_test::run_preloaded(const char* library, const std::string& assignments,
                                           const std::string& shell_command) const {
    const fs::path link = folder_ / "preloaded.so";
    fs::create_symlink(library, link);
    const command_result result =
        run("export ASAN_OPTIONS=\"${ASAN_OPTIONS:+$ASAN_OPTIONS:}verify_asan_link_order=0\"; " + assignments +
            " LD_PRELOAD=./preloaded.so " + shell_command);
    fs::remove(link);
    return result;
}

std::string command_test::left_in_tmp(const std::string& shell_command) const {
    return run("before=$(ls -A /tmp); { " + shell_command +
               "; } >/dev/null; ls -A /tmp | grep --invert-match --line-regexp --fixed-strings \"$before\"")
        .out;
}

command_result command_test::run_with_disk(std::size_t size, const std::string& shell_command) const {
    const fs::path disk = folder_ / "disk";
    fs::create_directory(disk);
    return run_by({SOURCE_DIR "/tests/support/on-small-disk", std::to_string(size), disk}, shell_command, -1);
}

// What the library writes at fixed places goes to the private view of the program, and is gone afterwards.
command_result command_test::run_by(const std::vector<std::string>& runner, const std::string& shell_command,
                                    int standard_input) const {
    static const private_places places;
    const fs::path out = folder_.string() + ".out";
    const fs::path err = folder_.string() + ".err";
    std::vector<std::string> command = runner;
    command.insert(command.end(), {"env", "--chdir=" + folder_.string(), "sh", "-c", shell_command});

    file_actions actions;
    actions.read_from(standard_input);
    actions.write_to(STDOUT_FILENO, out);
    actions.write_to(STDERR_FILENO, err);
    const int status = run_and_wait(command, actions);
    command_result result = {status, content_of(out), content_of(err)};
    fs::remove(out);
    fs::remove(err);
    places.empty();
    return result;
}

void command_test::write(const std::string& name, const std::string& content) const {
    std::ofstream file(folder_ / name, std::ios::binary);
    file << content;
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + name);
    }
}

std::string command_test::read(const std::string& name) const {
    return content_of(folder_ / name);
}

std::vector<std::string> command_test::names() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void command_test::execute(const std::string& database, const std::string& sql) const {
    query(database, sql);
}

std::string command_test::query(const std::string& database, const std::string& sql) const {
    sqlite3* connection = nullptr;
    sqlite3_open((folder_ / database).c_str(), &connection);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> owner(connection, sqlite3_close);
    std::string first;
    const auto keep = [](void* kept, int, char** values, char**) {
        *static_cast<std::string*>(kept) = values[0] == nullptr ? "null" : values[0];
        return 0;
    };
    if (sqlite3_exec(connection, sql.c_str(), keep, &first, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sql + ": " + sqlite3_errmsg(connection));
    }
    return first;
}
