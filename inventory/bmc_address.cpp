// SPDX-License-Identifier: Apache-2.0

// The PCI address of the controller's own bridge, kept in a three-byte file: bus, device, function.

#include <inventory_service.h>
#include <vonk_log.h>
#include <zeb_db.h>

#include <cstdio>
#include <memory>

#include "own_bridge.h"
#include "query_result.h"
#include "zebdb_cds_parser/entry_points.h"

namespace {

constexpr int no_handle = 6;

struct file_closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using file_ptr = std::unique_ptr<std::FILE, file_closer>;

int write_address(std::FILE* file, const bus_address& address) {
    std::setvbuf(file, nullptr, _IONBF, 0);  // a full disk shows in the write
    return std::fwrite(address.data(), 1, address.size(), file) == address.size() ? 0 : -1;
}

int record(const bus_address& current) {
    const recorded_address previous = read_recorded_address();
    const auto previous_bytes = static_cast<int>(previous.bytes);
    if (previous.present && previous.address == current) {
        return previous_bytes;
    }
    file_ptr file(std::fopen(own_bridge_file, "w+"));
    if (file == nullptr) {
        return previous.present ? previous_bytes : row_available;
    }
    const int result = write_address(file.get(), current);
    file.reset();
    vonk_log::logInfo(
        "update BMC address, current BDF 0x%x 0x%x 0x%x from database, previous BDF 0x%x 0x%x 0x%x from file %s\n",
        current[0], current[1], current[2], previous.address[0], previous.address[1], previous.address[2],
        own_bridge_file);
    return result;
}

}  // namespace

int update_bmc_addr(void) {
    _zeb_db_handle_t* handle = get_dmdb_handle();
    if (handle == nullptr) {
        return no_handle;
    }
    result_ptr bridge;
    const int rc = query_own_bridge(handle, bridge);
    if (rc != 0 || bridge == nullptr) {
        return rc;
    }
    const int step = zeb_db_result_step(bridge.get());
    if (step != row_available) {
        return step;
    }
    const bus_address current = address_of(bridge.get());
    bridge.reset();
    return record(current);
}
