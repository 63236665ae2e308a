// SPDX-License-Identifier: Apache-2.0

/// What a query of the inventory database gives.
#ifndef INVENTORY_QUERY_RESULT_H
#define INVENTORY_QUERY_RESULT_H

#include <memory>

#include <zeb_db.h>

/// What zeb_db_result_step() gives for a row, and what it usually gives when there is none.
inline constexpr int row_available = 9;
inline constexpr int end_of_rows = 101;

struct result_releaser {
    void operator()(zeb_db_result_t* result) const { zeb_db_free_result(result); }
};

/// A result that is released with its owner.
using result_ptr = std::unique_ptr<zeb_db_result_t, result_releaser>;

#endif
