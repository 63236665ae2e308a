/// The kinds of row that an inventory has.
#ifndef TOOLS_ROWS_KINDS_H
#define TOOLS_ROWS_KINDS_H

/// What a kind is called on the command line and in JSON, what stands above its rows, and the table that holds them.
/// A kind is the same as another where it is the same object.
struct inventory_kind {
    const char* name;
    const char* title;
    const char* table;
};

namespace kinds {

inline constexpr inventory_kind processors = {"processors", "Processors", "Processor"};
inline constexpr inventory_kind memory = {"memory", "Memory", "Memory"};
inline constexpr inventory_kind bridges = {"bridges", "Bridges", "PCIBridge"};
inline constexpr inventory_kind devices = {"devices", "Devices", "PCIs"};

/// In the order in which they are printed.
inline constexpr const inventory_kind* all[] = {&processors, &memory, &bridges, &devices};

}  // namespace kinds

#endif
