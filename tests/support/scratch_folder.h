// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_SUPPORT_SCRATCH_FOLDER_H
#define TESTS_SUPPORT_SCRATCH_FOLDER_H

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

/// An empty folder with a name of its own in the working directory; it is gone, with all in it, when the object is.
class scratch_folder {
public:
    scratch_folder() {
        if (mkdtemp(path_.data()) == nullptr) {
            throw std::runtime_error("no folder can be made in the working directory");
        }
    }
    ~scratch_folder() { std::filesystem::remove_all(path_); }
    scratch_folder(const scratch_folder&) = delete;
    scratch_folder& operator=(const scratch_folder&) = delete;

    /// The path of a file in the folder.
    std::string file(const std::string& name) const { return path_ + '/' + name; }

private:
    std::string path_ = "scratch-XXXXXX";
};

#endif
