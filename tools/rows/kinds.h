// SPDX-License-Identifier: Apache-2.0

/// The kinds of row that an inventory has.
#ifndef TOOLS_ROWS_KINDS_H
#define TOOLS_ROWS_KINDS_H

#include "cds_parser/record_columns.h"

/// What a kind is called on the command line and in JSON, what stands above its rows, and the loader's records that
/// they are. A kind is the same as another where it is the same object.
struct inventory_kind {
    const char* name;
    const char* title;
    const cds_parser::record_kind& record;
};

namespace kinds {

inline constexpr inventory_kind processors = {"processors", "Processors", cds_parser::processor_record};
inline constexpr inventory_kind memory = {"memory", "Memory", cds_parser::memory_record};
inline constexpr inventory_kind bridges = {"bridges", "Bridges", cds_parser::bridge_record};
inline constexpr inventory_kind devices = {"devices", "Devices", cds_parser::device_record};

/// In the order in which they are printed.
inline constexpr const inventory_kind* all[] = {&processors, &memory, &bridges, &devices};

}  // namespace kinds

#endif
