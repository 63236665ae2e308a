// SPDX-License-Identifier: Apache-2.0

#include <sysipc.h>

#include <cstdint>
#include <string>

namespace sysipc {

exception::exception(const std::string& message, std::int32_t first, std::int32_t second)
    : message_(message), first_(first), second_(second) {}

exception::~exception() = default;

const char* exception::what() const noexcept {
    return message_.c_str();
}

}  // namespace sysipc
