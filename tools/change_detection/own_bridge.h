// SPDX-License-Identifier: Apache-2.0

/// The PCI address of the controller's own bridge.
#ifndef TOOLS_CHANGE_DETECTION_OWN_BRIDGE_H
#define TOOLS_CHANGE_DETECTION_OWN_BRIDGE_H

#include <optional>
#include <string>

#include <zeb_db.h>

/// Has the library record the address of the bridge that the inventory holds, and gives it as in "01:00.0"; nothing
/// when the inventory holds no such bridge. Throws failure when the inventory cannot be read or the address is not
/// recorded.
std::optional<std::string> record_own_bridge(_zeb_db_handle_t* handle);

/// What tells the bridge from others, as in "1a03:1150".
std::string own_bridge_id();

#endif
