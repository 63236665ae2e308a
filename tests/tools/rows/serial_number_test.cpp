// SPDX-License-Identifier: Apache-2.0

#include "rows/serial_number.h"

#include <gtest/gtest.h>

class Placeholder : public testing::TestWithParam<const char*> {};

TEST_P(Placeholder, IsNoSerialNumber) {
    EXPECT_EQ(real_serial_number(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Of, Placeholder,
                         testing::Values("", " ", "...", "0", "00000000", "0x00000000", "0xFFFFFFFF", "XXXXXXXX",
                                         "----", "00-00-00-00", "Not Specified", "NOT SPECIFIED", "NO DIMM", "NoDimm",
                                         "Unknown", "[Unknown]", "N/A", "To Be Filled By O.E.M.", "To be filled by OEM",
                                         "Default string", "None", "NULL", "Empty", "Not Available", "0123456789",
                                         "<OUT OF SPEC>", "123456789", "1234567890", "12345678", "DIMM missing",
                                         "Fill by OEM", "Invalid", "Module Missing", "No", "No Asset", "No CPU",
                                         "No Module", "No Serial", "No Serial Number", "Not Applicable",
                                         "Not Installed", "Not Present", "Not Provided", "Not Set", "Serial Number",
                                         "System Serial Number", "Undefined", "Unspecified", "{None}~"));

class SerialNumber : public testing::TestWithParam<const char*> {};

TEST_P(SerialNumber, IsTaken) {
    EXPECT_EQ(real_serial_number(GetParam()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Of, SerialNumber,
                         testing::Values("S1", "01", "00000001", "0Z", "0z", "0x10000000", "None1", "12345679",
                                         "\u00e9"));

TEST(SerialNumber, IsTakenWithoutTheBlanksAroundIt) {
    EXPECT_EQ(real_serial_number(" \tS 1\n\r"), "S 1");
}
