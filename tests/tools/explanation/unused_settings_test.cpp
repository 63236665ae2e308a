// SPDX-License-Identifier: Apache-2.0

#include "explanation/unused_settings.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>

#include "support/tree_builder.h"
#include "tools/explanation/explanation_test.h"

using testing::ElementsAre;
using testing::IsEmpty;

// Settings that no column takes.
class UnusedSettings : public explanation_test {
protected:
    json unused(const std::string& component) const { return told_of(component)["unused_settings"]; }

    static json unknown(const std::string& group, const std::string& setting, const json& similar = nullptr) {
        return {{"group", group}, {"setting", setting}, {"known", false}, {"similar", similar}};
    }

    static json not_taken(const std::string& group, const std::string& setting) {
        return {{"group", group}, {"setting", setting}, {"known", true}, {"similar", nullptr}};
    }

    // What a setting of that name of a processor with only its socket is taken for.
    json similar_to(const std::string& name, const std::vector<setting>& more = {}) const {
        return unused(processor("CPU 1", joined({text(name, "1")}, more))).at(0)["similar"];
    }
};

TEST_F(UnusedSettings, AreListedByGroupAndName) {
    EXPECT_THAT(
        unused(cds_component(
            cds_group("memory_info", {text("Device Locator", "A1"), text("Zone", "1"), text("Color", "red")}) +
            cds_group("fan_info", {text("Color", "red")}) + cds_group("cpu_info", {text("Shape", "square")}))),
        ElementsAre(unknown("cpu_info", "Shape"), unknown("memory_info", "Color"), unknown("memory_info", "Zone")));
}

TEST_F(UnusedSettings, AreNoneWhereEveryOneIsTaken) {
    EXPECT_THAT(unused(processor("CPU 1", {text("Serial Number", ""), integer("Core Count", "0")})), IsEmpty());
}

TEST_F(UnusedSettings, AreNotLookedForInOtherGroups) {
    EXPECT_THAT(unused(cds_component(cds_group("cpu_info", {text("Socket Designation", "A")}) +
                                     cds_group("fan_info", {text("Serial Nmber", "1")}))),
                IsEmpty());
}

TEST_F(UnusedSettings, AreCountedInAll) {
    EXPECT_EQ(explain_json(cds_file(processor("A", {text("Color", "")}) + module("A", "", {text("Color", "")}) +
                                    cds_component("fan_info", {text("Color", "")})))["summary"]["unused_settings"],
              2);
}

TEST_F(UnusedSettings, AreListedWhereEveryComponentIsToldAbout) {
    const json all = told(processor("CPU 1", {text("Color", "red")}), told_about::everything);
    EXPECT_THAT(all.back()["unused_settings"], ElementsAre(unknown("cpu_info", "Color")));
}

TEST_F(UnusedSettings, AreListedOfAComponentWithoutARow) {
    EXPECT_THAT(unused(cds_component("pci_device_info", {integer("Bus-Number", "1"), integer("Location", "1")})),
                ElementsAre(unknown("pci_device_info", "Bus-Number", "Bus Number")));
}

TEST_F(UnusedSettings, AreListedOfAComponentThatIsNotReached) {
    EXPECT_THAT(told(cds_component("cpu_info", {}, module("A1", "S1", {text("Color", "red")})))[1]["unused_settings"],
                ElementsAre(unknown("memory_info", "Color")));
}

TEST_F(UnusedSettings, AreCapacitiesOfAnOrdinaryModule) {
    const std::vector<setting> capacities = {integer("Capacity", "1"), text("Firmware Version", "2"),
                                             integer("DimmNum", "3")};
    EXPECT_THAT(unused(module("A1", "S1", capacities)),
                ElementsAre(not_taken("memory_info", "Capacity"), not_taken("memory_info", "DimmNum"),
                            not_taken("memory_info", "Firmware Version")));
    EXPECT_THAT(
        unused(module("A1", "S1", joined(capacities, {hex("Type Detail", "1000"), text("Manufacturer", "Intel")}))),
        IsEmpty());
}

TEST_F(UnusedSettings, AreANegativeVendorAndClass) {
    EXPECT_THAT(unused(function("1", {integer("Vendor ID", "-1"), text("Class Code", "1")})),
                ElementsAre(not_taken("pci_device_info", "Class Code"), not_taken("pci_device_info", "Vendor ID")));
    EXPECT_THAT(unused(function("1", {integer("Vendor ID", "0"), integer("Class Code", "0")})), IsEmpty());
}

TEST_F(UnusedSettings, AreThoseOfAGroupThatTheLoaderPassesOver) {
    EXPECT_THAT(unused(cds_component(cds_group("memory_info", {text("Device Locator", "A1")}) +
                                     cds_group("pci_bridge_info", address("1")))),
                ElementsAre(not_taken("memory_info", "Device Locator")));
}

TEST_F(UnusedSettings, AreAllOfAComponentThatIsNotRecorded) {
    const std::unique_ptr<cds_parser::component> told(make_component("cpu_info", {text("Serial Number", "1")}));
    const std::vector<unused_setting> found = unused_settings(*told, nullptr, std::nullopt);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].name, "Serial Number");
    EXPECT_EQ(found[0].why, idleness::other_record);
}

TEST_F(UnusedSettings, AreThoseOfASecondGroupOfTheName) {
    EXPECT_THAT(unused(cds_component(cds_group("cpu_info", {text("Socket Designation", "A")}) +
                                     cds_group("cpu_info", {text("Serial Number", "1"), text("Socket Designation", "B"),
                                                            text("Color", "red")}))),
                ElementsAre(unknown("cpu_info", "Color"), not_taken("cpu_info", "Serial Number"),
                            not_taken("cpu_info", "Socket Designation")));
}

