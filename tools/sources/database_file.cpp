// SPDX-License-Identifier: Apache-2.0

#include "sources/database_file.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iomanip>
#include <ios>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "cds_parser/record_columns.h"
#include "console/failure.h"
#include "console/output.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "sources/connection.h"
#include "sources/memory_database.h"

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

constexpr int judging_timeout_ms = 1000;
constexpr int writing_timeout_ms = 5000;

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

connection_ptr open(const std::string& name, int flags, int timeout_ms) {
    sqlite3* connection = nullptr;
    sqlite3_open_v2(name.c_str(), &connection, flags, nullptr);
    if (connection == nullptr) {
        throw std::bad_alloc();
    }
    sqlite3_busy_timeout(connection, timeout_ms);
    return connection_ptr(connection);
}

bool is_empty(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && status.st_size == 0;
}

struct backup_finisher {
    void operator()(sqlite3_backup* copying) const { sqlite3_backup_finish(copying); }
};
using backup_ptr = std::unique_ptr<sqlite3_backup, backup_finisher>;

void require_done(int rc, const std::string& action) {
    if (rc != SQLITE_OK && rc != SQLITE_DONE) {
        throw failure(with_advice(rc & 0xFF, action + ": " + sqlite3_errstr(rc)));
    }
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

// A table of another program may have the name of one of ours.
constexpr const char* lacks_columns =
    "SELECT 1 FROM sqlite_master WHERE type IN ('table', 'view') AND name = ?1 COLLATE NOCASE AND NOT EXISTS "
    "(SELECT 1 FROM pragma_table_info(?1) WHERE name = ?2 COLLATE NOCASE)";

bool lacks_column(sqlite3* connection, const inventory_kind& kind, const std::string& column) {
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(connection, lacks_columns, -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(prepared, sqlite3_finalize);
    sqlite3_bind_text(prepared, 1, kind.record.table, -1, SQLITE_STATIC);
    sqlite3_bind_text(prepared, 2, column.c_str(), -1, SQLITE_STATIC);
    return sqlite3_step(prepared) == SQLITE_ROW;
}

// Whether there is a table with the name of one of ours that rows have no place in.
bool has_homonym(sqlite3* connection) {
    return std::any_of(std::begin(kinds::all), std::end(kinds::all), [connection](const inventory_kind* kind) {
        const std::vector<std::string>& columns = kind->description().identity.columns;
        return std::any_of(columns.begin(), columns.end(), [connection, kind](const std::string& column) {
            return lacks_column(connection, *kind, column);
        });
    });
}

// SQLite's extended result code.
int count_tables(const connection_ptr& connection, table_counts& counts) {
    const auto count = [](void* all, int, char** names, char**) {
        auto& [inventory, others] = *static_cast<table_counts*>(all);
        ++(names[0] != nullptr && is_inventory_table(names[0]) ? inventory : others);
        return 0;
    };
    sqlite3_exec(connection.get(),
                 "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND name NOT LIKE 'sqlite!_%' "
                 "ESCAPE '!'",
                 count, &counts, nullptr);
    const int rc = sqlite3_extended_errcode(connection.get());
    if (rc == SQLITE_OK && has_homonym(connection.get())) {
        counts = {0, counts.inventory + counts.others};
    }
    return rc;
}

// By which SQLite reads the file as it stands there, whatever journal stands beside it.
std::string immutable_name(const std::string& path) {
    std::ostringstream name;
    name << "file:" << std::hex << std::uppercase << std::setfill('0');
    for (const char byte : path) {
        name << '%' << std::setw(2) << static_cast<int>(static_cast<unsigned char>(byte));
    }
    return name.str() + "?immutable=1";
}

// Of a database that can be read.
std::optional<table_counts> tables_of(const std::string& path) {
    table_counts counts;
    int rc = count_tables(open(sqlite_name(path), SQLITE_OPEN_READONLY, judging_timeout_ms), counts);
    if (rc == SQLITE_READONLY_ROLLBACK) {
        const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
        rc = count_tables(open(immutable_name(path), flags, judging_timeout_ms), counts);
    }
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
    const connection_ptr connection = open(sqlite_name(path), SQLITE_OPEN_READWRITE, judging_timeout_ms);
    sqlite3_exec(connection.get(), "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
}

std::string with_advice(int code, const std::string& problem) {
    const auto found = std::find_if(std::begin(advices), std::end(advices),
                                    [code](const advice& each) { return each.sqlite_code == code; });
    return found == std::end(advices) ? problem : problem + "; " + found->what_to_do;
}

bool is_to_be_made(const std::string& path) {
    struct stat status = {};
    if (::stat(path.c_str(), &status) == 0) {
        refuse_what_is_no_file(path);
        return status.st_size == 0;
    }
    if (errno != ENOENT || ::access(folder_of(target_of(path)).c_str(), W_OK | X_OK) != 0) {
        fail_to_make(path, errno);
    }
    return true;
}

// From the first step on nobody else has a lock.
bool make_database(const std::string& path, const memory_database& source) {
    const std::string file = target_of(path);
    const connection_ptr from = open(source.sqlite_name(), SQLITE_OPEN_READWRITE, writing_timeout_ms);
    const connection_ptr to = open(sqlite_name(file), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, writing_timeout_ms);
    require_done(sqlite3_errcode(to.get()), "open");
    const backup_ptr copying(sqlite3_backup_init(to.get(), "main", from.get(), "main"));
    require_done(sqlite3_errcode(to.get()), "begin a transaction");
    require_done(sqlite3_backup_step(copying.get(), 1), "begin a transaction");
    if (!is_empty(file)) {
        return false;
    }
    require_done(sqlite3_backup_step(copying.get(), -1), "commit");
    return true;
}
