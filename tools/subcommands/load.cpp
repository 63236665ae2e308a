// SPDX-License-Identifier: Apache-2.0

// zebdb-cds load: replaces the inventory by what a CDS file describes, or leaves it as it was.

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <iomanip>
#include <ios>
#include <memory>
#include <new>
#include <sstream>
#include <string>

#include <zeb_db.h>
#include <zeb_db_workstation.h>
#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "console/output.h"
#include "console/progress.h"
#include "rows/kinds.h"
#include "sources/database_file.h"
#include "sources/input_file.h"
#include "sources/inventory.h"
#include "sources/library_log.h"
#include "sources/memory_database.h"
#include "sources/refusal.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct load_options {
    std::string file;
    std::string database;
};

struct handle_closer {
    void operator()(_zeb_db_handle_t* handle) const { zeb_db_close(handle); }
};
using handle_ptr = std::unique_ptr<_zeb_db_handle_t, handle_closer>;

// All of it or, false, nothing.
bool load_in_transaction(_zeb_db_handle_t* handle, const char* path) {
    if (zeb_db_begin_transaction(handle) != 0) {
        return false;
    }
    if (parse_cds(handle, path) == 0 && zeb_db_commit_transaction(handle) == 0) {
        return true;
    }
    zeb_db_rollback_transaction(handle);
    return false;
}

enum class attempt { done, failed, overtaken };

// Nobody finds the database before everything is in it.
attempt make_inventory(const std::string& database, const char* path) {
    const memory_database rows;
    if (!load_in_transaction(rows.handle(), path)) {
        return attempt::failed;
    }
    return make_database(database, rows) ? attempt::done : attempt::overtaken;
}

attempt replace_rows(const std::string& database, const char* path) {
    refuse_foreign_database(database);
    _zeb_db_handle_t* opened = nullptr;
    zeb_db_open(sqlite_name(database).c_str(), &opened);
    handle_ptr handle(opened);
    if (handle != nullptr && load_in_transaction(handle.get(), path)) {
        return attempt::done;
    }
    handle.reset();
    roll_back_interrupted_write(database);
    return attempt::failed;
}

// Another program may make the database while this one reads. Throws failure with the cause alone.
void replace_inventory(const load_options& options) {
    const input_file input(options.file);
    const char* path = input.path().c_str();
    const bool is_new = is_to_be_made(options.database);
    progress line(input.status());
    const library_log log(line);
    attempt result = is_new ? make_inventory(options.database, path) : replace_rows(options.database, path);
    if (result == attempt::overtaken && input.is_on_disk()) {
        result = replace_rows(options.database, path);
    }
    if (result == attempt::overtaken) {
        throw failure("another program has made the database meanwhile; try again");
    }
    if (result == attempt::failed) {
        throw failure(cause_of_refusal(input, log));
    }
}

std::string state_of(const std::string& database, bool was_there) {
    struct stat status = {};
    if (::stat(database.c_str(), &status) != 0) {
        return in_quotes(database) + " was not made";
    }
    return in_quotes(database) + (was_there || status.st_size != 0 ? " is unchanged" : " is empty");
}

std::string duration_text(milliseconds duration) {
    if (duration < std::chrono::seconds(1)) {
        return std::to_string(duration.count()) + " ms";
    }
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << static_cast<double>(duration.count()) / 1000 << " s";
    return text.str();
}

std::string summary(const load_options& options, milliseconds duration) {
    const inventory loaded(options.database);
    std::ostringstream text;
    text << "Loaded " << input_title(options.file) << " into " << in_quotes(options.database) << " in "
         << duration_text(duration) << ":\n";
    for (const inventory_kind* kind : kinds::all) {
        text << "  " << std::left << std::setw(12) << kind->name << std::right << std::setw(6) << loaded.count(*kind)
             << '\n';
    }
    return text.str();
}

failure not_loaded(const load_options& options, const std::string& cause, bool was_there) {
    return failure("cannot load " + input_title(options.file) + ": " + cause + "; " +
                   state_of(options.database, was_there));
}

int load(const load_options& options) {
    const auto start = steady_clock::now();
    const bool was_there = ::access(options.database.c_str(), F_OK) == 0;
    try {
        replace_inventory(options);
    } catch (const failure& cause) {
        throw not_loaded(options, cause.what(), was_there);
    } catch (const std::bad_alloc&) {
        throw not_loaded(options, "out of memory", was_there);
    }
    const auto duration = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    try {
        print(summary(options, duration));
    } catch (const failure& problem) {
        throw failure(std::string(problem.what()) + "; the rows of " + input_title(options.file) + " are in " +
                      in_quotes(options.database) + " all the same");
    }
    return status_done;
}

}  // namespace

action define_load(command_line& arguments) {
    const auto options = std::make_shared<load_options>();
    add_cds_file_argument(arguments, options->file);
    add_database_option(arguments, options->database);
    return [options] { return load(*options); };
}
