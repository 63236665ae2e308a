// SPDX-License-Identifier: Apache-2.0

#include "cds_generator.h"

#include <cstdint>
#include <cstdio>
#include <ostream>
#include <random>
#include <string>

namespace {

constexpr unsigned processors = 2;
constexpr unsigned memory_devices = 24;
constexpr unsigned memory_channel_size = 6;  // the last of each channel's devices is persistent
constexpr unsigned pci_trees = 6;

constexpr unsigned host_bridge_class = 0x060000;
constexpr unsigned pci_bridge_class = 0x060400;
constexpr unsigned system_peripheral_class = 0x088000;
constexpr unsigned network_class = 0x020000;
constexpr unsigned nvm_express_class = 0x010802;
constexpr unsigned display_class = 0x030200;

class xml_writer {
public:
    xml_writer(std::ostream& out, white_space between) : out_(out), between_(between) {}

    void open(const char* tag) {
        new_line();
        out_ << '<' << tag << '>';
        ++depth_;
    }

    void close(const char* tag) {
        --depth_;
        new_line();
        out_ << "</" << tag << '>';
    }

    void leaf(const char* tag, const std::string& text) {
        new_line();
        out_ << '<' << tag << '>' << text << "</" << tag << '>';
    }

private:
    void new_line() {
        if (between_ != white_space::none) {
            const char* indent = between_ == white_space::tabs ? "\t" : "  ";
            out_ << '\n';
            for (unsigned level = 0; level < depth_; ++level) {
                out_ << indent;
            }
        }
    }

    std::ostream& out_;
    white_space between_;
    unsigned depth_ = 0;
};

/// An element that is open as long as this object lives.
class element {
public:
    element(xml_writer& xml, const char* tag) : xml_(xml), tag_(tag) { xml_.open(tag_); }
    ~element() { xml_.close(tag_); }
    element(const element&) = delete;
    element& operator=(const element&) = delete;

private:
    xml_writer& xml_;
    const char* tag_;
};

/// A setting group that is open as long as this object lives.
class group : element {
public:
    group(xml_writer& xml, const char* name) : element(xml, "setting_group"), xml_(xml) { xml_.leaf("name", name); }

    void hex(const char* name, std::uint64_t value) { setting(name, "hex_value", formatted("%llX", value)); }
    void integer(const char* name, std::uint64_t value) { setting(name, "integer_value", std::to_string(value)); }
    void text(const char* name, const std::string& value) { setting(name, "text_value", value); }
    void boolean(const char* name, bool value) { setting(name, "bool_value", value ? "true" : "false"); }

    void setting(const char* name, const char* value_element, const std::string& value) {
        const element open(xml_, "setting");
        xml_.leaf("name", name);
        xml_.leaf(value_element, value);
    }

    static std::string formatted(const char* format, unsigned long long value) {
        char digits[32];
        std::snprintf(digits, sizeof digits, format, value);
        return digits;
    }

private:
    xml_writer& xml_;
};

class generator {
public:
    generator(std::ostream& out, std::uint32_t seed, white_space between) : xml_(out, between), random_(seed) {}

    void enclosure(unsigned servers) {
        const element component(xml_, "component");
        struct_info("EFI_CT_CHASSIS", 0);
        document_info();
        const element slots(xml_, "child_slot_group");
        for (unsigned index = 0; index < servers; ++index) {
            server(index);
        }
    }

private:
    // The distributions of the standard library differ between its makers; its generator does not.
    std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }

    std::string digits(const char* format) { return group::formatted(format, random_() & 0xFFFFFFFF); }

    // One draw a statement: the order within an expression is the compiler's choice.
    std::string guid() {
        std::string text = digits("%08llx");
        text += "-4c1d-4b2a-" + group::formatted("%04llx", below(0x10000));
        text += "-0242" + digits("%08llx");
        return text;
    }

    std::string date() {
        std::string text = std::to_string(2010 + below(15));
        text += "-" + group::formatted("%02llu", 1 + below(12));
        text += "-" + group::formatted("%02llu", 1 + below(28));
        return text;
    }

