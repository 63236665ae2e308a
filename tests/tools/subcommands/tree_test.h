// SPDX-License-Identifier: Apache-2.0

/// Tests that print the PCI topology of a database whose rows they write themselves.
#ifndef TESTS_TOOLS_SUBCOMMANDS_TREE_TEST_H
#define TESTS_TOOLS_SUBCOMMANDS_TREE_TEST_H

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/subcommands/command_test.h"

class tree_test : public command_test {
protected:
    /// Makes an empty inventory.db that knows nothing of a source.
    tree_test() {
        write("empty.xml", "<component/>");
        const command_result result = run("zebdb-cds load empty.xml");
        if (result.status != 0) {
            throw std::runtime_error(result.err);
        }
        std::filesystem::remove(folder() / "empty.xml");
        execute("inventory.db", "DELETE FROM Source");
    }

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

    /// Runs the command where no list of PCI ids is installed.
    command_result run_without_names(const std::string& shell_command) const {
        return run("export ZEBDB_PCI_IDS=missing; " + shell_command);
    }

    /// Runs the command where `list`, written as pci.ids, is the list of PCI ids.
    command_result run_with_names(const std::string& list, const std::string& shell_command) const {
        write("pci.ids", list);
        return run("export ZEBDB_PCI_IDS=pci.ids; " + shell_command);
    }

    std::string tree(const std::string& arguments = "") const {
        const command_result result = run_without_names("zebdb-cds tree " + arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        return result.out;
    }

private:
    void add(const std::string& table, int id, int parent, int bus, int device) const {
        execute("inventory.db", "INSERT INTO " + table + " VALUES (" + std::to_string(id) + ", " +
                                    std::to_string(parent) + ", 1, 0, " + std::to_string(bus) + ", " +
                                    std::to_string(device) + ", 0)");
    }

    void change(const std::string& table, int id, const std::string& changes) const {
        if (!changes.empty()) {
            execute("inventory.db", "UPDATE " + table + " SET " + changes + " WHERE Id = " + std::to_string(id));
        }
    }
};

#endif
