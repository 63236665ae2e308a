// SPDX-License-Identifier: Apache-2.0

// How the "PCIs" writer classifies functions: "FunType" and "HardwareTypeId" by vendor, device and class code.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zebdb_cds_parser.h>

#include <iomanip>
#include <memory>
#include <sstream>

#include "support/recording_platform.h"
#include "support/tree_builder.h"

namespace {

std::string hexadecimal(std::uint32_t value, int digits) {
    std::ostringstream text;
    text << std::hex << std::uppercase << std::setfill('0') << std::setw(digits) << value;
    return text.str();
}

struct pci_ids {
    std::uint32_t vendor;
    std::uint32_t device;
};

constexpr pci_ids ordinary = {0x15B3, 0x1017};

class classifier {
public:
    classifier() { parser_.init(); }

    // The row of a function with these ids and this class code. Each column is written as "uint:7".
    recorded_row row(std::uint32_t class_code, pci_ids ids = ordinary) {
        const std::unique_ptr<cds_parser::component> device(make_component(
            "pci_device_info",
            {hex("Vendor ID", hexadecimal(ids.vendor, 4)), hex("Device ID", hexadecimal(ids.device, 4)),
             hex("Class Code", hexadecimal(class_code, 6)), integer("Location", "1"), integer("Bus Number", "1"),
             integer("Device Number", "2"), integer("Function Number", "3")}));
        platform_.calls.clear();
        platform_.log.clear();
        platform_.rows.clear();
        EXPECT_EQ(parser_.parse_pci_device(platform_.handle(), device.get()), 1);
        return platform_.rows.at(0);
    }

    std::string function_type(std::uint32_t class_code, pci_ids ids = ordinary) {
        return row(class_code, ids)["FunType"];
    }

    std::string hardware_type(std::uint32_t class_code, pci_ids ids = ordinary) {
        return row(class_code, ids)["HardwareTypeId"];
    }

private:
    recording_platform platform_;
    cds_parser::parser parser_;
};

constexpr int any = -1;

struct class_case {
    int base_class;
    int subclass;
    int programming_interface;
    unsigned function_type;
};

constexpr class_case class_table[] = {
    {0x01, 0x00, any, 5},    // SCSI
    {0x01, 0x04, any, 0},    // RAID
    {0x01, 0x06, any, 11},   // SATA
    {0x01, 0x07, any, 6},    // SAS
    {0x01, 0x08, any, 10},   // non-volatile memory
    {0x01, 0x09, any, 13},   // universal flash storage
    {0x01, 0x80, any, 8},    // other mass storage
    {0x02, 0x00, any, 1},    // Ethernet
    {0x02, 0x07, any, 3},    // InfiniBand
    {0x02, 0x08, any, 12},   // host fabric
    {0x02, 0x80, any, 9},    // other network
    {0x03, any, any, 4},     // display
    {0x04, any, any, 23},    // multimedia
    {0x05, any, any, 17},    // memory
    {0x0B, 0x40, any, 15},   // co-processor
    {0x0C, 0x03, 0xFE, 21},  // USB device
    {0x0C, 0x03, any, 20},   // USB
    {0x0C, 0x04, any, 2},    // Fibre Channel
    {0x0C, 0x06, any, 3},    // InfiniBand on the serial bus
    {0x0E, any, any, 18},    // intelligent I/O
    {0x10, any, any, 19},    // encryption
    {0x12, 0x00, any, 16},   // processing accelerator
};

constexpr unsigned catch_all = 7;

// What a case says about a part of the class code: its one value, or all that any may be.
std::vector<std::uint32_t> values_of(int part) {
    if (part != any) {
        return {static_cast<std::uint32_t>(part)};
    }
    return {0x00, 0x01, 0x02, 0x03, 0x40, 0x7F, 0x80, 0xFF};
}

bool is_listed(std::uint32_t base_class, std::uint32_t subclass) {
    for (const class_case& listed : class_table) {
        if (static_cast<std::uint32_t>(listed.base_class) == base_class &&
            (listed.subclass == any || static_cast<std::uint32_t>(listed.subclass) == subclass)) {
            return true;
        }
    }
    return false;
}

// "0C03FE", with "xx" for a part that does not matter.
std::string pattern_of(const class_case& listed) {
    std::string pattern;
    for (const int part : {listed.base_class, listed.subclass, listed.programming_interface}) {
        pattern += part == any ? "xx" : hexadecimal(static_cast<std::uint32_t>(part), 2);
    }
    return pattern;
}

std::ostream& operator<<(std::ostream& out, const class_case& listed) {
    return out << listed.function_type;
}

class FunctionTypeOfClass : public testing::TestWithParam<class_case> {};

}  // namespace

