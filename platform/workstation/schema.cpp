// SPDX-License-Identifier: Apache-2.0

#include "schema.h"

#include <iterator>

namespace {

constexpr const char* steps[] = {
    // Databases had these tables, or some of them, before their versions were counted.
    R"sql(
CREATE TABLE IF NOT EXISTS Processor (
    Id INTEGER PRIMARY KEY,
    NodeIndex INTEGER, Socket TEXT, ProcType INTEGER, Family INTEGER, Manufacturer TEXT, ProcId INTEGER, Version TEXT,
    Voltage INTEGER, ExtClock INTEGER, MaxSpeed INTEGER, CurSpeed INTEGER, Status INTEGER, Upgrade INTEGER,
    SerialNo TEXT, AssetTag TEXT, PartNo TEXT, CoreCount INTEGER, CoreEnabled INTEGER, ThreadCount INTEGER,
    Characteristics INTEGER,
    L1CacheMaxSize INTEGER, L1CacheInstalled INTEGER, L1CacheType INTEGER, L1CacheConfig INTEGER,
    L2CacheMaxSize INTEGER, L2CacheInstalled INTEGER, L2CacheType INTEGER, L2CacheConfig INTEGER,
    L3CacheMaxSize INTEGER, L3CacheInstalled INTEGER, L3CacheType INTEGER, L3CacheConfig INTEGER
);
CREATE TABLE IF NOT EXISTS Memory (
    Id INTEGER PRIMARY KEY,
    ArrayId INTEGER, NodeIndex INTEGER, SlotNo INTEGER, TotalWidth INTEGER, DataWidth INTEGER, MemSize INTEGER,
    FormFactor INTEGER, DevLocator TEXT, BankLocator TEXT, MemType INTEGER, TypeDetail INTEGER, MaxSpeed INTEGER,
    ClockSpeed INTEGER, Manufacturer TEXT, SerialNo TEXT, AssetTag TEXT, PartNo TEXT, Attributes INTEGER,
    Capacity INTEGER, MemCapacity INTEGER, AppDirCap INTEGER, UnconfigCap INTEGER, InaccCap INTEGER,
    ReservedCap INTEGER, Classification INTEGER, FirmwareVersion TEXT, SoftwareID TEXT, CPUIndex INTEGER,
    iMCNum INTEGER, ChannelNum INTEGER, DimmNum INTEGER
);
CREATE TABLE IF NOT EXISTS PCIBridge (
    Id INTEGER PRIMARY KEY,
    ParentId INTEGER, NodeIndex INTEGER, SegNo INTEGER, BusNo INTEGER, DevNo INTEGER, FunNo INTEGER, VendorId INTEGER,
    DevId INTEGER, RevId INTEGER, ClsCode INTEGER, PriBusNo INTEGER, SndBusNo INTEGER, SubBusNo INTEGER
);
CREATE TABLE IF NOT EXISTS PCIs (
    Id INTEGER PRIMARY KEY,
    BridgeId INTEGER, NodeIndex INTEGER, DevKey INTEGER, FunKey INTEGER, SegNo INTEGER, BusNo INTEGER,
    DeviceNo INTEGER, FunctionNo INTEGER, SlotNo INTEGER, Location INTEGER, VendorId INTEGER, ClsCode INTEGER,
    DeviceId INTEGER, RevId INTEGER, SubVendorId INTEGER, SubDeviceId INTEGER, SlotDesignation TEXT, SlotType INTEGER,
    SlotDataBusWidth INTEGER, Hotplug INTEGER, PCIType INTEGER, BladeSlotPort INTEGER, LanesInUse INTEGER,
    MaxLanes INTEGER, MaxPCIeType INTEGER, PCIeType INTEGER, HardwareId INTEGER, HardwareTypeId INTEGER,
    FunType INTEGER
);
CREATE TABLE IF NOT EXISTS PCIAdapter (
    Id INTEGER PRIMARY KEY,
    DevKey INTEGER, PCIFuncKey INTEGER, AimArgument INTEGER
);
CREATE TABLE IF NOT EXISTS InventorySequence (
    Kind INTEGER PRIMARY KEY,
    Sequence INTEGER NOT NULL
);
CREATE TABLE IF NOT EXISTS PendingFirmware (
    Id INTEGER PRIMARY KEY,
    Component TEXT NOT NULL, Version TEXT NOT NULL
);
)sql",
    // What the rows were loaded from, where the one who loaded them notes it.
    R"sql(
CREATE TABLE IF NOT EXISTS Source (
    Id INTEGER PRIMARY KEY,
    Name TEXT NOT NULL, Bytes INTEGER NOT NULL, Sha256 TEXT NOT NULL, LoadedAt INTEGER NOT NULL
);
)sql",
};

}  // namespace

const database_schema inventory_schema = {steps, static_cast<int>(std::size(steps))};
