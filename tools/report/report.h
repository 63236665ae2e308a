// SPDX-License-Identifier: Apache-2.0

/// A page that shows an inventory.
#ifndef TOOLS_REPORT_REPORT_H
#define TOOLS_REPORT_REPORT_H

#include <cstddef>
#include <ctime>
#include <string>

#include "sources/open_inventory.h"

struct report_options {
    std::time_t at;  ///< when the page is made, as it says
    bool redact;     ///< whether serial numbers and asset tags are hidden
};

/// Pages that are larger open slowly and are refused by many mail servers.
inline constexpr std::size_t large_page = 20'000'000;

/// One HTML file that needs nothing besides itself. With an older inventory, or null, it tells what has changed since.
/// The same sources and options give the same bytes. Throws failure.
std::string report_page(opened_source& shown, opened_source* old, const report_options& options);

#endif
