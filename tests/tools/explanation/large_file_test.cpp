// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include <ctime>

#include "tools/explanation/explanation_test.h"

using testing::HasSubstr;

namespace {

std::string repeated(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

}  // namespace

// Measured in time of processors and against a smaller file, so that it says the same of slow and of busy machines.
class LargeFile : public explanation_test {
protected:
    double seconds_for(const std::string& file, const std::string& sum) const {
        const std::clock_t start = std::clock();
        const std::string shown = explain(file);
        const std::clock_t end = std::clock();
        EXPECT_THAT(shown.substr(shown.rfind("\n\n")), HasSubstr(sum));
        return static_cast<double>(end - start) / CLOCKS_PER_SEC;
    }

    // A file of four times the size takes four times as long; sixteen times if all of it were searched for each
    // component.
    static void expect_proportion(double quarter, double whole) {
        EXPECT_GT(whole, quarter);
        EXPECT_LT(whole, 8 * quarter);
    }
};

TEST_F(LargeFile, TakesTimeInProportionToItsSize) {
    const auto seconds = [this](int count) {
        return seconds_for(cds_file(repeated(count, module("A1", "S1")) + repeated(count / 2, cds_component(""))),
                           std::to_string(count) + " components to record: " + std::to_string(count) + " rows");
    };
    expect_proportion(seconds(750), seconds(3'000));
}

TEST_F(LargeFile, OfIncompleteFunctionsTakesTimeInProportionToItsSize) {
    const std::string function = cds_component("pci_device_info", {integer("Location", "1")});
    const auto seconds = [this, &function](int count) {
        return seconds_for(cds_file(repeated(count, function)),
                           std::to_string(count) + " components to record: 0 rows");
    };
    expect_proportion(seconds(500), seconds(2'000));
}

TEST_F(LargeFile, IsNotRepeatedInTheExplanation) {
    const std::string name(1'000'000, 'x');
    const std::string shown = explain(
        cds_file(cds_component("cpu_info", {text("Socket Designation", name)}, repeated(1'000, processor("CPU 2")))));
    EXPECT_LT(shown.size(), 1'000'000u);
}
