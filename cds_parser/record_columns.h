// SPDX-License-Identifier: Apache-2.0

/// The kinds of record and what their rows hold: the columns, in the order in which they are put, and the setting that
/// each takes its value from. Columns that are worked out from several settings stand in their writer.
#ifndef CDS_PARSER_RECORD_COLUMNS_H
#define CDS_PARSER_RECORD_COLUMNS_H

#include <cstdint>

namespace cds_parser {

/// A kind of record.
struct record_kind {
    const char* group;            ///< the setting group that makes a component one of the kind
    const char* table;            ///< where its rows are
    const char* deletion_failed;  ///< what is logged when they cannot be deleted, a format of the code
};

inline constexpr record_kind processor_record = {"cpu_info", "Processor",
                                                 "CDS PARSER: failed to delete Processors, rc=%d"};
inline constexpr record_kind memory_record = {"memory_info", "Memory",
                                              "CDS PARSER: failed to delete Memory Devices, rc=%d"};
inline constexpr record_kind bridge_record = {"pci_bridge_info", "PCIBridge",
                                              "CDS PARSER: failed to delete PCI Bridges, rc=%d"};
inline constexpr record_kind device_record = {"pci_device_info", "PCIs",
                                              "CDS PARSER: failed to delete PCI devices, rc=%d"};

/// All of them, in the order in which their tables are emptied before a load.
inline constexpr const record_kind* record_kinds[] = {&processor_record, &memory_record, &bridge_record,
                                                      &device_record};

enum class column_type {
    text,    ///< the value text as it was read
    uint,    ///< the value's low 32 bits
    uint64,  ///< the whole value
};

/// A column that is not put when its setting is absent.
struct column {
    const char* setting;
    const char* name;
    column_type type;
};

/// A column with a signed 32-bit number by which the writer of the record decides as well, in that member of `Record`.
template <class Record>
struct number_column {
    using number = std::int32_t Record::*;

