// SPDX-License-Identifier: Apache-2.0

/// PCI addresses as people write them.
#ifndef TOOLS_ROWS_PCI_ADDRESS_TEXT_H
#define TOOLS_ROWS_PCI_ADDRESS_TEXT_H

#include <optional>
#include <string>

/// The address that `text` is, as in "0000:3b:00.0"; the segment, which is 0 where it is left out, and zeros in front
/// may be missing, and digits may be upper case. Nothing when it is none.
std::optional<std::string> full_pci_address(const std::string& text);

#endif
