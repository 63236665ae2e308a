// SPDX-License-Identifier: Apache-2.0

/// Serial numbers as a means to recognise a part.
#ifndef TOOLS_ROWS_SERIAL_NUMBER_H
#define TOOLS_ROWS_SERIAL_NUMBER_H

#include <optional>
#include <string>

/// The serial number in `text`, without what stands around it; nothing when `text` is what firmware puts there for want
/// of one, such as "Not Specified", "NO DIMM", blanks or zeros.
std::optional<std::string> real_serial_number(const std::string& text);

/// `text` without the blanks around it, which firmware pads texts with.
std::string without_blanks_around(const std::string& text);

#endif
