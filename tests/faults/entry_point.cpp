// SPDX-License-Identifier: Apache-2.0

// usage: entry_point NAME [ARGUMENT...]
//
// Calls one of the library's entry points as an inventory service does, on the database that ZEBDB_DATABASE names.
// 0 when it did what it is for, 1 when it did not. 3 when an exception for want of memory passed, after which the next
// call did it; 4 when that did not either.

#include <zeb_db_workstation.h>
#include <zebdb_cds_parser.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

namespace {

struct handle_deleter {
    void operator()(_zeb_db_handle_t* handle) const { zeb_db_close(handle); }
};

// As the caller of parse_cds() must: in a transaction, which is committed only when it is told to.
bool parse_in_transaction(const char* path) {
    _zeb_db_handle_t* opened = nullptr;
    if (zeb_db_open(std::getenv("ZEBDB_DATABASE"), &opened) != 0) {
        return false;
    }
    const std::unique_ptr<_zeb_db_handle_t, handle_deleter> handle(opened);
    return zeb_db_begin_transaction(handle.get()) == 0 && parse_cds(handle.get(), path) == 0 &&
           zeb_db_commit_transaction(handle.get()) == 0;
}

bool check_answers(const char* first, const char* second) {
    int changed = 0;
    return check_pci(first, second, &changed) == 0 && changed == 0;
}

bool reads_digests() {
    std::string system;
    std::string pci;
    read_inventory_digest(system, pci);
    return !system.empty() && !pci.empty();
}

struct entry_point {
    const char* name;
    bool (*call)(char** arguments);
};

const entry_point entry_points[] = {
    {"parse_cds", [](char** arguments) { return parse_in_transaction(arguments[0]); }},
    {"parse_pci", [](char** arguments) { return parse_pci(arguments[0], 0) == 0; }},
    {"check_pci", [](char** arguments) { return check_answers(arguments[0], arguments[1]); }},
    {"save_pci_digest", [](char** arguments) { return save_pci_digest(arguments[0], arguments[1]) == 0; }},
    {"update_bmc_addr", [](char**) { return update_bmc_addr() == 0; }},
    {"read_inventory_digest", [](char**) { return reads_digests(); }},
};

int status_of(const entry_point& called, char** arguments) {
    try {
        return called.call(arguments) ? 0 : 1;
    } catch (const std::bad_alloc&) {
        return 3;
    }
}

}  // namespace

int main(int argc, char** argv) {
    for (const entry_point& each : entry_points) {
        if (argc > 1 && std::strcmp(each.name, argv[1]) == 0) {
            const int status = status_of(each, argv + 2);
            return status == 3 && status_of(each, argv + 2) != 0 ? 4 : status;
        }
    }
    return 2;
}
