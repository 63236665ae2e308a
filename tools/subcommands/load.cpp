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

#include "cds_parser/load.h"
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
#include "sources/source_record.h"
#include "subcommands/command_line.h"
#include "subcommands/left_out_watch.h"
#include "subcommands/loading_options.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct load_options {
    loading_options loading;
    std::string database;
};

struct handle_closer {
    void operator()(_zeb_db_handle_t* handle) const { zeb_db_close(handle); }
};
using handle_ptr = std::unique_ptr<_zeb_db_handle_t, handle_closer>;

// All of it or, false, nothing.
bool load_in_transaction(_zeb_db_handle_t* handle, const load_options& options, const input_file& input,
                         left_out_watch& watch) {
    if (zeb_db_begin_transaction(handle) != 0) {
        return false;
    }
    const auto accepts = [&watch](const cds_parser::document& loaded) { return watch.accepts(loaded); };
    if (cds_parser::load_file(handle, input.path().c_str(), accepts) == 0 &&
        write_source(handle, source_of(options.loading.file, input)) && zeb_db_commit_transaction(handle) == 0) {
        return true;
    }
    zeb_db_rollback_transaction(handle);
    return false;
}

enum class attempt { done, failed, overtaken };

// Nobody finds the database before everything is in it.
attempt make_inventory(const load_options& options, const input_file& input, left_out_watch& watch) {
    const memory_database rows;
    if (!load_in_transaction(rows.handle(), options, input, watch)) {
        return attempt::failed;
    }
    return make_database(options.database, rows) ? attempt::done : attempt::overtaken;
}

attempt replace_rows(const load_options& options, const input_file& input, left_out_watch& watch) {
    const std::string& database = options.database;
    refuse_foreign_database(database);
    _zeb_db_handle_t* opened = nullptr;
    zeb_db_open(sqlite_name(database).c_str(), &opened);
    handle_ptr handle(opened);
    if (handle != nullptr && load_in_transaction(handle.get(), options, input, watch)) {
        return attempt::done;
    }
    handle.reset();
    roll_back_interrupted_write(database);
    return attempt::failed;
}

// Another program may make the database while this one reads. Throws failure with the cause alone.
void replace_inventory(const load_options& options, left_out_watch& watch) {
    const input_file input(options.loading.file);
    const bool is_new = is_to_be_made(options.database);
    progress line(input.status());
    const library_log log(line, display_for(options.loading));
    attempt result = is_new ? make_inventory(options, input, watch) : replace_rows(options, input, watch);
    if (result == attempt::overtaken && input.is_on_disk()) {
        result = replace_rows(options, input, watch);
    }
    if (result == attempt::overtaken) {
        throw failure("another program has made the database meanwhile; try again");
    }
    if (result == attempt::failed) {
        throw failure(watch.refusal().empty() ? cause_of_refusal(input, log) : watch.refusal());
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

std::string summary(const load_options& options, milliseconds duration, const left_out_watch& watch) {
    const inventory loaded(options.database);
    std::ostringstream text;
    text << "Loaded " << input_title(options.loading.file) << " into " << in_quotes(options.database) << " in "
         << duration_text(duration) << ":\n";
    for (const inventory_kind* kind : kinds::all) {
        text << "  " << std::left << std::setw(12) << kind->name << std::right << std::setw(6) << loaded.count(*kind)
             << '\n';
    }
    if (!watch.line().empty()) {
        text << watch.line() << '\n';
    }
    return text.str();
}

failure not_loaded(const load_options& options, const std::string& cause, bool was_there) {
    return failure("cannot load " + input_title(options.loading.file) + ": " + cause + "; " +
                   state_of(options.database, was_there));
}

int load(const load_options& options) {
    const auto start = steady_clock::now();
    left_out_watch watch(options.loading);
    const bool was_there = ::access(options.database.c_str(), F_OK) == 0;
    try {
        replace_inventory(options, watch);
    } catch (const failure& cause) {
        throw not_loaded(options, cause.what(), was_there);
    } catch (const std::bad_alloc&) {
        throw not_loaded(options, "out of memory", was_there);
    }
    const auto duration = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    complain_of_foreign_marker();
    try {
        print(summary(options, duration, watch));
    } catch (const failure& problem) {
        throw failure(std::string(problem.what()) + "; the rows of " + input_title(options.loading.file) + " are in " +
                      in_quotes(options.database) + " all the same");
    }
    return status_done;
}

}  // namespace

action define_load(command_line& arguments) {
    const auto options = std::make_shared<load_options>();
    add_loading_options(arguments, options->loading);
    add_database_option(arguments, options->database);
    return [options] { return load(*options); };
}
