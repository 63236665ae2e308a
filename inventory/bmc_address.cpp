// The PCI address of the controller's own bridge, kept in a three-byte file: bus, device, function.

#include <inventory_service.h>
#include <vonk_log.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "zebdb_cds_parser/entry_points.h"

namespace {

constexpr int no_handle = 6;
constexpr int row_available = 9;
constexpr const char* address_file = "/var/log/bmc_bdf.bin";

constexpr int bmc_vendor = 0x1A03;
constexpr int bmc_bridge_device = 0x1150;
constexpr const char* address_columns[] = {"BusNo", "DevNo", "FunNo"};
constexpr unsigned address_size = 3;

using bus_address = std::array<std::uint8_t, address_size>;

struct file_closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using file_ptr = std::unique_ptr<std::FILE, file_closer>;

struct result_releaser {
    void operator()(zeb_db_result_t* result) const { zeb_db_free_result(result); }
};
using result_ptr = std::unique_ptr<zeb_db_result_t, result_releaser>;

int query_bridge(_zeb_db_handle_t* handle, result_ptr& bridge) {
    char condition[64];
    std::snprintf(condition, sizeof condition, "%s=%d AND %s=%d", "VendorId", bmc_vendor, "DevId", bmc_bridge_device);
    zeb_db_result_t* result = nullptr;
    const int rc =
        zeb_db_query(handle, "PCIBridge", address_columns, address_size, condition, nullptr, 0, nullptr, &result);
    bridge.reset(result);
    return rc;
}

bus_address address_of(zeb_db_result_t* bridge) {
    bus_address address = {};
    for (unsigned column = 0; column < address_size; ++column) {
        std::uint32_t value = 0;
        if (zeb_db_result_column_uint(bridge, column, &value) == 0) {
            address[column] = static_cast<std::uint8_t>(value & 0xFF);
        }
    }
    return address;
}

// What the file held before; a short file counts as filled up with zeros.
struct recorded_address {
    bool present = false;
    int bytes = 0;
    bus_address address = {};
};

recorded_address read_recorded() {
    recorded_address recorded;
    const file_ptr file(std::fopen(address_file, "rb"));
    if (file != nullptr) {
        recorded.present = true;
        recorded.bytes = static_cast<int>(std::fread(recorded.address.data(), 1, address_size, file.get()));
    }
    return recorded;
}

int write_address(std::FILE* file, const bus_address& address) {
    std::setvbuf(file, nullptr, _IONBF, 0);  // a full disk shows in the write
    return std::fwrite(address.data(), 1, address_size, file) == address_size ? 0 : -1;
}

int record(const bus_address& current) {
    const recorded_address previous = read_recorded();
    if (previous.present && previous.address == current) {
        return previous.bytes;
    }
    file_ptr file(std::fopen(address_file, "w+"));
    if (file == nullptr) {
        return previous.present ? previous.bytes : row_available;
    }
    const int result = write_address(file.get(), current);
    file.reset();
    vonk_log::logInfo(
        "update BMC address, current BDF 0x%x 0x%x 0x%x from database, previous BDF 0x%x 0x%x 0x%x from file %s\n",
        current[0], current[1], current[2], previous.address[0], previous.address[1], previous.address[2],
        address_file);
    return result;
}

}  // namespace

int update_bmc_addr(void) {
    _zeb_db_handle_t* handle = get_dmdb_handle();
    if (handle == nullptr) {
        return no_handle;
    }
    result_ptr bridge;
    const int rc = query_bridge(handle, bridge);
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
