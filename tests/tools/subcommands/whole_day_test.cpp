// SPDX-License-Identifier: Apache-2.0

// A day in the life of an inventory, told through the command alone.

#include <gmock/gmock.h>

#include <map>

#include "support/cds_text.h"
#include "tools/subcommands/command_test.h"

using testing::HasSubstr;

namespace {

struct todays_server {
    std::string processor = "Model A";
    bool second_card = true;
    int own_bus = 0x0B;
};

std::vector<setting> at_bus(int bus, const std::vector<setting>& more) {
    std::vector<setting> settings = {integer("Bus Number", std::to_string(bus)), integer("Device Number", "0"),
                                     integer("Function Number", "0")};
    settings.insert(settings.end(), more.begin(), more.end());
    return settings;
}

std::string card(int bus, int slot) {
    return cds_component("pci_device_info",
                         at_bus(bus, {integer("Location", "1"), integer("Slot Number", std::to_string(slot))}));
}

std::string cds_of(const todays_server& described) {
    return cds_file(cds_component("cpu_info", {text("Socket Designation", "CPU 1"),
                                               text("Processor Version", described.processor)}) +
                    cds_component("memory_info", {text("Device Locator", "DIMM 1"), integer("Size in MB", "32768")}) +
                    card(0x10, 1) + (described.second_card ? card(0x11, 2) : "") + card(0x12, 3) +
                    cds_component("pci_bridge_info",
                                  at_bus(described.own_bus, {hex("Vendor ID", "0x1A03"), hex("Device ID", "0x1150")})));
}

std::string refreshed(const std::string& system, const std::string& pci) {
    return "Refreshed 'data/inventory.db' from 'server.xml':\n  system inventory  " + system +
           "\n  PCI inventory     " + pci + "\n";
}

}  // namespace

class WholeDay : public command_test {
protected:
    WholeDay() {
        std::filesystem::create_directory(folder() / "data");
        write("settings.bin", "whatever else describes the hardware");
    }

    command_result zebdb_cds(const std::string& arguments) const {
        return run("ZEBDB_DATABASE=data/inventory.db zebdb-cds " + arguments + " --root root");
    }

    std::string refresh(const todays_server& described) const {
        write("server.xml", cds_of(described));
        const command_result result = zebdb_cds("refresh server.xml");
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out;
    }

    void expect_check(int status, const std::string& out) const {
        const command_result result = zebdb_cds("check server.xml settings.bin");
        EXPECT_EQ(result.status, status) << result.err;
        EXPECT_EQ(result.out, out);
    }

    std::map<std::string, std::string> kept_files() const {
        std::map<std::string, std::string> files;
        for (const std::string name : {"root/var/DS/pci_inventory.fkey", "root/var/DS/inventory.fkey",
                                       "root/var/vonk/sys_inventory.digest", "root/var/vonk/pci_inventory.digest"}) {
            files[name] = read(name);
        }
        return files;
    }
};

TEST_F(WholeDay, IsNoticedStepByStep) {
    todays_server today;
    EXPECT_EQ(refresh(today), refreshed("changed    sequence 1", "changed    sequence 1"));
    EXPECT_EQ(run("zebdb-cds save-digest server.xml settings.bin --root root").status, 0);
    expect_check(0, "unchanged\n");

    today.second_card = false;
    write("server.xml", cds_of(today));
    expect_check(1, "changed\n  'server.xml' differs from its saved digest\n");
    EXPECT_EQ(refresh(today), refreshed("unchanged  sequence 1", "changed    sequence 2"));

    today.processor = "Model B";
    EXPECT_EQ(refresh(today), refreshed("changed    sequence 2", "unchanged  sequence 2"));

    write("root/bin/pci_digest.sh", "#!/bin/sh\nexit 1\n");
    EXPECT_EQ(refresh(today), refreshed("changed    sequence 3", "changed    sequence 3") +
                                  "  The digest script failed: every inventory that had a digest counts as changed.\n");
    std::filesystem::remove(folder() / "root/bin/pci_digest.sh");
    EXPECT_EQ(refresh(today), refreshed("unchanged  sequence 3", "unchanged  sequence 3"));

    const std::map<std::string, std::string> before = kept_files();
    std::filesystem::rename(folder() / "data", folder() / "taken away");
    const command_result refused = zebdb_cds("refresh server.xml");
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.out, "");
    EXPECT_THAT(refused.err, HasSubstr("cannot refresh 'data/inventory.db' from 'server.xml'"));
    EXPECT_EQ(kept_files(), before);
    std::filesystem::rename(folder() / "taken away", folder() / "data");

    EXPECT_EQ(zebdb_cds("bmc-address").out, "0b:00.0\n");
    today.own_bus = 0x0C;
    EXPECT_EQ(refresh(today), refreshed("unchanged  sequence 3", "changed    sequence 4"));
    EXPECT_EQ(zebdb_cds("bmc-address").out, "0c:00.0\n");
    EXPECT_EQ(read("root/var/log/bmc_bdf.bin"), std::string("\x0C\0\0", 3));
}
