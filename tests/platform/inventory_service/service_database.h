/// The database of the inventory service in a test.
#ifndef TESTS_PLATFORM_INVENTORY_SERVICE_SERVICE_DATABASE_H
#define TESTS_PLATFORM_INVENTORY_SERVICE_SERVICE_DATABASE_H

constexpr const char* named_database = "/tmp/named.db";
constexpr const char* inventory_tables[] = {"Processor", "Memory", "PCIBridge", "PCIs", "PCIAdapter"};

#endif
