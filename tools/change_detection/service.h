/// The inventory service that change detection works with.
#ifndef TOOLS_CHANGE_DETECTION_SERVICE_H
#define TOOLS_CHANGE_DETECTION_SERVICE_H

#include <cstdint>
#include <string>

#include <inventory_service.h>

/// Sets the service to work on the database at `path` and opens it. The handle stays the service's. Throws failure.
_zeb_db_handle_t* open_service(const std::string& path);

/// How often each inventory was reported as changed.
struct inventory_sequences {
    std::uint32_t system = 0;
    std::uint32_t pci = 0;
};

/// Throws failure when they cannot be read.
inventory_sequences read_sequences(_zeb_db_handle_t* handle);

#endif
