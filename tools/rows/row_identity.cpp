// SPDX-License-Identifier: Apache-2.0

#include "rows/row_identity.h"

#include <map>

#include "rows/kinds.h"

const row_identity& identity_of(const inventory_kind& kind) {
    static const std::map<const inventory_kind*, row_identity> identities = {
        {&kinds::processors, {{"NodeIndex", "Socket"}, {}}},
        {&kinds::memory, {{"NodeIndex", "DevLocator", "BankLocator"}, {}}},
        {&kinds::bridges, {{"NodeIndex", "SegNo", "BusNo", "DevNo", "FunNo"}, {"SegNo", "BusNo", "DevNo", "FunNo"}}},
        {&kinds::devices, {{"NodeIndex", "FunKey"}, {"FunKey"}}},
    };
    return identities.at(&kind);
}