    void struct_info(const char* type) { group(xml_, "component_struct_info").text("comp_type", type); }

    void struct_info(const char* type, unsigned index) {
        group info(xml_, "component_struct_info");
        info.text("comp_type", type);
        info.integer("slot_index", index);
    }

    void slot_info(const char* type, unsigned count) {
        group info(xml_, "slot_struct_info");
        info.text("slot_type", type);
        info.integer("slot_count", count);
    }

    void document_info() {
        group info(xml_, "document_info");
        info.setting("Format Version", "decimal_value", "1.2");
        info.setting("Created On", "date_value", date());
        info.setting("Created At", "time_value", "18:38:" + std::to_string(10 + below(50)));
        info.boolean("Complete", true);
        info.setting("Document GUID", "guid_value", guid());
    }

    void server(unsigned index) {
        const element component(xml_, "component");
        struct_info("EFI_CT_MAIN_SERVER", index);
        {
            const element slots(xml_, "child_slot_group");
            slot_info("EFI_ST_PROCESSOR", processors);
            for (unsigned socket = 0; socket < processors; ++socket) {
                processor(socket);
            }
        }
        {
            const element slots(xml_, "child_slot_group");
            slot_info("EFI_ST_MEMORY", memory_devices);
            for (unsigned slot = 0; slot < memory_devices; ++slot) {
                memory_device(slot);
            }
        }
        const element slots(xml_, "child_slot_group");
        next_bus_ = 0;
        next_slot_ = 1;
        for (unsigned tree = 0; tree < pci_trees; ++tree) {
            pci_tree(tree);
        }
    }

    void cache(group& info, const std::string& level, unsigned kib, unsigned configuration) {
        info.hex((level + " Cache Maximum Size").c_str(), kib);
        info.hex((level + " Cache Installed Size").c_str(), kib);
        info.integer((level + " Cache Type").c_str(), 3 + below(3));
        info.hex((level + " Cache Configuration").c_str(), configuration);
    }

    void processor(unsigned socket) {
        const unsigned cores = 4 * (2 + below(14));
        const element component(xml_, "component");
        struct_info("EFI_CT_PROCESSOR", socket);
        group info(xml_, "cpu_info");
        info.text("Socket Designation", "CPU " + std::to_string(socket + 1));
        info.integer("Processor Type", 3);
        info.hex("Processor Family", 0xB3);
        info.text("Processor Manufacturer", "Example(R) Corporation");
        info.hex("Processor ID", 0x00050650BFEBFBFF + (std::uint64_t{below(16)} << 32));
        info.text("Processor Version",
                  "Example(R) Server Processor " + std::to_string(5000 + below(1000)) + " CPU @ 2.30GHz");
        info.hex("Voltage", 0x80 + below(16));
        info.hex("External Clock", 100);
        info.hex("Max Speed", 4000);
        info.hex("Current Speed", 2000 + 100 * below(10));
        info.hex("Status", 0x41);
        info.hex("Processor Upgrade", 0x36);
        info.text("Serial Number", digits("%08llX"));
        info.text("Asset Tag", "");
        info.text("Part Number", "");
        info.hex("Core Count", cores);
        info.hex("Core Enabled", cores);
        info.hex("Thread Count", 2ULL * cores);
        info.hex("Processor Characteristics", 0xFC);
        cache(info, "L1", 64 * cores, 0x180);
        cache(info, "L2", 1024 * cores, 0x281);
        cache(info, "L3", 1408 * cores, 0x282);
        info.hex("Microcode Patch Level", 0x02000000 + below(0x100));
        info.boolean("Hyper-Threading Enabled", true);
    }