TEST_P(FunctionTypeOfClass, IsTheOneListed) {
    classifier pci;
    for (const std::uint32_t subclass : values_of(GetParam().subclass)) {
        for (const std::uint32_t programming_interface : values_of(GetParam().programming_interface)) {
            const std::uint32_t class_code =
                static_cast<std::uint32_t>(GetParam().base_class) << 16 | subclass << 8 | programming_interface;
            EXPECT_EQ(pci.function_type(class_code), "uint:" + std::to_string(GetParam().function_type))
                << hexadecimal(class_code, 6);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Every, FunctionTypeOfClass, testing::ValuesIn(class_table),
                         [](const auto& instance) { return pattern_of(instance.param); });

TEST(FunctionType, OfEveryPairNotListedIsTheCatchAll) {
    classifier pci;
    int not_listed = 0;
    for (std::uint32_t base_class = 0x00; base_class <= 0x14; ++base_class) {
        for (std::uint32_t subclass = 0x00; subclass <= 0xFF; ++subclass) {
            if (is_listed(base_class, subclass)) {
                continue;
            }
            ++not_listed;
            const std::uint32_t class_code = base_class << 16 | subclass << 8;
            EXPECT_EQ(pci.function_type(class_code), "uint:" + std::to_string(catch_all)) << hexadecimal(class_code, 6);
        }
    }
    EXPECT_EQ(not_listed, 0x15 * 0x100 - 5 * 0x100 - 16);
}

TEST(FunctionType, GoesByTheDeviceInterfaceForUsbAlone) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x0C04FE), "uint:2");
    EXPECT_EQ(pci.function_type(0x0C05FE), "uint:7");
    EXPECT_EQ(pci.function_type(0x0C06FE), "uint:3");
}

TEST(FunctionType, OfAnUnassignedClassIsTheCatchAll) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0xFF0000), "uint:7");
    EXPECT_EQ(pci.function_type(0x810600), "uint:7");
}

TEST(FunctionType, LooksAtNoBitsAboveTheClassCode) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x7F020000), "uint:1");
}

TEST(FunctionType, OfTheStorageMakersSystemPeripheralIsManagement) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x088000, {0x1000, 0x0097}), "uint:14");
    EXPECT_EQ(pci.function_type(0x088000, {0x1000, 0xB2}), "uint:14");
}

TEST(FunctionType, OfTheStorageMakersSwitchWithASasClassIsManagement) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x010700, {0x1000, 0xB2}), "uint:14");
}

TEST(FunctionType, OfTheStorageMakersSwitchWithAnotherClassGoesByItsClass) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x010701, {0x1000, 0xB2}), "uint:6");
    EXPECT_EQ(pci.function_type(0x010400, {0x1000, 0xB2}), "uint:0");
}

TEST(FunctionType, OfTheStorageMakersOtherSasControllersGoesByTheirClass) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x010700, {0x1000, 0x0097}), "uint:6");
}

TEST(FunctionType, OfTheStorageMakersOtherPeripheralsIsTheCatchAll) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x088001, {0x1000, 0x0097}), "uint:7");
}

TEST(FunctionType, OfAnotherMakersPeripheralAndSasControllerGoesByTheirClass) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x088000, {0x1001, 0xB2}), "uint:7");
    EXPECT_EQ(pci.function_type(0x010700, {0x1001, 0xB2}), "uint:6");
}

TEST(FunctionType, OfTheManagedSwitchesMemoryControllersIsManagement) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x058000, {0x11F8, 0x5000}), "uint:14");
    EXPECT_EQ(pci.function_type(0x058000, {0x11F8, 0x5052}), "uint:14");
    EXPECT_EQ(pci.function_type(0x058000, {0x11F8, 0x5084}), "uint:14");
}

TEST(FunctionType, OfTheSwitchMakersOtherMemoryControllersIsMemory) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x058000, {0x11F8, 0x5001}), "uint:17");
}

TEST(FunctionType, OfTheManagedSwitchesWithAnotherClassGoesByTheirClass) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x050000, {0x11F8, 0x5000}), "uint:17");
    EXPECT_EQ(pci.function_type(0x020000, {0x11F8, 0x5000}), "uint:1");
}

TEST(FunctionType, OfAnotherMakersMemoryControllerWithASwitchsDeviceIdIsMemory) {
    classifier pci;
    EXPECT_EQ(pci.function_type(0x058000, {0x11F9, 0x5000}), "uint:17");
}

TEST(HardwareType, OfWhatIsNoMassStorageIs3WhoeverMadeIt) {
    classifier pci;
    for (const std::uint32_t base_class : {0x00u, 0x02u, 0x08u, 0x12u, 0xFFu}) {
        for (const std::uint32_t vendor : {0x1000u, 0x9005u, 0x8086u}) {
            EXPECT_EQ(pci.hardware_type(base_class << 16, {vendor, 0x0097}), "uint:3") << base_class << ' ' << vendor;
        }
    }
}

TEST(HardwareType, OfTheStorageMakersMassStorageIs0) {
    classifier pci;
    EXPECT_EQ(pci.hardware_type(0x010700, {0x1000, 0x0097}), "uint:0");
    EXPECT_EQ(pci.hardware_type(0x01FF00, {0x1000, 0x0097}), "uint:0");
}

TEST(HardwareType, OfTheStorageMakersSwitchIs3) {
    classifier pci;
    EXPECT_EQ(pci.hardware_type(0x010700, {0x1000, 0xB2}), "uint:3");
}

TEST(HardwareType, OfTheRaidMakersMassStorageIs0) {
    classifier pci;
    EXPECT_EQ(pci.hardware_type(0x010700, {0x9005, 0x28F}), "uint:0");
    EXPECT_EQ(pci.hardware_type(0x010700, {0x9005, 0xB2}), "uint:0");
}

TEST(HardwareType, OfOtherMakersMassStorageIs3) {
    classifier pci;
    EXPECT_EQ(pci.hardware_type(0x010700, {0x8086, 0x0097}), "uint:3");
}
