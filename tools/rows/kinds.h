// SPDX-License-Identifier: Apache-2.0

/// The kinds of row that an inventory has.
#ifndef TOOLS_ROWS_KINDS_H
#define TOOLS_ROWS_KINDS_H

#include "cds_parser/record_columns.h"

struct kind_description;

/// What a kind is called on the command line and in JSON, what stands above its rows, the loader's records that they
/// are, and all that is said of it. A kind is the same as another where it is the same object.
struct inventory_kind {
    const char* name;
    const char* title;
    const cds_parser::record_kind& record;
    const kind_description& (*description)();
};

namespace kinds {

/// One file each.
const kind_description& describe_processors();
const kind_description& describe_memory();
const kind_description& describe_bridges();
const kind_description& describe_devices();

inline constexpr inventory_kind processors = {"processors", "Processors", cds_parser::processor_record,
                                              describe_processors};
inline constexpr inventory_kind memory = {"memory", "Memory", cds_parser::memory_record, describe_memory};
inline constexpr inventory_kind bridges = {"bridges", "Bridges", cds_parser::bridge_record, describe_bridges};
inline constexpr inventory_kind devices = {"devices", "Devices", cds_parser::device_record, describe_devices};

/// In the order in which they are printed.
inline constexpr const inventory_kind* all[] = {&processors, &memory, &bridges, &devices};

}  // namespace kinds

#endif
