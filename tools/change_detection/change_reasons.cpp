// SPDX-License-Identifier: Apache-2.0

#include "change_detection/change_reasons.h"

#include <inventory_service.h>
#include <unistd.h>
#include <zeb_db.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "change_detection/private_view.h"
#include "console/output.h"
#include "inventory/digest_file.h"
#include "inventory/function_keys.h"
#include "sources/library_log.h"

namespace {

bool differs_from_digest(const std::string& path) {
    const library_log log(log_display::hidden);  // the test said it before
    int changed = 0;
    return check_file_digest(path.c_str(), &changed) && changed != 0;
}

bool has_digest(const std::string& path) {
    return ::access((path + ".digest").c_str(), R_OK) == 0;
}

void add_pending_firmware(std::vector<std::string>& reasons) {
    zebdb_pldm_firmware_pending_list pending = {0, nullptr};
    if (zebdb_get_pldm_firmware_pending_list(&pending) != 0 || pending.count == 0) {
        return;
    }
    std::free(pending.entries);
    reasons.push_back("firmware is pending: " + std::to_string(pending.count) +
                      (pending.count == 1 ? " update" : " updates"));
}

std::string key_text(std::uint32_t key) {
    char text[40];
    std::snprintf(text, sizeof text, "0x%08x (%04x:%02x:%02x.%x)", key, key >> 24, (key >> 16) & 0xFF,
                  (key >> 8) & 0xFF, key & 0xFF);
    return text;
}

void add_vanished_key(_zeb_db_handle_t* handle, const function_key_set& set, std::vector<std::string>& reasons) {
    function_key_list present;
    function_key_list saved;
    if (read_fkeys_fromDb(handle, present, set.table, set.column) != 0 || read_fkeys_fromFile(set.file, saved) != 0) {
        return;
    }
    if (const auto key = first_vanished_key(saved, present)) {
        reasons.push_back("function key " + key_text(*key) + " of " + set.file + " has vanished from " + set.table);
    }
}

}  // namespace

std::vector<std::string> change_reasons(const std::string& first_file, const std::string& second_file,
                                        _zeb_db_handle_t* handle) {
    for (const std::string& path : {first_file, second_file}) {
        if (differs_from_digest(path)) {
            return {in_quotes(path) + " differs from its saved digest"};
        }
    }
    std::vector<std::string> reasons;
    add_pending_firmware(reasons);
    add_vanished_key(handle, pci_function_keys, reasons);
    add_vanished_key(handle, adapter_function_keys, reasons);
    return reasons;
}

std::string reason_for_no_answer(const std::string& first_file, const std::string& second_file,
                                 const library_log& log) {
    if (!has_digest(first_file) || !has_digest(second_file)) {
        return "a file has no saved digest; save it with 'zebdb-cds save-digest'";
    }
    return log.database_failure().value_or(adapter_function_keys.file + private_view_hint(adapter_function_keys.file) +
                                           " cannot be read; write it with 'zebdb-cds refresh'");
}
