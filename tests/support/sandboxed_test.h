// SPDX-License-Identifier: Apache-2.0

/// The base of tests that work with the library's fixed places: it refuses to run where those are the machine's own,
/// and fails a test that leaves a file, a pipe or a child process behind.
#ifndef TESTS_SUPPORT_SANDBOXED_TEST_H
#define TESTS_SUPPORT_SANDBOXED_TEST_H

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace place {

constexpr const char* pci_keys = "/var/DS/pci_inventory.fkey";
constexpr const char* adapter_keys = "/var/DS/inventory.fkey";
constexpr const char* system_digest = "/var/vonk/sys_inventory.digest";
constexpr const char* pci_digest = "/var/vonk/pci_inventory.digest";
constexpr const char* digest_script = "/bin/pci_digest.sh";
constexpr const char* bmc_address = "/var/log/bmc_bdf.bin";

}  // namespace place

inline bool exists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

inline std::string content_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void write_file(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary);
    file << content << std::flush;
    EXPECT_TRUE(file.good()) << path;
}

/// The words as a key file holds them, in the machine's byte order.
inline std::string words(const std::vector<std::uint32_t>& numbers) {
    std::string bytes(numbers.size() * sizeof(std::uint32_t), '\0');
    std::memcpy(bytes.data(), numbers.data(), bytes.size());
    return bytes;
}

/// As long as it lives, no file of this process and its children grows beyond a number of bytes: what is written behind
/// them fails as on a full disk.
class file_size_limit {
public:
    explicit file_size_limit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit = {bytes, before_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~file_size_limit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    file_size_limit(const file_size_limit&) = delete;
    file_size_limit& operator=(const file_size_limit&) = delete;

private:
    void (*handler_)(int);
    rlimit before_ = {};
};

class sandboxed_test : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(std::getenv("ZEBDB_SANDBOX"), nullptr) << "run this through ctest or tests/support/in-sandbox";
        open_files_ = open_files();
    }

    void TearDown() override {
        EXPECT_EQ(open_files(), open_files_) << "a file was left open";
        EXPECT_TRUE(waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD) << "a child process was left behind";
    }

    // What can be wrong with the place of a file.

    /// The file can be read but not written. Root is held to that too, see tests/support/in-sandbox.
    static void make_read_only(const std::string& path, const std::string& content) {
        write_file(path, content);
        std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    }

    /// Nothing can be made in the folder beside those files, which are empty.
    static void make_read_only_folder(const std::string& path, const std::vector<std::string>& files) {
        std::filesystem::create_directory(path);
        for (const std::string& name : files) {
            write_file(path + '/' + name, "");
        }
        std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    }

    static void make_folder_missing(const std::string& path) {
        std::filesystem::create_symlink("/missing/folder/file", path);
    }

    static void make_directory(const std::string& path) { std::filesystem::create_directory(path); }

private:
    static long open_files() { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); }

    long open_files_ = 0;
};

#endif
