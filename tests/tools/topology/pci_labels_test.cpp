// SPDX-License-Identifier: Apache-2.0

#include "topology/pci_labels.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

#include "rows/kinds.h"
#include "rows/table.h"
#include "support/scratch_file.h"
#include "tools/topology/topology_test.h"

using testing::ElementsAre;

namespace {

inventory_value id(std::int64_t value) {
    return value;
}

const inventory_value nothing;

}  // namespace

class PciLabels : public topology_test {
protected:
    PciLabels() { use_names(list_.path()); }

    // A table with the labels of its rows, each of which is of a vendor, a device and a class.
    static inventory_table labelled(const inventory_kind& kind, const std::vector<std::string>& columns,
                                    const std::vector<std::vector<inventory_value>>& rows) {
        inventory_table table = {&kind, columns, rows};
        pci_names names;
        add_pci_labels(table, names);
        return table;
    }

    static inventory_table functions(const std::vector<std::vector<inventory_value>>& rows) {
        return labelled(kinds::devices, {"VendorId", "DeviceId", "ClsCode"}, rows);
    }

private:
    scratch_file list_{"8086  Chips Inc.\n\t1572  Ether 710\n\t1573  Root Port\n"};
};

TEST_F(PciLabels, AreTwoColumnsBehindThoseOfTheRows) {
    const inventory_table table = functions({{id(0x8086), id(0x1572), id(0x010802)}, {id(1), id(2), id(0x090000)}});
    EXPECT_THAT(table.columns, ElementsAre("VendorId", "DeviceId", "ClsCode", "(name)", "(kind)"));
    EXPECT_THAT(table.rows,
                ElementsAre(ElementsAre(id(0x8086), id(0x1572), id(0x010802), inventory_value("Chips Inc. Ether 710"),
                                        inventory_value("storage (NVMe)")),
                            ElementsAre(id(1), id(2), id(0x090000), nothing, inventory_value("input"))));
}

TEST_F(PciLabels, AreThoseOfBridgesToo) {
    const inventory_table table =
        labelled(kinds::bridges, {"VendorId", "DevId", "ClsCode"}, {{id(0x8086), id(0x1573), id(0x060400)}});
    EXPECT_EQ(table.rows[0][3], inventory_value("Chips Inc. Root Port"));
    EXPECT_EQ(table.rows[0][4], inventory_value("bridge (PCI)"));
}

TEST_F(PciLabels, NameTheVendorOfAnUnknownDevice) {
    EXPECT_EQ(functions({{id(0x8086), id(0x1574), nothing}}).rows[0][3], inventory_value("Chips Inc."));
}

TEST_F(PciLabels, AreAbsentWhereNothingHasAName) {
    const inventory_table table = functions({{nothing, nothing, nothing}, {id(1), id(2), id(0x7F0000)}});
    EXPECT_THAT(table.rows, ElementsAre(ElementsAre(nothing, nothing, nothing, nothing, nothing),
                                        ElementsAre(id(1), id(2), id(0x7F0000), nothing, nothing)));
}

TEST_F(PciLabels, AreNoneOfOtherTables) {
    const inventory_table table = labelled(kinds::memory, {"VendorId"}, {{id(0x8086)}});
    EXPECT_THAT(table.columns, ElementsAre("VendorId"));
    EXPECT_THAT(table.rows, ElementsAre(ElementsAre(id(0x8086))));
}
