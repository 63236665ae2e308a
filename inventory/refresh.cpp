// SPDX-License-Identifier: Apache-2.0

#include "refresh.h"

#include <inventory_service.h>
#include <vonk_log.h>
#include <zeb_db.h>

#include <cstdlib>
#include <string>

#include "cds_parser/load.h"
#include "function_keys.h"
#include "zebdb_cds_parser/entry_points.h"

using cds_parser::document_check;

namespace {

constexpr int system_inventory = 0;
constexpr int pci_inventory = 1;

// Empty until they are read.
struct digest_pair {
    std::string system;
    std::string pci;
};

digest_pair read_digests() {
    digest_pair digests;
    read_inventory_digest(digests.system, digests.pci);
    return digests;
}

// The log text names the adapter loader for a failed CDS load too.
bool load(_zeb_db_handle_t* handle, const char* cds_path, unsigned aim_argument, const document_check& accepts) {
    int rc = cds_path == nullptr ? 0 : cds_parser::load_file(handle, cds_path, accepts);
    if (rc == 0) {
        rc = parse_aim(handle, aim_argument);
    }
    if (rc != 0) {
        vonk_log::logErr("parse_aim return error, rc = 0x%x", static_cast<unsigned>(rc));
    }
    return rc == 0;
}

bool commit(_zeb_db_handle_t* handle) {
    const bool committed = zeb_db_commit_transaction(handle) == 0;
    if (!committed) {
        vonk_log::logErr("unable to commit pci transaction");
    }
    return committed;
}

void roll_back(_zeb_db_handle_t* handle) {
    if (zeb_db_rollback_transaction(handle) != 0) {
        vonk_log::logErr("unable to rollback pci transaction");
    }
}

// An exception passes, but not without the transaction.
bool load_and_commit(_zeb_db_handle_t* handle, const char* cds_path, unsigned aim_argument,
                     const document_check& accepts) {
    try {
        return load(handle, cds_path, aim_argument, accepts) && commit(handle);
    } catch (...) {
        roll_back(handle);
        throw;
    }
}

void save_function_keys(_zeb_db_handle_t* handle, const function_key_set& set) {
    function_key_list keys;
    if (read_fkeys_fromDb(handle, keys, set.table, set.column) == 0) {
        save_fkeys_ToFile(set.file, keys);
    }
}

// Empty digests when the script fails: whatever was recorded before then counts as changed.
digest_pair regenerate_digests() {
    if (std::system("/bin/pci_digest.sh") != 0) {
        vonk_log::logErr("failed to generate digest");
        return {};
    }
    return read_digests();
}

void report_changes(const digest_pair& before, const digest_pair& now) {
    if (now.system != before.system) {
        vonk_log::logInfo("system inventory changed");
        agentless_update_inventory_sequence(system_inventory);
    } else {
        vonk_log::logInfo("no system inventory change");
    }
    if (now.pci != before.pci) {
        vonk_log::logInfo("pci inventory changed");
        agentless_update_inventory_sequence(pci_inventory);
    } else {
        vonk_log::logInfo("no pci inventory change");
    }
}

}  // namespace

int refresh_inventory(const char* cds_path, unsigned aim_argument, const document_check& accepts) {
    _zeb_db_handle_t* handle = get_dmdb_handle();
    if (handle == nullptr) {
        vonk_log::logErr("unable to get dmdb handle");
        return -1;
    }
    const digest_pair before = read_digests();
    if (zeb_db_begin_transaction(handle) != 0) {
        vonk_log::logErr("unable to begin pci transaction");
        return -1;
    }
    if (!load_and_commit(handle, cds_path, aim_argument, accepts)) {
        roll_back(handle);
        return -1;
    }
    save_function_keys(handle, pci_function_keys);
    save_function_keys(handle, adapter_function_keys);
    report_changes(before, regenerate_digests());
    return 0;
}
