// SPDX-License-Identifier: Apache-2.0

#include "topology/pci_labels.h"

#include <cstddef>
#include <string>
#include <vector>

#include "rows/kinds.h"
#include "rows/pci_label_columns.h"
#include "rows/table.h"
#include "topology/pci_kind.h"
#include "topology/pci_names.h"

namespace {

inventory_value name_label(const inventory_row& row, pci_names& names) {
    const auto vendor = number_in(row["VendorId"]);
    const auto vendor_name = names.vendor(vendor);
    const auto device_name =
        names.device(vendor, number_in(row[&row.kind() == &kinds::bridges ? "DevId" : "DeviceId"]));
    if (!vendor_name) {
        return {};
    }
    return device_name ? *vendor_name + ' ' + *device_name : *vendor_name;
}

inventory_value kind_label(const inventory_row& row) {
    const auto class_code = number_in(row["ClsCode"]);
    const pci_kind kind = class_code ? kind_of(*class_code) : pci_kind{nullptr, nullptr};
    if (kind.base_class == nullptr) {
        return {};
    }
    return kind.subclass == nullptr ? std::string(kind.base_class)
                                    : std::string(kind.base_class) + " (" + kind.subclass + ')';
}

}  // namespace

void add_pci_labels(inventory_table& table, pci_names& names) {
    if (table.kind != &kinds::bridges && table.kind != &kinds::devices) {
        return;
    }
    std::vector<std::vector<inventory_value>> labels;
    for (std::size_t place = 0; place < table.rows.size(); ++place) {
        const inventory_row row(table, place);
        labels.push_back({name_label(row, names), kind_label(row)});
    }
    table.columns.insert(table.columns.end(), {pci_label_columns::name, pci_label_columns::kind});
    for (std::size_t place = 0; place < table.rows.size(); ++place) {
        table.rows[place].insert(table.rows[place].end(), labels[place].begin(), labels[place].end());
    }
}
