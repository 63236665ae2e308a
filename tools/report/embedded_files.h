// SPDX-License-Identifier: Apache-2.0

/// The files of this folder that pages are made of, which the build puts into the program.
#ifndef TOOLS_REPORT_EMBEDDED_FILES_H
#define TOOLS_REPORT_EMBEDDED_FILES_H

#include <string_view>

/// The text of the file of that name, which must be one of those that the build names.
std::string_view embedded_file(std::string_view name);

#endif
