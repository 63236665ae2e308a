// SPDX-License-Identifier: Apache-2.0

#include "change_detection/service.h"

#include <inventory_service.h>
#include <stdlib.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

#include <zeb_db.h>
#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "inventory/query_result.h"
#include "sources/database_file.h"
#include "sources/library_log.h"

namespace {

void read_sequences(_zeb_db_handle_t* handle, inventory_marks& marks) {
    constexpr const char* columns[] = {"Kind", "Sequence"};
    zeb_db_result_t* result = nullptr;
    const library_log log;
    const int rc = zeb_db_query(handle, "InventorySequence", columns, 2, nullptr, nullptr, 0, nullptr, &result);
    const result_ptr rows(result);
    if (rc != 0) {
        throw failure(log.problem());
    }
    while (zeb_db_result_step(rows.get()) == row_available) {
        std::uint32_t kind = 0;
        std::uint32_t sequence = 0;
        zeb_db_result_column_uint(rows.get(), 0, &kind);
        zeb_db_result_column_uint(rows.get(), 1, &sequence);
        (kind == 0 ? marks.system : marks.pci).sequence = sequence;
    }
    if (log.database_failure()) {
        throw failure(log.problem());
    }
}

// An inventory whose digest is what it was is reported as changed only for want of a new one.
bool digest_failed(const inventory_mark& before, const inventory_mark& now) {
    return now.digest.empty() || (now.sequence != before.sequence && now.digest == before.digest);
}

}  // namespace

_zeb_db_handle_t* open_service(const std::string& path) {
    if (::setenv("ZEBDB_DATABASE", sqlite_name(path).c_str(), 1) != 0) {
        throw failure(std::strerror(errno));  // else the service would take the database that is named already
    }
    const library_log log;
    _zeb_db_handle_t* handle = get_dmdb_handle();
    if (handle == nullptr) {
        throw failure(log.problem());
    }
    return handle;
}

inventory_marks read_marks(_zeb_db_handle_t* handle) {
    inventory_marks marks;
    read_sequences(handle, marks);
    read_inventory_digest(marks.system.digest, marks.pci.digest);
    return marks;
}

bool digests_failed(const inventory_marks& before, const inventory_marks& now) {
    return digest_failed(before.system, now.system) || digest_failed(before.pci, now.pci);
}