    void memory_device(unsigned slot) {
        const bool persistent = slot % memory_channel_size == memory_channel_size - 1;
        const unsigned gib = persistent ? 128 : 8U << below(3);
        const std::string socket = std::to_string(slot / (memory_devices / processors));
        const std::string channel = std::to_string(slot / memory_channel_size);
        const std::string place = std::to_string(slot % memory_channel_size);
        const element component(xml_, "component");
        struct_info("EFI_CT_MEMORY_DEVICE", slot);
        group info(xml_, "memory_info");
        info.hex("Slot Number", slot + 1);
        info.hex("Total Width", 72);
        info.hex("Data Width", 64);
        info.hex("Size in MB", 1024ULL * gib);
        info.hex("Form Factor", 9);
        info.text("Device Locator", "P" + socket + "-DIMM" + channel + place);
        info.text("Bank Locator", "P" + socket + "_Node0_Channel" + channel + "_Dimm" + place);
        info.hex("Memory Type", persistent ? 0x1F : 0x1A);
        info.hex("Type Detail", persistent ? 0x1080 : 0x2080);
        info.hex("Maximum Speed", 2666);
        info.hex("Configured Memory Clock Speed", 2666);
        info.text("Manufacturer", persistent ? "Intel" : "Example");
        info.text("Serial Number", digits("%08llX"));
        info.text("Asset Tag", "");
        info.text("Part Number", "EX93A" + std::to_string(gib) + "K43CB2-CTD");
        info.hex("Attributes", 2);
        info.setting("Manufacturing Date", "date_value", date());
        info.integer("Rank Count", 2);
        if (persistent) {
            persistent_memory(info, slot, std::uint64_t{gib} << 30);
        }
    }

    void persistent_memory(group& info, unsigned slot, std::uint64_t bytes) {
        const std::uint64_t reserved = std::uint64_t{below(256)} << 20;
        info.hex("Capacity", bytes);
        info.hex("Memory Capacity", 0);
        info.hex("App Direct Capacity", bytes - reserved);
        info.hex("Unconfigured Capacity", 0);
        info.hex("Inaccessible Capacity", reserved);
        info.integer("Reserved Capacity", 0);
        info.integer("Classification", 1);
        info.text("Firmware Version", "01.02.00." + std::to_string(5000 + below(1000)));
        info.text("SoftwareID", digits("%08llX"));
        info.integer("CPUIndex", slot / (memory_devices / processors));
        info.integer("iMCNum", slot / memory_channel_size % 2);
        info.integer("ChannelNum", slot / memory_channel_size);
        info.integer("DimmNum", slot % memory_channel_size);
    }

    // A host bridge with three functions of the chipset on its bus, and behind three root ports a network card of two
    // functions, an NVM Express drive, and a switch with a graphics card behind each of its two ports.
    void pci_tree(unsigned tree) {
        const unsigned bus = next_bus_++;
        const element host(xml_, "component");
        bridge("EFI_CT_PCI_ROOT", bus, 0, 8, host_bridge_class);
        const element host_slots(xml_, "child_slot_group");
        for (unsigned function = 0; function < 3; ++function) {
            chipset_function(bus, 16 + tree, function);
        }
        {
            const element port(xml_, "component");
            const unsigned below_port = bridge("EFI_CT_PCI_BRIDGE", bus, 1, 1, pci_bridge_class);
            const element slots(xml_, "child_slot_group");
            card("Network Adapter", network_class, below_port, 2);
        }
        {
            const element port(xml_, "component");
            const unsigned below_port = bridge("EFI_CT_PCI_BRIDGE", bus, 2, 1, pci_bridge_class);
            const element slots(xml_, "child_slot_group");
            card("NVMe Drive", nvm_express_class, below_port, 1);
        }
        const element port(xml_, "component");
        const unsigned below_port = bridge("EFI_CT_PCI_BRIDGE", bus, 3, 4, pci_bridge_class);
        const element slots(xml_, "child_slot_group");
        pci_switch(below_port);
    }

    void pci_switch(unsigned bus) {
        const element upstream(xml_, "component");
        const unsigned inner = bridge("EFI_CT_PCI_BRIDGE", bus, 0, 3, pci_bridge_class);
        const element inner_slots(xml_, "child_slot_group");
        for (unsigned device = 0; device < 2; ++device) {
            const element downstream(xml_, "component");
            const unsigned below_port = bridge("EFI_CT_PCI_BRIDGE", inner, device, 1, pci_bridge_class);
            const element slots(xml_, "child_slot_group");
            card("Graphics", display_class, below_port, 1);
        }
    }

