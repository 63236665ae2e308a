// SPDX-License-Identifier: Apache-2.0

/// @file
/// The base of the exceptions that cross the controller's libraries.
#ifndef SYSIPC_H
#define SYSIPC_H

#include <cstdint>
#include <exception>
#include <string>

namespace sysipc {

/// A failure with a message for people and two numbers whose meaning is the thrower's own.
class __attribute__((visibility("default"))) exception : public std::exception {
public:
    /// A failure with that message and those numbers.
    explicit exception(const std::string& message, std::int32_t first = 0, std::int32_t second = 0);
    ~exception() override;

    /// The message; valid as long as the exception is.
    const char* what() const noexcept override;

    /// The first of the two numbers.
    std::int32_t first() const { return first_; }
    /// The second of the two numbers.
    std::int32_t second() const { return second_; }

private:
    std::string message_;
    std::int32_t first_;
    std::int32_t second_;
};

}  // namespace sysipc

#endif
