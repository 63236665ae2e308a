// SPDX-License-Identifier: Apache-2.0

/// Lists of PCI function keys, read from the database and kept in files.
///
/// A key file is a count and that many keys, unsigned 32-bit words in the machine's byte order and nothing else.
#ifndef INVENTORY_FUNCTION_KEYS_H
#define INVENTORY_FUNCTION_KEYS_H

#include <cstdint>
#include <optional>
#include <vector>

#include <zeb_db.h>

using function_key_list = std::vector<std::uint32_t>;

/// Where a set of function keys comes from and where it is kept.
struct function_key_set {
    const char* table;
    const char* column;
    const char* file;
};

constexpr function_key_set pci_function_keys = {"PCIs", "FunKey", "/var/DS/pci_inventory.fkey"};
constexpr function_key_set adapter_function_keys = {"PCIAdapter", "PCIFuncKey", "/var/DS/inventory.fkey"};

/// Appends the column's value of every row of the table to `keys`, 0 for a value that cannot be read. The status of
/// the query, 0 for success.
int read_fkeys_fromDb(_zeb_db_handle_t* handle, function_key_list& keys, const char* table, const char* column);

/// Writes the keys to the file at `path` and logs how that went. An empty list leaves the file as it is.
void save_fkeys_ToFile(const char* path, const function_key_list& keys);

/// Appends the keys of the file at `path` to `keys`, all but the last one: a key counts only while at least one byte of
/// the file lies behind it. 0, or -1 for a file that is missing, empty or cannot be read.
int read_fkeys_fromFile(const char* path, function_key_list& keys);

/// The first saved key that is not among the present ones. Only that is a change: keys that came, their number and
/// their order are none.
std::optional<std::uint32_t> first_vanished_key(const function_key_list& saved, const function_key_list& present);

#endif
