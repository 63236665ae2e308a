// SPDX-License-Identifier: Apache-2.0

#include "pci_function_type.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "pci_class.h"
#include "pci_device_ids.h"

namespace cds_parser {
namespace {

constexpr std::uint32_t management_function = 14;
constexpr std::uint32_t memory_function = 17;
constexpr std::uint32_t other_function = 7;

constexpr std::uint32_t storage_hardware = 0;
constexpr std::uint32_t other_hardware = 3;

constexpr std::int32_t any = -1;

struct class_rule {
    std::int32_t base_class;
    std::int32_t subclass;
    std::int32_t programming_interface;
    std::uint32_t function_type;
};

// The first rule that fits applies.
constexpr class_rule class_rules[] = {
    {pci_class::mass_storage, 0x00, any, 5},  {pci_class::mass_storage, 0x04, any, 0},
    {pci_class::mass_storage, 0x06, any, 11}, {pci_class::mass_storage, 0x07, any, 6},
    {pci_class::mass_storage, 0x08, any, 10}, {pci_class::mass_storage, 0x09, any, 13},
    {pci_class::mass_storage, 0x80, any, 8},  {pci_class::network, 0x00, any, 1},
    {pci_class::network, 0x07, any, 3},       {pci_class::network, 0x08, any, 12},
    {pci_class::network, 0x80, any, 9},       {pci_class::display, any, any, 4},
    {pci_class::multimedia, any, any, 23},    {pci_class::memory, any, any, memory_function},
    {pci_class::processor, 0x40, any, 15},    {pci_class::serial_bus, 0x03, 0xFE, 21},
    {pci_class::serial_bus, 0x03, any, 20},   {pci_class::serial_bus, 0x04, any, 2},
    {pci_class::serial_bus, 0x06, any, 3},    {pci_class::intelligent_io, any, any, 18},
    {pci_class::encryption, any, any, 19},    {pci_class::processing_accelerator, 0x00, any, 16},
};

bool fits(std::int32_t wanted, std::int32_t actual) {
    return wanted == any || wanted == actual;
}

std::uint32_t function_type_of_class(std::int32_t class_code) {
    const auto rule = std::find_if(std::begin(class_rules), std::end(class_rules), [class_code](const class_rule& r) {
        return r.base_class == pci_class::base_class(class_code) && fits(r.subclass, pci_class::subclass(class_code)) &&
               fits(r.programming_interface, pci_class::programming_interface(class_code));
    });
    return rule == std::end(class_rules) ? other_function : rule->function_type;
}

bool is_storage_management(std::int32_t vendor, std::int32_t device, std::int32_t class_code) {
    return vendor == pci_ids::storage_vendor &&
           (class_code == pci_class::system_peripheral ||
            (class_code == pci_class::sas_controller && device == pci_ids::storage_switch_device));
}

bool is_managed_switch(std::int32_t device) {
    return std::find(std::begin(pci_ids::switch_devices), std::end(pci_ids::switch_devices), device) !=
           std::end(pci_ids::switch_devices);
}

}  // namespace

std::uint32_t hardware_type(std::int32_t vendor, std::int32_t device, std::int32_t class_code) {
    if (pci_class::base_class(class_code) != pci_class::mass_storage) {
        return other_hardware;
    }
    if (vendor == pci_ids::storage_vendor) {
        return device == pci_ids::storage_switch_device ? other_hardware : storage_hardware;
    }
    return vendor == pci_ids::raid_vendor ? storage_hardware : other_hardware;
}

std::uint32_t function_type(std::int32_t vendor, std::int32_t device, std::int32_t class_code) {
    if (is_storage_management(vendor, device, class_code)) {
        return management_function;
    }
    if (vendor == pci_ids::switch_vendor && class_code == pci_class::memory_controller) {
        return is_managed_switch(device) ? management_function : memory_function;
    }
    return function_type_of_class(class_code);
}

}  // namespace cds_parser
