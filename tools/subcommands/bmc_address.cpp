// zebdb-cds bmc-address: records the PCI address of the controller's own bridge and prints it.

#include <array>
#include <fstream>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>

#include <zebdb_cds_parser.h>

#include "change_detection/private_view.h"
#include "change_detection/service.h"
#include "console/failure.h"
#include "console/output.h"
#include "sources/database_file.h"
#include "sources/library_log.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

constexpr const char* address_file = "/var/log/bmc_bdf.bin";
constexpr int end_of_rows = 101;
constexpr const char* own_bridge = "VendorId=6659 AND DevId=4432";

struct bmc_options {
    std::string database;
    std::string root;
};

using bus_address = std::array<unsigned char, 3>;

struct result_releaser {
    void operator()(zeb_db_result_t* result) const { zeb_db_free_result(result); }
};

bus_address recorded_address() {
    bus_address address = {};
    std::ifstream file(address_file, std::ios::binary);
    file.read(reinterpret_cast<char*>(address.data()), address.size());
    return address;
}

// The address that the record should hold; zeros without such a bridge.
bus_address address_in(_zeb_db_handle_t* handle) {
    constexpr const char* columns[] = {"BusNo", "DevNo", "FunNo"};
    zeb_db_result_t* result = nullptr;
    zeb_db_query(handle, "PCIBridge", columns, 3, own_bridge, nullptr, 0, nullptr, &result);
    const std::unique_ptr<zeb_db_result_t, result_releaser> bridge(result);
    bus_address address = {};
    zeb_db_result_step(bridge.get());
    for (unsigned column = 0; column < address.size(); ++column) {
        std::uint32_t number = 0;
        zeb_db_result_column_uint(bridge.get(), column, &number);
        address[column] = static_cast<unsigned char>(number & 0xFF);
    }
    return address;
}

std::string text_of(const bus_address& address) {
    std::ostringstream text;
    text << std::hex << std::setfill('0') << std::setw(2) << unsigned{address[0]} << ':' << std::setw(2)
         << unsigned{address[1]} << '.' << unsigned{address[2]} << '\n';
    return text.str();
}

int bmc_address(const bmc_options& options) {
    enter_private_view(options.root);
    require_database_file(options.database);
    _zeb_db_handle_t* handle = open_service(options.database);

    const library_log log;
    const int result = update_bmc_addr();
    if (!log.cause().empty()) {
        throw failure(with_advice(log.cause()));
    }
    if (result == end_of_rows) {
        complain("'" + options.database + "' holds no bridge 1a03:1150, which is the controller's own");
        return status_no;
    }
    const bus_address address = address_in(handle);
    if (recorded_address() != address) {
        throw failure(std::string("cannot write ") + address_file + private_view_hint(address_file) +
                      "; see that its folder is there and writable");
    }
    print(text_of(address));
    return status_done;
}

}  // namespace

action define_bmc_address(command_line& arguments) {
    const auto options = std::make_shared<bmc_options>();
    add_database_option(arguments, options->database);
    add_root_option(arguments, options->root);
    return [options] { return bmc_address(*options); };
}
