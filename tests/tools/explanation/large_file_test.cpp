#include <gmock/gmock.h>

#include <chrono>

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

// The limit leaves room for slow machines and stops what grows faster than the file.
class LargeFile : public explanation_test {
protected:
    void expect_explained_in_time(const std::string& file, const std::string& sum) const {
        const auto start = std::chrono::steady_clock::now();
        const std::string shown = explain(file);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
        EXPECT_THAT(shown.substr(shown.rfind("\n\n")), HasSubstr(sum));
    }
};

TEST_F(LargeFile, TakesSensibleTime) {
    expect_explained_in_time(cds_file(repeated(10'000, module("A1", "S1")) + repeated(5'000, cds_component(""))),
                             "10000 components to record: 10000 rows");
}

TEST_F(LargeFile, OfIncompleteFunctionsTakesSensibleTime) {
    expect_explained_in_time(cds_file(repeated(5'000, cds_component("pci_device_info", {integer("Location", "1")}))),
                             "5000 components to record: 0 rows");
}

TEST_F(LargeFile, IsNotRepeatedInTheExplanation) {
    const std::string name(1'000'000, 'x');
    const std::string shown = explain(
        cds_file(cds_component("cpu_info", {text("Socket Designation", name)}, repeated(1'000, processor("CPU 2")))));
    EXPECT_LT(shown.size(), 1'000'000u);
}
