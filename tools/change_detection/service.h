// SPDX-License-Identifier: Apache-2.0

/// The inventory service that change detection works with.
#ifndef TOOLS_CHANGE_DETECTION_SERVICE_H
#define TOOLS_CHANGE_DETECTION_SERVICE_H

#include <cstdint>
#include <string>

#include <zeb_db.h>

/// Sets the service to work on the database at `path` and opens it. The handle stays the service's. Throws failure.
_zeb_db_handle_t* open_service(const std::string& path);

/// What a refresh leaves of one inventory.
struct inventory_mark {
    std::uint32_t sequence = 0;  ///< how often it was reported as changed
    std::string digest;          ///< of its rows; empty when there is none
};

struct inventory_marks {
    inventory_mark system;
    inventory_mark pci;
};

/// Throws failure when they cannot be read.
inventory_marks read_marks(_zeb_db_handle_t* handle);

/// Whether the refresh that lies between them had no digests to compare with.
bool digests_failed(const inventory_marks& before, const inventory_marks& now);

#endif