TEST_F(UnusedSettings, AreNotThoseThatARowWouldTake) {
    EXPECT_THAT(unused(cds_component("pci_device_info", {integer("Bus Number", "1"), hex("Vendor ID", "8086")})),
                IsEmpty());
}

TEST_F(UnusedSettings, MayBeMeantInAnotherCase) {
    EXPECT_EQ(similar_to("SERIAL NUMBER"), "Serial Number");
    EXPECT_EQ(similar_to("l3 cache type"), "L3 Cache Type");
    EXPECT_EQ(similar_to("aSSET TAG", {text("Asset Tag", "1")}), "Asset Tag");
    EXPECT_EQ(unused(module("", "", {integer("Size in MB", "1"), integer("SIZE IN MC", "1")}))[0]["similar"],
              "Size in MB");
}

TEST_F(UnusedSettings, MayBeMeantWithOtherSeparators) {
    EXPECT_EQ(similar_to("SerialNumber"), "Serial Number");
    EXPECT_EQ(similar_to("Serial_Number"), "Serial Number");
    EXPECT_EQ(similar_to("Serial-Number"), "Serial Number");
    for (const std::string separator : {" ", "_", "-"}) {
        std::string name = "Serial";
        for (int i = 0; i < 5; ++i) {
            name += separator;
        }
        EXPECT_EQ(similar_to(name + "Number", {text("Serial Number", "1")}), "Serial Number") << name;
    }
}

TEST_F(UnusedSettings, MayBeMeantWithAnotherCharacter) {
    EXPECT_EQ(similar_to("Core Coumt"), "Core Count");
}

TEST_F(UnusedSettings, MayBeMeantWithACharacterMoreOrLess) {
    EXPECT_EQ(similar_to("Serial Nummber"), "Serial Number");
    EXPECT_EQ(similar_to("Serial Nmber"), "Serial Number");
    EXPECT_EQ(similar_to("erial Number"), "Serial Number");
    EXPECT_EQ(similar_to("Serial Numbers"), "Serial Number");
}

// Two changed characters are too many for a name of this length; two swapped ones are one change.
TEST_F(UnusedSettings, MayBeMeantWithSwappedCharacters) {
    const std::vector<setting> voltage = {integer("Voltage", "1")};
    EXPECT_EQ(similar_to("Voltgae", voltage), "Voltage");
    EXPECT_EQ(similar_to("oVltage", voltage), "Voltage");
    EXPECT_EQ(similar_to("Voltaxx", voltage), nullptr);
    EXPECT_EQ(similar_to("Voltxae", voltage), nullptr);
    EXPECT_EQ(similar_to("Voltgxe", voltage), nullptr);
    EXPECT_EQ(similar_to("Vxltgae", voltage), nullptr);
    EXPECT_EQ(similar_to("xVoltge", voltage), nullptr);
    EXPECT_EQ(similar_to("Corx Counx", {integer("Core Count", "1")}), nullptr);
}

TEST_F(UnusedSettings, MayBeMeantLessClearlyWhereTheComponentLacksThem) {
    EXPECT_EQ(similar_to("Voltaxx"), "Voltage");
    EXPECT_EQ(similar_to("Maximum Speed"), "Max Speed");
    EXPECT_EQ(similar_to("Maximum Speed", {integer("Max Speed", "1")}), nullptr);
}

TEST_F(UnusedSettings, AreTakenForTheNearestName) {
    EXPECT_EQ(similar_to("L2 Cache Typ"), "L2 Cache Type");
    EXPECT_EQ(similar_to("L2 Cache Typ", {integer("L2 Cache Type", "1")}), "L2 Cache Type");
    EXPECT_EQ(similar_to("Core Enable"), "Core Enabled");
}

TEST_F(UnusedSettings, AreTakenForANameThatIsMissingAmongEquallyNearOnes) {
    EXPECT_EQ(similar_to("L4 Cache Type"), "L1 Cache Type");
    EXPECT_EQ(similar_to("L4 Cache Type", {integer("L1 Cache Type", "1"), integer("L2 Cache Type", "1")}),
              "L3 Cache Type");
}

TEST_F(UnusedSettings, AreTakenForNamesOfTheirOwnGroupOnly) {
    EXPECT_EQ(similar_to("Device Locatr"), nullptr);
    EXPECT_EQ(unused(module("", "", {text("Bank Locatr", "1")}))[0]["similar"], "Bank Locator");
    EXPECT_EQ(unused(module("", "", {text("Firmware version", "1")}))[0]["similar"], "Firmware Version");
    EXPECT_EQ(unused(bridge("1", {integer("Primary Bus", "1")}))[0]["similar"], nullptr);
    EXPECT_EQ(unused(bridge("1", {integer("Segment", "1"), integer("Primary Bus Nmber", "1")}))[0]["similar"],
              "Primary Bus Number");
    EXPECT_EQ(unused(function("1", {integer("Negotiated LinkWidth", "1")}))[0]["similar"], "Negotiated Link Width");
    EXPECT_EQ(unused(function("1", {integer("VendorID", "1")}))[0]["similar"], "Vendor ID");
    EXPECT_EQ(unused(function("1", {integer("segment number", "1")}))[0]["similar"], "Segment Number");
}

TEST_F(UnusedSettings, AreTakenForNothingWhereNothingIsNear) {
    EXPECT_EQ(similar_to("Color"), nullptr);
    EXPECT_EQ(similar_to("Microcode Revision"), nullptr);
    EXPECT_EQ(similar_to("-"), nullptr);
    EXPECT_EQ(similar_to("\u00e9\u00e8\u00ea"), nullptr);
    EXPECT_EQ(similar_to(std::string(100'000, 'S')), nullptr);
}