    // Describes the component that is open as a bridge and returns the number of the bus behind it.
    unsigned bridge(const char* type, unsigned bus, unsigned device, unsigned buses_behind, unsigned class_code) {
        const bool is_host = class_code == host_bridge_class;
        const unsigned secondary = is_host ? bus : next_bus_++;
        struct_info(type);
        group info(xml_, "pci_bridge_info");
        info.hex("Vendor ID", 0x8086);
        info.hex("Device ID", 0x2000 + below(0x1000));
        info.hex("Revision ID", below(16));
        info.hex("Class Code", class_code);
        info.hex("Segment Number", 0);
        info.hex("Bus Number", bus);
        info.hex("Device Number", device);
        info.hex("Function Number", 0);
        info.hex("Primary Bus Number", bus);
        info.hex("Secondary Bus Number", secondary);
        info.hex("Subordinate Bus Number", secondary + buses_behind - 1);
        info.boolean("Slot Implemented", !is_host);
        return secondary;
    }

    void identity(group& info, unsigned class_code, unsigned bus, unsigned device, unsigned function) {
        info.hex("Vendor ID", 0x8086);
        info.hex("Device ID", 0x2000 + below(0x1000));
        info.hex("Revision ID", below(16));
        info.hex("Class Code", class_code);
        info.hex("Subsystem Vendor ID", 0x1028);
        info.hex("Subsystem ID", below(0x1000));
        info.hex("Segment Number", 0);
        info.hex("Bus Number", bus);
        info.hex("Device Number", device);
        info.hex("Function Number", function);
    }

    // Chipset functions have no location, so that the inventory passes them over.
    void chipset_function(unsigned bus, unsigned device, unsigned function) {
        const element component(xml_, "component");
        struct_info("EFI_CT_PCI_DEVICE");
        group info(xml_, "pci_device_info");
        identity(info, system_peripheral_class, bus, device, function);
        info.text("Slot Designation", "Embedded");
        info.boolean("Option ROM Present", false);
        info.integer("Interrupt Pin", below(5));
        info.setting("UEFI Driver Handle", "guid_value", guid());
    }

    void card(const std::string& kind, unsigned class_code, unsigned bus, unsigned functions) {
        const unsigned slot = next_slot_++;
        for (unsigned function = 0; function < functions; ++function) {
            const element component(xml_, "component");
            struct_info("EFI_CT_PCI_DEVICE");
            group info(xml_, "pci_device_info");
            identity(info, class_code, bus, 0, function);
            slot_settings(info, kind, slot);
        }
    }

    void slot_settings(group& info, const std::string& kind, unsigned slot) {
        info.hex("Slot Number", slot);
        info.hex("Location", 1);
        info.text("Slot Designation", "PCIe Slot " + std::to_string(slot) + " " + kind);
        info.hex("Slot Type", 0xB6);
        info.hex("Slot Data Bus Width", 0xB);
        info.boolean("Hotplug", false);
        info.integer("PCI Type", 1);
        info.integer("Blade Slot Port", 1 + below(4));
        info.hex("Negotiated Link Width", 8);
        info.hex("Maximum Link Width", 16);
        info.hex("Max Link Speed", 4);
        info.hex("Current Link Speed", 3 + below(2));
        info.boolean("Option ROM Present", true);
        info.integer("Interrupt Pin", below(5));
    }

    xml_writer xml_;
    std::mt19937 random_;
    unsigned next_bus_ = 0;
    unsigned next_slot_ = 0;
};

}  // namespace

void generate_cds(std::ostream& out, unsigned servers, std::uint32_t seed, white_space between) {
    out << R"(<?xml version="1.0" encoding="UTF-8"?>)";
    generator(out, seed, between).enclosure(servers);
    out << '\n';
}