    const char* setting;
    const char* name;
    number member;
    std::int32_t default_value;  ///< when the setting is absent or not numeric
};

inline constexpr column processor_columns[] = {
    {"Socket Designation", "Socket", column_type::text},
    {"Processor Type", "ProcType", column_type::uint},
    {"Processor Family", "Family", column_type::uint},
    {"Processor Manufacturer", "Manufacturer", column_type::text},
    {"Processor ID", "ProcId", column_type::uint64},
    {"Processor Version", "Version", column_type::text},
    {"Voltage", "Voltage", column_type::uint},
    {"External Clock", "ExtClock", column_type::uint},
    {"Max Speed", "MaxSpeed", column_type::uint},
    {"Current Speed", "CurSpeed", column_type::uint},
    {"Status", "Status", column_type::uint},
    {"Processor Upgrade", "Upgrade", column_type::uint},
    {"Serial Number", "SerialNo", column_type::text},
    {"Asset Tag", "AssetTag", column_type::text},
    {"Part Number", "PartNo", column_type::text},
    {"Core Count", "CoreCount", column_type::uint},
    {"Core Enabled", "CoreEnabled", column_type::uint},
    {"Thread Count", "ThreadCount", column_type::uint},
    {"Processor Characteristics", "Characteristics", column_type::uint},
    {"L1 Cache Maximum Size", "L1CacheMaxSize", column_type::uint},
    {"L1 Cache Installed Size", "L1CacheInstalled", column_type::uint},
    {"L1 Cache Type", "L1CacheType", column_type::uint},
    {"L1 Cache Configuration", "L1CacheConfig", column_type::uint},
    {"L2 Cache Maximum Size", "L2CacheMaxSize", column_type::uint},
    {"L2 Cache Installed Size", "L2CacheInstalled", column_type::uint},
    {"L2 Cache Type", "L2CacheType", column_type::uint},
    {"L2 Cache Configuration", "L2CacheConfig", column_type::uint},
    {"L3 Cache Maximum Size", "L3CacheMaxSize", column_type::uint},
    {"L3 Cache Installed Size", "L3CacheInstalled", column_type::uint},
    {"L3 Cache Type", "L3CacheType", column_type::uint},
    {"L3 Cache Configuration", "L3CacheConfig", column_type::uint},
};

inline constexpr column memory_columns[] = {
    {"Slot Number", "SlotNo", column_type::uint},
    {"Total Width", "TotalWidth", column_type::uint},
    {"Data Width", "DataWidth", column_type::uint},
    {"Size in MB", "MemSize", column_type::uint},
    {"Form Factor", "FormFactor", column_type::uint},
    {"Device Locator", "DevLocator", column_type::text},
    {"Bank Locator", "BankLocator", column_type::text},
    {"Memory Type", "MemType", column_type::uint},
    {"Type Detail", "TypeDetail", column_type::uint},
    {"Maximum Speed", "MaxSpeed", column_type::uint},
    {"Configured Memory Clock Speed", "ClockSpeed", column_type::uint},
    {"Manufacturer", "Manufacturer", column_type::text},
    {"Serial Number", "SerialNo", column_type::text},
    {"Asset Tag", "AssetTag", column_type::text},
    {"Part Number", "PartNo", column_type::text},
    {"Attributes", "Attributes", column_type::uint},
};

/// Taken from persistent modules only.
inline constexpr column persistent_memory_columns[] = {
    {"Capacity", "Capacity", column_type::uint64},
    {"Memory Capacity", "MemCapacity", column_type::uint64},
    {"App Direct Capacity", "AppDirCap", column_type::uint64},
    {"Unconfigured Capacity", "UnconfigCap", column_type::uint64},
    {"Inaccessible Capacity", "InaccCap", column_type::uint64},
    {"Reserved Capacity", "ReservedCap", column_type::uint64},
    {"Classification", "Classification", column_type::uint},
    {"Firmware Version", "FirmwareVersion", column_type::text},
    {"SoftwareID", "SoftwareID", column_type::text},
    {"CPUIndex", "CPUIndex", column_type::uint},
    {"iMCNum", "iMCNum", column_type::uint},
    {"ChannelNum", "ChannelNum", column_type::uint},
    {"DimmNum", "DimmNum", column_type::uint},
};

/// Where a PCI bridge is.
struct pci_address {
    std::int32_t segment;
    std::int32_t bus;
    std::int32_t device;
    std::int32_t function;
};

inline constexpr number_column<pci_address> bridge_address_columns[] = {
    {"Segment Number", "SegNo", &pci_address::segment, 0},
    {"Bus Number", "BusNo", &pci_address::bus, -1},
    {"Device Number", "DevNo", &pci_address::device, -1},
    {"Function Number", "FunNo", &pci_address::function, -1},
};

inline constexpr column bridge_columns[] = {
    {"Vendor ID", "VendorId", column_type::uint},
    {"Device ID", "DevId", column_type::uint},
    {"Revision ID", "RevId", column_type::uint},
    {"Class Code", "ClsCode", column_type::uint},
    {"Primary Bus Number", "PriBusNo", column_type::uint},
    {"Secondary Bus Number", "SndBusNo", column_type::uint},
    {"Subordinate Bus Number", "SubBusNo", column_type::uint},
};

inline constexpr std::int32_t on_board_location = 0;
inline constexpr std::int32_t unknown_location = 2;

/// The values of a PCI function that decide about its row.
struct pci_function {
    std::int32_t segment;
    std::int32_t bus;
    std::int32_t device_number;
    std::int32_t function_number;
    std::int32_t slot;
    std::int32_t location;
    std::int32_t vendor;
    std::int32_t class_code;
    std::int32_t device;
    std::int32_t subsystem_vendor;
    std::int32_t subsystem;
    bool has_subsystem;
};

inline constexpr number_column<pci_function> device_place_columns[] = {
    {"Segment Number", "SegNo", &pci_function::segment, 0},
    {"Bus Number", "BusNo", &pci_function::bus, -1},
    {"Device Number", "DeviceNo", &pci_function::device_number, -1},
    {"Function Number", "FunctionNo", &pci_function::function_number, -1},
    {"Slot Number", "SlotNo", &pci_function::slot, -1},
    {"Location", "Location", &pci_function::location, unknown_location},
};

/// Put unless negative.
inline constexpr number_column<pci_function> device_kind_columns[] = {
    {"Vendor ID", "VendorId", &pci_function::vendor, -1},
    {"Class Code", "ClsCode", &pci_function::class_code, -1},
};

inline constexpr column device_columns[] = {
    {"Device ID", "DeviceId", column_type::uint},
    {"Revision ID", "RevId", column_type::uint},
    {"Subsystem Vendor ID", "SubVendorId", column_type::uint},
    {"Subsystem ID", "SubDeviceId", column_type::uint},
    {"Slot Designation", "SlotDesignation", column_type::text},
    {"Slot Type", "SlotType", column_type::uint},
    {"Slot Data Bus Width", "SlotDataBusWidth", column_type::uint},
    {"Hotplug", "Hotplug", column_type::uint},
    {"PCI Type", "PCIType", column_type::uint},
    {"Blade Slot Port", "BladeSlotPort", column_type::uint},
    {"Negotiated Link Width", "LanesInUse", column_type::uint},
    {"Maximum Link Width", "MaxLanes", column_type::uint},
    {"Max Link Speed", "MaxPCIeType", column_type::uint},
    {"Current Link Speed", "PCIeType", column_type::uint},
};

}  // namespace cds_parser

#endif
