// SPDX-License-Identifier: Apache-2.0

/// What makes two rows of a kind the same, whatever their row ids.
#ifndef TOOLS_ROWS_ROW_IDENTITY_H
#define TOOLS_ROWS_ROW_IDENTITY_H

#include <string>
#include <vector>

#include "rows/kinds.h"

struct row_identity {
    /// Which part a row is about: where it sits, or its address.
    std::vector<std::string> columns;
    /// What is left of `columns` when a server's index was changed. Empty where the rest says too little.
    std::vector<std::string> columns_without_node;
};

const row_identity& identity_of(const inventory_kind& kind);

#endif
