// SPDX-License-Identifier: Apache-2.0

/// @file
/// The services of the controller's inventory daemon that a refresh and a change test call. For C and C++.
#ifndef INVENTORY_SERVICE_H
#define INVENTORY_SERVICE_H

#ifdef __cplusplus
#include <cstdint>
#else
#include <stdint.h>
#endif

#include "zeb_db.h"

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

/// The firmware updates that wait to be activated.
typedef struct zebdb_pldm_firmware_pending_list {
    uint32_t count;  ///< number of entries
    void* entries;   ///< the entries, or null; the caller releases them with free()
} zebdb_pldm_firmware_pending_list;

/// The handle on the inventory database, or null when the database is unavailable. It stays the platform's.
_zeb_db_handle_t* get_dmdb_handle(void);

/// Fills the adapter rows from the function rows, inside the transaction that the caller opened. 0 = success.
int parse_aim(_zeb_db_handle_t* handle, unsigned aim_argument);

/// Gives notice that the inventory changed; `kind` is 0 for the system inventory and 1 for the PCI inventory.
int agentless_update_inventory_sequence(int kind);

/// Rebuilds the in-memory copies of the inventory tables. 0 = success.
int rebuild_tables_in_memory(_zeb_db_handle_t* handle);

/// Fills `list`, whose entries the caller then owns. 0 = success; on failure the list is unchanged.
int zebdb_get_pldm_firmware_pending_list(zebdb_pldm_firmware_pending_list* list);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

#endif
