// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the XML library of a workstation tells about a document that it refuses.
#ifndef SYSXML_WORKSTATION_H
#define SYSXML_WORKSTATION_H

#include <cstdint>
#include <string>

#include <sysipc.h>
#include <sysxml.h>

namespace sysxml {

/// What document's constructor throws. The message is for people and begins with the place, where there is one.
class __attribute__((visibility("default"))) read_error : public sysipc::exception {
public:
    /// A failure at that place, both numbers 0 for none.
    read_error(const std::string& message, std::int32_t line, std::int32_t column);
    ~read_error() override;

    /// The line of the problem in the stream, counted from 1; 0 when it has no place there, when the stream itself
    /// failed in particular.
    std::int32_t line() const { return first(); }
    /// The column, likewise.
    std::int32_t column() const { return second(); }
};

/// What it throws for want of memory: whatever the message says, the document is not to blame.
class __attribute__((visibility("default"))) memory_error : public read_error {
public:
    using read_error::read_error;
    ~memory_error() override;
};

}  // namespace sysxml

#endif
