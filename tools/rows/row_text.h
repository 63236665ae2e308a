/// How the columns of an inventory row are written for people. "-" stands for what there is not.
#ifndef TOOLS_ROWS_ROW_TEXT_H
#define TOOLS_ROWS_ROW_TEXT_H

#include <cstdint>
#include <optional>
#include <string>

#include "sources/inventory.h"

/// One row of a table by column name. A column that the table does not have was never put.
class inventory_row {
public:
    /// Refers to both.
    inventory_row(const inventory_table& table, const std::vector<inventory_value>& values);

    /// Null unless the column holds text.
    const std::string* text(const char* column) const;

    /// The number in a column with all its bits; nothing unless it holds one.
    std::optional<std::uint64_t> number(const char* column) const;

private:
    const inventory_value* find(const char* column) const;

    const std::vector<std::string>& columns_;
    const std::vector<inventory_value>& values_;
};

/// Gives the text of a column, or of a group of columns whose names it knows itself.
using row_text = std::string (*)(const inventory_row& row, const char* column);

namespace row_texts {

std::string plain(const inventory_row& row, const char* column);
/// A number of which -1, in 32 or in 64 bits, stands for none: node, slot and row ids.
std::string index(const inventory_row& row, const char* column);
std::string key(const inventory_row& row, const char* column);
std::string class_code(const inventory_row& row, const char* column);
std::string revision(const inventory_row& row, const char* column);
std::string segment(const inventory_row& row, const char* column);
std::string bus(const inventory_row& row, const char* column);
/// Half of a PCI id: the vendor's or the device's.
std::string pci_id_part(const inventory_row& row, const char* column);
std::string megahertz(const inventory_row& row, const char* column);
std::string megatransfers(const inventory_row& row, const char* column);
/// Sizes, from columns that count in the unit of the name.
std::string bytes(const inventory_row& row, const char* column);
std::string kibibytes(const inventory_row& row, const char* column);
std::string mebibytes(const inventory_row& row, const char* column);

std::string processor_id(const inventory_row& row, const char* column);
std::string cores(const inventory_row& row, const char*);
std::string memory_type(const inventory_row& row, const char* column);
std::string bridge_address(const inventory_row& row, const char*);
std::string bridge_id(const inventory_row& row, const char*);
std::string bus_range(const inventory_row& row, const char*);
std::string device_address(const inventory_row& row, const char*);
std::string device_id(const inventory_row& row, const char*);
std::string subsystem_id(const inventory_row& row, const char*);
std::string lanes(const inventory_row& row, const char*);
std::string link_generation(const inventory_row& row, const char*);

}  // namespace row_texts

#endif
