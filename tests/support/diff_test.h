/// Tests that compare two inventories by the command.
#ifndef TESTS_SUPPORT_DIFF_TEST_H
#define TESTS_SUPPORT_DIFF_TEST_H

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/cds_text.h"
#include "support/command_test.h"

inline std::vector<setting> joined(std::vector<setting> settings, const std::vector<setting>& more) {
    settings.insert(settings.end(), more.begin(), more.end());
    return settings;
}

// Components of a CDS file.

inline std::string processor(const std::string& socket, const std::vector<setting>& more = {}) {
    return cds_component("cpu_info", joined({text("Socket Designation", socket)}, more));
}

/// A memory module; without a serial number where that is empty.
inline std::string module(const std::string& locator, const std::string& serial,
                          const std::vector<setting>& more = {}) {
    std::vector<setting> settings = {text("Device Locator", locator)};
    if (!serial.empty()) {
        settings.push_back(text("Serial Number", serial));
    }
    return cds_component("memory_info", joined(settings, more));
}

inline std::vector<setting> address(const std::string& bus) {
    return {hex("Bus Number", bus), integer("Device Number", "0"), integer("Function Number", "0")};
}

inline std::string bridge(const std::string& bus, const std::vector<setting>& more = {},
                          const std::string& children = "") {
    return cds_component("pci_bridge_info", joined(address(bus), more), children);
}

inline std::string function(const std::string& bus, const std::vector<setting>& more = {}) {
    return cds_component("pci_device_info", joined(joined(address(bus), {integer("Location", "1")}), more));
}

/// A server of that node index.
inline std::string server(const std::string& components, const std::string& index = "1") {
    return cds_component("component_struct_info",
                         {text("comp_type", "EFI_CT_MAIN_SERVER"), integer("slot_index", index)}, components);
}

class diff_test : public command_test {
protected:
    /// Writes the components into old.xml and new.xml.
    void write_both(const std::string& old_components, const std::string& new_components) const {
        write("old.xml", cds_file(old_components));
        write("new.xml", cds_file(new_components));
    }

    command_result diff(const std::string& arguments = "old.xml new.xml") const {
        return run("zebdb-cds diff " + arguments);
    }

    void expect_diff(int status, const std::string& out) const {
        const command_result result = diff();
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.out, out);
        EXPECT_EQ(result.err, "");
    }

    void load(const std::string& file, const std::string& database) const {
        const command_result result = run("zebdb-cds load " + file + " --database " + database);
        if (result.status != 0) {
            throw std::runtime_error(result.err);
        }
    }
};

#endif
