// SPDX-License-Identifier: Apache-2.0

// The change test that runs without a refresh, and the digests that it compares with.

#include <inventory_service.h>
#include <vonk_log.h>
#include <zeb_db.h>

#include <cstdlib>

#include "digest_file.h"
#include "function_keys.h"
#include "zebdb_cds_parser/entry_points.h"

namespace {

bool firmware_is_pending() {
    zebdb_pldm_firmware_pending_list pending = {0, nullptr};
    if (zebdb_get_pldm_firmware_pending_list(&pending) != 0 || pending.count == 0) {
        return false;
    }
    std::free(pending.entries);
    return true;
}

// False when the database or the key file could not be read.
bool compare_function_keys(_zeb_db_handle_t* handle, const function_key_set& set, int& changed) {
    function_key_list present;
    function_key_list saved;
    if (read_fkeys_fromDb(handle, present, set.table, set.column) != 0 || read_fkeys_fromFile(set.file, saved) != 0) {
        return false;
    }
    if (first_vanished_key(saved, present)) {
        changed = 1;
    }
    return true;
}

}  // namespace

int check_pci(const char* first_file, const char* second_file, int* changed) {
    for (const char* file : {first_file, second_file}) {
        if (!check_file_digest(file, changed)) {
            return -1;
        }
        if (*changed == 1) {
            return 0;
        }
    }

    _zeb_db_handle_t* handle = get_dmdb_handle();
    if (handle == nullptr) {
        vonk_log::logErr("%s: unable to get dmdb handle", "check_pci");
        return -1;
    }
    if (firmware_is_pending()) {
        *changed = 1;
    }
    compare_function_keys(handle, pci_function_keys, *changed);  // keys that cannot be compared are no failure here
    if (!compare_function_keys(handle, adapter_function_keys, *changed)) {
        return -1;
    }
    rebuild_tables_in_memory(handle);
    return 0;
}

int save_pci_digest(const char* first_file, const char* second_file) {
    return save_file_digest(first_file) && save_file_digest(second_file) ? 0 : -1;
}
