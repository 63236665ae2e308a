// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the inventory service of a workstation gives where the controller's own is free to choose. For C and C++.
///
/// The database is the file that the environment variable ZEBDB_DATABASE names, "inventory.db" in the working directory
/// without it; it is opened once in a process and made when it is missing. Sequence numbers stand in the table
/// "InventorySequence", pending firmware in "PendingFirmware", and the in-memory copies of the inventory tables under
/// their own names in the attached database "memory".
#ifndef INVENTORY_SERVICE_WORKSTATION_H
#define INVENTORY_SERVICE_WORKSTATION_H

#include <inventory_service.h>

/// One entry of zebdb_pldm_firmware_pending_list: NUL-terminated texts, cut to fit.
typedef struct zebdb_pldm_firmware_pending_entry {
    char component[64];  ///< what would be updated
    char version[32];    ///< the version that waits
} zebdb_pldm_firmware_pending_entry;

#endif
