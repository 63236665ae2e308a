// SPDX-License-Identifier: Apache-2.0

/// The columns that the loader takes from settings.
#ifndef TOOLS_ROWS_RECORDED_COLUMNS_H
#define TOOLS_ROWS_RECORDED_COLUMNS_H

#include <vector>

#include "cds_parser/record_columns.h"
#include "rows/kinds.h"

/// Those of rows of `kind`, in the order in which the loader puts them.
const std::vector<cds_parser::column>& recorded_columns(const inventory_kind& kind);

#endif
