// SPDX-License-Identifier: Apache-2.0

#include "sources/file_status.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/scratch_file.h"
#include "support/scratch_folder.h"

namespace fs = std::filesystem;

TEST(FileStatus, TellsFilesFromOtherThings) {
    const scratch_file file("text");
    EXPECT_TRUE(is_file(status_of(file.path())));
    EXPECT_FALSE(is_file(status_of(".")));
    EXPECT_FALSE(is_file(status_of("nowhere")));
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

TEST(FileStatus, ChangesWhenTheFileGoes) {
    const scratch_folder folder;
    const std::string path = folder.file("a.xml");
    std::ofstream(path) << "text";
    const struct stat before = status_of(path);
    fs::remove(path);
    EXPECT_FALSE(is_unchanged(path, before));
}
