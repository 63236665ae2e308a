// SPDX-License-Identifier: Apache-2.0

#include "console/output_stream.h"

#include <string>

#include "console/output.h"

void output_buffer::finish() {
    print(std::string(pbase(), pptr()));
    setp(block_.data(), block_.data() + block_.size());
}

output_buffer::int_type output_buffer::overflow(int_type next) {
    finish();
    return traits_type::eq_int_type(next, traits_type::eof()) ? traits_type::not_eof(next)
                                                              : sputc(traits_type::to_char_type(next));
}
