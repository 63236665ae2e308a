// SPDX-License-Identifier: Apache-2.0

// Any bytes as a file of function keys, and those keys saved and read again.

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include <vonk_log_workstation.h>

#include "fuzz/fuzz_target.h"
#include "inventory/function_keys.h"

namespace {

/// A file without a name, and the path that leads to it all the same.
class nameless_file {
public:
    nameless_file() : descriptor_(memfd_create("", 0)) {}
    ~nameless_file() { close(descriptor_); }
    nameless_file(const nameless_file&) = delete;
    nameless_file& operator=(const nameless_file&) = delete;

    void write(const std::uint8_t* data, std::size_t size) const {
        require(::write(descriptor_, data, size) == static_cast<ssize_t>(size), "there is memory for a file");
    }
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

void ignore(void*, vonk_log::level, const char*) {}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vonk_log::set_sink(ignore, nullptr);
    const nameless_file file;
    file.write(data, size);
    function_key_list keys;
    if (read_fkeys_fromFile(file.path().c_str(), keys) != 0) {
        require(keys.empty(), "a file that cannot be read gives no keys");
        return 0;
    }
    require(keys.size() * sizeof(std::uint32_t) <= size, "a file gives no more keys than it has words");
    require(!first_vanished_key(keys, keys), "no key vanishes from itself");

    const nameless_file saved;
    save_fkeys_ToFile(saved.path().c_str(), keys);
    function_key_list again;
    read_fkeys_fromFile(saved.path().c_str(), again);
    keys.resize(keys.empty() ? 0 : keys.size() - 1);  // the last one is never taken
    require(again == keys, "saved keys are read again");
    return 0;
}
