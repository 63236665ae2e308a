// SPDX-License-Identifier: Apache-2.0

// GoogleTest's main(), which besides fails when there was no test to run, and has a line for each test that could not
// run here: scripts/test collects them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

namespace {

class not_run_lines : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo& test) override {
        if (test.result()->Skipped()) {
            std::cout << "not run: " << test.test_suite_name() << '.' << test.name() << ": "
                      << test.result()->GetTestPartResult(0).message() << '\n';
        }
    }
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    const testing::UnitTest& tests = *testing::UnitTest::GetInstance();
    testing::UnitTest::GetInstance()->listeners().Append(new not_run_lines);  // NOLINT(cppcoreguidelines-owning-memory)
    const int result = RUN_ALL_TESTS();
    if (tests.test_to_run_count() == 0 && !GTEST_FLAG_GET(list_tests)) {
        std::cerr << "no test was to run\n";
        return 1;
    }
    return result;
}
