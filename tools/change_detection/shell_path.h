// SPDX-License-Identifier: Apache-2.0

/// Paths that the library hands to a shell.
#ifndef TOOLS_CHANGE_DETECTION_SHELL_PATH_H
#define TOOLS_CHANGE_DETECTION_SHELL_PATH_H

#include <cstddef>
#include <string>

/// The longest paths that save_pci_digest() and check_pci() do not cut.
constexpr std::size_t longest_path_to_save = 43;
constexpr std::size_t longest_path_to_check = 96;

/// Throws failure when `path` names no file, when a shell would not take it as it stands, or when it is longer than
/// `longest` bytes, beyond which the library would cut the command that it stands in.
void require_shell_path(const std::string& path, std::size_t longest);

#endif
