// SPDX-License-Identifier: Apache-2.0

/// Tests of the PCI topology of rows that they write themselves.
#ifndef TESTS_TOOLS_TOPOLOGY_TOPOLOGY_TEST_H
#define TESTS_TOOLS_TOPOLOGY_TOPOLOGY_TEST_H

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console/text_table.h"
#include "rows/kinds.h"
#include "rows/table.h"
#include "tools/memory_rows.h"
#include "topology/pci_names.h"
#include "topology/pci_topology.h"
#include "topology/topology_formats.h"

class topology_test : public testing::Test {
protected:
    /// Nothing has a name.
    topology_test() { use_names("missing"); }
    ~topology_test() override { unsetenv(names_variable); }

    /// The list of PCI ids from now on.
    static void use_names(const std::string& path) { setenv(names_variable, path.c_str(), 1); }

    /// Adds a bridge at bus:device.0 of segment 0 to node 1. `changes` are further columns, as in "FunNo = 1".
    void add_bridge(int id, int parent, int bus, int device, const std::string& changes = "") const {
        add("PCIBridge (Id, ParentId, NodeIndex, SegNo, BusNo, DevNo, FunNo)", id, parent, bus, device);
        change("PCIBridge", id, changes);
    }

    /// Adds a function likewise.
    void add_function(int id, int bridge, int bus, int device, const std::string& changes = "") const {
        add("PCIs (Id, BridgeId, NodeIndex, SegNo, BusNo, DeviceNo, FunctionNo)", id, bridge, bus, device);
        change("PCIs", id, changes);
    }

    void execute(const std::string& sql) const { rows_.execute(sql); }

    std::string tree(const text_style& style = {}) const {
        return written([&style](const auto& parts, std::ostream& out) { write_topology_text(parts, style, out); });
    }

    std::string tree_json() const { return written(write_topology_json); }

private:
    static constexpr const char* names_variable = "ZEBDB_PCI_IDS";

    template <class Write>
    std::string written(Write write) const {
        const inventory shown = rows_.read();
        const inventory_table bridges = shown.read(kinds::bridges);
        const inventory_table functions = shown.read(kinds::devices);
        pci_names names;
        std::ostringstream out;
        write(pci_topology(bridges, functions, names), out);
        return out.str();
    }

    void add(const std::string& table, int id, int parent, int bus, int device) const {
        execute("INSERT INTO " + table + " VALUES (" + std::to_string(id) + ", " + std::to_string(parent) + ", 1, 0, " +
                std::to_string(bus) + ", " + std::to_string(device) + ", 0)");
    }

    void change(const std::string& table, int id, const std::string& changes) const {
        if (!changes.empty()) {
            execute("UPDATE " + table + " SET " + changes + " WHERE Id = " + std::to_string(id));
        }
    }

    memory_rows rows_;
};

#endif
