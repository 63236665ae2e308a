// SPDX-License-Identifier: Apache-2.0

#include "own_bridge.h"

#include <cstdint>
#include <cstdio>
#include <memory>

#include <zeb_db.h>

#include "query_result.h"

namespace {

constexpr const char* address_columns[] = {"BusNo", "DevNo", "FunNo"};

struct file_closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using file_ptr = std::unique_ptr<std::FILE, file_closer>;

}  // namespace

int query_own_bridge(_zeb_db_handle_t* handle, result_ptr& bridge) {
    char condition[64];
    std::snprintf(condition, sizeof condition, "%s=%d AND %s=%d", "VendorId", own_bridge_vendor, "DevId",
                  own_bridge_device);
    zeb_db_result_t* result = nullptr;
    const int rc = zeb_db_query(handle, "PCIBridge", address_columns, bus_address().size(), condition, nullptr, 0,
                                nullptr, &result);
    bridge.reset(result);
    return rc;
}

bus_address address_of(zeb_db_result_t* bridge) {
    bus_address address = {};
    for (unsigned column = 0; column < address.size(); ++column) {
        std::uint32_t value = 0;
        if (zeb_db_result_column_uint(bridge, column, &value) == 0) {
            address[column] = static_cast<std::uint8_t>(value & 0xFF);
        }
    }
    return address;
}

recorded_address read_recorded_address() {
    recorded_address recorded;
    const file_ptr file(std::fopen(own_bridge_file, "rb"));
    if (file != nullptr) {
        recorded.present = true;
        recorded.bytes = std::fread(recorded.address.data(), 1, recorded.address.size(), file.get());
    }
    return recorded;
}
