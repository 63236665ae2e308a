// SPDX-License-Identifier: Apache-2.0

/// The controller's own PCI bridge: where the inventory and the file that keeps its address have it.
#ifndef INVENTORY_OWN_BRIDGE_H
#define INVENTORY_OWN_BRIDGE_H

#include <array>
#include <cstddef>
#include <cstdint>

#include <zeb_db.h>

#include "query_result.h"

/// What the row of the bridge holds in "VendorId" and "DevId".
inline constexpr int own_bridge_vendor = 0x1A03;
inline constexpr int own_bridge_device = 0x1150;

/// Bus, device and function number.
using bus_address = std::array<std::uint8_t, 3>;

/// The file that keeps the address, a byte each.
inline constexpr const char* own_bridge_file = "/var/log/bmc_bdf.bin";

/// Asks for the rows of the bridge. The status of the query, 0 for success.
int query_own_bridge(_zeb_db_handle_t* handle, result_ptr& bridge);

/// The address in the row that the result stands on; 0 for a number that cannot be read.
bus_address address_of(zeb_db_result_t* bridge);

/// What the file holds; a short file counts as filled up with zeros.
struct recorded_address {
    bool present = false;
    std::size_t bytes = 0;
    bus_address address = {};
};

recorded_address read_recorded_address();

#endif
