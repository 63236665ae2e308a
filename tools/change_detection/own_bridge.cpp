// SPDX-License-Identifier: Apache-2.0

#include "change_detection/own_bridge.h"

#include <cstdio>
#include <optional>
#include <string>

#include <zeb_db.h>
#include <zebdb_cds_parser.h>

#include "change_detection/private_view.h"
#include "console/failure.h"
#include "inventory/own_bridge.h"
#include "inventory/query_result.h"
#include "sources/library_log.h"

namespace {

std::optional<bus_address> address_in(_zeb_db_handle_t* handle) {
    const library_log log;
    result_ptr bridge;
    if (query_own_bridge(handle, bridge) != 0) {
        throw failure(log.problem());
    }
    switch (zeb_db_result_step(bridge.get())) {
        case row_available:
            return address_of(bridge.get());
        case end_of_rows:
            return std::nullopt;
        default:
            throw failure(log.problem());
    }
}

std::string address_text(const bus_address& address) {
    char text[16];
    std::snprintf(text, sizeof text, "%02x:%02x.%x", address[0], address[1], address[2]);
    return text;
}

}  // namespace

std::optional<std::string> record_own_bridge(_zeb_db_handle_t* handle) {
    const std::optional<bus_address> address = address_in(handle);
    if (!address) {
        return std::nullopt;
    }
    update_bmc_addr();
    const recorded_address recorded = read_recorded_address();
    if (recorded.address != *address) {
        throw failure(std::string("cannot write ") + own_bridge_file + private_view_hint(own_bridge_file) +
                      "; see that its folder is there and writable");
    }
    return address_text(*address);
}

std::string own_bridge_id() {
    char text[16];
    std::snprintf(text, sizeof text, "%04x:%04x", own_bridge_vendor, own_bridge_device);
    return text;
}
