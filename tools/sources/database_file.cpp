// SPDX-License-Identifier: Apache-2.0

#include "sources/database_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <new>
#include <optional>
#include <string>
#include <system_error>

#include "cds_parser/record_columns.h"
#include "console/failure.h"
#include "console/output.h"
#include "rows/kinds.h"
#include "sources/connection.h"

namespace {

struct advice {
    int sqlite_code;
    const char* what_to_do;
};

constexpr advice advices[] = {
    {SQLITE_BUSY, "another program is using it, try again when that is done"},
    {SQLITE_NOTADB, "name another file with --database"},
    {SQLITE_READONLY, "make it and its folder writable or name another file with --database"},
    {SQLITE_FULL, "make room and try again"},
    {SQLITE_CORRUPT, "name another file with --database or load into a new one"},
};

constexpr int lock_timeout_ms = 1000;

// On a terminal that closes, for Ctrl-C, and for a plain kill.
constexpr int interruptions[] = {SIGHUP, SIGINT, SIGTERM};

// What a signal handler takes away: a file that is being filled and its journal.
std::string made_path;
std::string made_journal;

void unlink_made_files() {
    ::unlink(made_journal.c_str());
    ::unlink(made_path.c_str());
}

void unlink_and_die(int signal) {
    unlink_made_files();
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void on_interruption(void (*handler)(int)) {
    for (const int signal : interruptions) {
        if (::signal(signal, handler) == SIG_IGN) {
            ::signal(signal, SIG_IGN);  // as nohup wants it
        }
    }
}

std::string folder_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

[[noreturn]] void fail_to_make(const std::string& path, int error) {
    const std::string problem = "cannot make database " + in_quotes(path) + ": " + std::strerror(error);
    const std::string folder = folder_of(path);
    throw failure(::access(folder.c_str(), F_OK) == 0 ? problem
                                                      : problem + "; make the folder " + in_quotes(folder) + " first");
}

// Where a link leads, also one that leads to nothing yet.
std::string target_of(const std::string& path) {
    std::error_code error;
    std::filesystem::path target = path;
    for (int links = 0; links < 40 && std::filesystem::is_symlink(target, error); ++links) {
        target = target.parent_path() / std::filesystem::read_symlink(target, error);
    }
    return target;
}

file_identity identity_of(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? file_identity{status.st_dev, status.st_ino} : file_identity{};
}

connection_ptr open_for_writing(const std::string& path) {
    sqlite3* connection = nullptr;
    sqlite3_open_v2(sqlite_name(path).c_str(), &connection, SQLITE_OPEN_READWRITE, nullptr);
    return connection_ptr(connection);
}

bool run(const connection_ptr& connection, const std::string& sql) {
    return sqlite3_exec(connection.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

// Also where that cannot be told. A table that is missing has none.
bool holds_rows(const connection_ptr& connection) {
    const auto found = [](void* rows, int, char**, char**) {
        *static_cast<bool*>(rows) = true;
        return 0;
    };
    bool rows = false;
    for (const inventory_kind* kind : kinds::all) {
        const std::string sql = std::string("SELECT 1 FROM ") + kind->record.table + " LIMIT 1";
        const int rc = sqlite3_exec(connection.get(), sql.c_str(), found, &rows, nullptr);
        rows = rows || (rc != SQLITE_OK && rc != SQLITE_ERROR);
    }
    return rows;
}

// SQLite would wait for a pipe to be written to, and a device may have no end.
void refuse_what_is_no_file(const std::string& path) {
    struct stat status = {};
    if (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        const char* kind = S_ISDIR(status.st_mode) ? "a folder" : "a pipe or a device";
        throw failure("database " + in_quotes(path) + " is " + kind + "; name a file with --database");
    }
}

// What the inventory service keeps beside the records.
constexpr const char* service_tables[] = {"PCIAdapter", "InventorySequence", "PendingFirmware"};

bool is_inventory_table(const char* name) {
    const auto has_name = [name](const char* table) { return sqlite3_stricmp(name, table) == 0; };
    return std::any_of(std::begin(service_tables), std::end(service_tables), has_name) ||
           std::any_of(std::begin(kinds::all), std::end(kinds::all),
                       [has_name](const inventory_kind* kind) { return has_name(kind->record.table); });
}

struct table_counts {
    int inventory = 0;
    int others = 0;
};

// Of a database that can be read.
std::optional<table_counts> tables_of(const std::string& path) {
    sqlite3* opened = nullptr;
    sqlite3_open_v2(sqlite_name(path).c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
    const connection_ptr connection(opened);
    sqlite3_busy_timeout(opened, lock_timeout_ms);
    const auto count = [](void* counts, int, char** names, char**) {
        auto& [inventory, others] = *static_cast<table_counts*>(counts);
        ++(names[0] != nullptr && is_inventory_table(names[0]) ? inventory : others);
        return 0;
    };
    table_counts counts;
    const int rc = sqlite3_exec(
        opened,
        "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND name NOT LIKE 'sqlite!_%' ESCAPE '!'",
        count, &counts, nullptr);
    if (rc == SQLITE_NOMEM) {
        throw std::bad_alloc();
    }
    return rc == SQLITE_OK ? std::optional(counts) : std::nullopt;
}

}  // namespace

std::string sqlite_name(const std::string& path) {
    const bool is_special = path.front() == ':' || path.compare(0, 5, "file:") == 0;
    return is_special ? "./" + path : path;
}

void require_database_file(const std::string& path) {
    if (::access(path.c_str(), R_OK) != 0) {
        const int error = errno;
        const std::string problem = "cannot read database " + in_quotes(path) + ": " + std::strerror(error);
        throw failure(error == ENOENT ? problem + "; make it with 'zebdb-cds load' or name another with --database"
                                      : problem);
    }
    refuse_what_is_no_file(path);
}

void refuse_foreign_database(const std::string& path) {
    const auto tables = tables_of(path);
    if (tables && tables->inventory == 0 && tables->others != 0) {
        throw failure("database " + in_quotes(path) +
                      " is another program's: it has tables, but no inventory; name another with --database");
    }
}

void require_inventory(const std::string& path) {
    require_database_file(path);
    refuse_foreign_database(path);
    const auto tables = tables_of(path);
    if (tables && tables->inventory == 0) {
        throw failure("database " + in_quotes(path) +
                      " holds no inventory; load one with 'zebdb-cds load' or name another with --database");
    }
}

void roll_back_interrupted_write(const std::string& path) {
    run(open_for_writing(path), "SELECT count(*) FROM sqlite_master");
}

std::string with_advice(int code, const std::string& problem) {
    const auto found = std::find_if(std::begin(advices), std::end(advices),
                                    [code](const advice& each) { return each.sqlite_code == code; });
    return found == std::end(advices) ? problem : problem + "; " + found->what_to_do;
}

new_database_file::new_database_file(const std::string& path) : path_(target_of(path)) {
    const int file = ::open(path_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
    if (file == -1 && errno != EEXIST) {
        fail_to_make(path, errno);
    }
    if (file == -1) {
        refuse_what_is_no_file(path);
    } else {
        ::close(file);
        made_ = true;
        made_path = path_;
        made_journal = path_ + "-journal";
        on_interruption(unlink_and_die);
    }
    identity_ = identity_of(path_);
}

new_database_file::~new_database_file() {
    try {
        take_away();
    } catch (const std::bad_alloc&) {
        keep();  // with its empty tables
    }
}

// Whoever waits for the lock finds a database that is gone.
void new_database_file::take_away() {
    if (!made_) {
        return;
    }
    const connection_ptr connection = open_for_writing(path_);
    sqlite3_busy_timeout(connection.get(), lock_timeout_ms);
    if (run(connection, "BEGIN EXCLUSIVE") && !was_replaced() && !holds_rows(connection)) {
        unlink_made_files();
    }
    keep();
}

void new_database_file::keep() {
    if (made_) {
        on_interruption(SIG_DFL);
    }
    made_ = false;
}

bool new_database_file::was_replaced() const {
    const file_identity now = identity_of(path_);
    return now.device != identity_.device || now.number != identity_.number;
}
