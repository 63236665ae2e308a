// SPDX-License-Identifier: Apache-2.0

/// Standard output for code that writes to a stream.
#ifndef TOOLS_CONSOLE_OUTPUT_STREAM_H
#define TOOLS_CONSOLE_OUTPUT_STREAM_H

#include <array>
#include <ostream>
#include <streambuf>

/// Gathers what is written into large blocks, also when it is told to flush, and prints them, see print().
class output_buffer : public std::streambuf {
public:
    /// Prints what is left. Throws failure.
    void finish();

protected:
    int_type overflow(int_type next) override;

private:
    std::array<char, 1 << 16> block_ = {};  // used from the first overflow on
};

#endif
