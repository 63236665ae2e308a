// SPDX-License-Identifier: Apache-2.0

#include "sources/file_status.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/replaced_stdin.h"
#include "support/scratch_file.h"
#include "support/scratch_folder.h"

namespace fs = std::filesystem;

TEST(FileStatus, TellsFilesFromOtherThings) {
    const scratch_file file("text");
    EXPECT_TRUE(is_file(status_of(file.path())));
    EXPECT_FALSE(is_file(status_of(".")));
    EXPECT_FALSE(is_file(status_of("nowhere")));
}

TEST(FileStatus, IsThatOfStandardInputWhereThatIsNamed) {
    const scratch_file file("text");
    const replaced_stdin standard_input(file.path());
    EXPECT_TRUE(is_file(status_of("-")));
    EXPECT_EQ(status_of("-").st_size, 4);
}

TEST(FileStatus, StaysTheSameWhileNothingIsWritten) {
    const scratch_file file("text");
    const struct stat before = status_of(file.path());
    EXPECT_TRUE(is_unchanged(file.path(), before));
}

TEST(FileStatus, ChangesWithTheSize) {
    const scratch_file file("text");
    const struct stat before = status_of(file.path());
    std::ofstream(file.path(), std::ios::app) << "more";
    EXPECT_FALSE(is_unchanged(file.path(), before));
}

TEST(FileStatus, ChangesWithTheTime) {
    const scratch_file file("text");
    const struct stat before = status_of(file.path());
    fs::last_write_time(file.path(), fs::last_write_time(file.path()) + std::chrono::microseconds(1));
    EXPECT_FALSE(is_unchanged(file.path(), before));
}

TEST(FileStatus, ChangesWhenAnotherFileTakesThePlace) {
    const scratch_folder folder;
    const std::string path = folder.file("a.xml");
    std::ofstream(path) << "text";
    std::ofstream(folder.file("new")) << "text";
    fs::last_write_time(folder.file("new"), fs::last_write_time(path));
    const struct stat before = status_of(path);
    fs::rename(folder.file("new"), path);
    EXPECT_FALSE(is_unchanged(path, before));
}

TEST(FileStatus, ChangesWithTheDeviceOrTheSecondAlone) {
    const scratch_file file("text");
    struct stat on_another_device = status_of(file.path());
    ++on_another_device.st_dev;
    EXPECT_FALSE(is_unchanged(file.path(), on_another_device));
    struct stat a_second_later = status_of(file.path());
    ++a_second_later.st_mtim.tv_sec;
    EXPECT_FALSE(is_unchanged(file.path(), a_second_later));
}

TEST(FileStatus, ChangesWhenTheFileGoes) {
    const scratch_folder folder;
    const std::string path = folder.file("a.xml");
    std::ofstream(path) << "text";
    const struct stat before = status_of(path);
    fs::remove(path);
    EXPECT_FALSE(is_unchanged(path, before));
}
