#include "change_detection/service.h"

#include <cstdlib>
#include <memory>

#include "console/failure.h"
#include "sources/database_file.h"
#include "sources/library_log.h"

namespace {

constexpr int row_available = 9;

struct result_releaser {
    void operator()(zeb_db_result_t* result) const { zeb_db_free_result(result); }
};
using result_ptr = std::unique_ptr<zeb_db_result_t, result_releaser>;

}  // namespace

_zeb_db_handle_t* open_service(const std::string& path) {
    ::setenv("ZEBDB_DATABASE", sqlite_name(path).c_str(), 1);
    const library_log log;
    _zeb_db_handle_t* handle = get_dmdb_handle();
    if (handle == nullptr) {
        throw failure(with_advice(log.cause()));
    }
    return handle;
}

inventory_sequences read_sequences(_zeb_db_handle_t* handle) {
    constexpr const char* columns[] = {"Kind", "Sequence"};
    zeb_db_result_t* result = nullptr;
    const library_log log;
    const int rc = zeb_db_query(handle, "InventorySequence", columns, 2, nullptr, nullptr, 0, nullptr, &result);
    const result_ptr rows(result);
    if (rc != 0) {
        throw failure(with_advice(log.cause()));
    }
    inventory_sequences sequences;
    while (zeb_db_result_step(rows.get()) == row_available) {
        std::uint32_t kind = 0;
        std::uint32_t sequence = 0;
        zeb_db_result_column_uint(rows.get(), 0, &kind);
        zeb_db_result_column_uint(rows.get(), 1, &sequence);
        (kind == 0 ? sequences.system : sequences.pci) = sequence;
    }
    return sequences;
}
