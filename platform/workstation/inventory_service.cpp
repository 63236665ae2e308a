// SPDX-License-Identifier: Apache-2.0

// The inventory service on a workstation: everything it keeps is in the inventory database.

#include "inventory_service_workstation.h"

#include <inventory_service.h>
#include <vonk_log.h>
#include <zeb_db.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "database_failure.h"
#include "zeb_db_handle.h"
#include "zeb_db_workstation.h"

namespace {

constexpr int system_inventory = 0;
constexpr int pci_inventory = 1;

constexpr const char* inventory_tables[] = {"Processor", "Memory", "PCIBridge", "PCIs", "PCIAdapter"};

struct handle_closer {
    void operator()(_zeb_db_handle_t* handle) const { zeb_db_close(handle); }
};

const char* database_path() {
    const char* path = std::getenv("ZEBDB_DATABASE");
    return path == nullptr || *path == '\0' ? "inventory.db" : path;
}

int prepare_pending_query(_zeb_db_handle_t& handle, statement_ptr& statement) {
    sqlite3_stmt* prepared = nullptr;
    const int rc = sqlite3_prepare_v2(
        handle.connection.get(), "SELECT Component, Version FROM PendingFirmware ORDER BY Id", -1, &prepared, nullptr);
    statement.reset(prepared);
    return rc;
}

// The columns are never null; SQLite gives no text for want of memory.
template <std::size_t Size>
void copy_text(sqlite3_stmt* row, int column, char (&target)[Size]) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    if (text == nullptr) {
        throw std::bad_alloc();
    }
    std::snprintf(target, Size, "%s", text);
}

int read_pending(_zeb_db_handle_t& handle, std::vector<zebdb_pldm_firmware_pending_entry>& entries) {
    statement_ptr statement;
    int rc = prepare_pending_query(handle, statement);
    if (rc != SQLITE_OK) {
        return rc;
    }
    while ((rc = sqlite3_step(statement.get())) == SQLITE_ROW) {
        zebdb_pldm_firmware_pending_entry& entry = entries.emplace_back();
        copy_text(statement.get(), 0, entry.component);
        copy_text(statement.get(), 1, entry.version);
    }
    return rc == SQLITE_DONE ? SQLITE_OK : rc;
}

int attach_memory(_zeb_db_handle_t& handle) {
    if (handle.has_memory_tables) {
        return SQLITE_OK;
    }
    const int rc = execute(handle, "ATTACH ':memory:' AS memory", "attach the in-memory tables");
    handle.has_memory_tables = rc == SQLITE_OK;
    return rc;
}

int give_pending(_zeb_db_handle_t& handle, zebdb_pldm_firmware_pending_list& list) {
    std::vector<zebdb_pldm_firmware_pending_entry> entries;
    const int rc = read_pending(handle, entries);
    if (rc != SQLITE_OK) {
        const std::string text =
            std::string("cannot read the pending firmware: ") + sqlite3_errmsg(handle.connection.get());
        vonk_log::logErr("inventory service: %s", text.c_str());
        return note_failure(rc, text.c_str());
    }
    void* copy = nullptr;
    if (!entries.empty()) {
        copy = std::calloc(entries.size(), sizeof entries.front());
        if (copy == nullptr) {
            return report_lack_of_memory();
        }
        std::memcpy(copy, entries.data(), entries.size() * sizeof entries.front());
    }
    list.count = static_cast<std::uint32_t>(entries.size());
    list.entries = copy;
    return SQLITE_OK;
}

std::string copy_statements(const std::string& table) {
    return "DROP TABLE IF EXISTS memory." + table + ";CREATE TABLE memory." + table + " AS SELECT * FROM main." +
           table + ';';
}

std::string copy_statements() {
    std::string sql = "SAVEPOINT rebuild;";
    for (const char* table : inventory_tables) {
        sql += copy_statements(table);
    }
    return sql + "RELEASE rebuild";
}

}  // namespace

_zeb_db_handle_t* get_dmdb_handle(void) {
    static std::unique_ptr<_zeb_db_handle_t, handle_closer> handle;
    if (handle == nullptr) {
        _zeb_db_handle_t* opened = nullptr;
        zeb_db_open(database_path(), &opened);
        handle.reset(opened);
    }
    return handle.get();
}

int parse_aim(_zeb_db_handle_t* handle, unsigned aim_argument) {
    if (handle == nullptr) {
        return SQLITE_MISUSE;
    }
    return guarded([&] {
        const std::string sql =
            "DELETE FROM PCIAdapter;"
            "INSERT INTO PCIAdapter (DevKey, PCIFuncKey, AimArgument) SELECT DevKey, MIN(FunKey), " +
            std::to_string(aim_argument) + " FROM PCIs GROUP BY DevKey ORDER BY DevKey";
        return execute(*handle, sql.c_str(), "fill PCIAdapter");
    });
}

int agentless_update_inventory_sequence(int kind) {
    if (kind != system_inventory && kind != pci_inventory) {
        vonk_log::logErr("inventory service: there is no inventory of kind %d", kind);
        return SQLITE_MISUSE;
    }
    _zeb_db_handle_t* handle = get_dmdb_handle();
    if (handle == nullptr) {
        return SQLITE_CANTOPEN;
    }
    return guarded([&] {
        const std::string sql = "INSERT INTO InventorySequence (Kind, Sequence) VALUES (" + std::to_string(kind) +
                                ", 1) ON CONFLICT (Kind) DO UPDATE SET Sequence = Sequence + 1";
        return execute(*handle, sql.c_str(), "raise the inventory sequence");
    });
}

int rebuild_tables_in_memory(_zeb_db_handle_t* handle) {
    if (handle == nullptr) {
        return SQLITE_MISUSE;
    }
    return guarded([&] {
        const std::string statements = copy_statements();
        int rc = attach_memory(*handle);
        if (rc != SQLITE_OK) {
            return rc;
        }
        rc = execute(*handle, statements.c_str(), "rebuild the in-memory tables");
        if (rc != SQLITE_OK) {
            execute(*handle, "ROLLBACK TO rebuild; RELEASE rebuild", "keep the in-memory tables");
        }
        return rc;
    });
}

int zebdb_get_pldm_firmware_pending_list(zebdb_pldm_firmware_pending_list* list) {
    if (list == nullptr) {
        return SQLITE_MISUSE;
    }
    _zeb_db_handle_t* handle = get_dmdb_handle();
    if (handle == nullptr) {
        return SQLITE_CANTOPEN;
    }
    return guarded([&] { return give_pending(*handle, *list); });
}
