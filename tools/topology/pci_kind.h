// SPDX-License-Identifier: Apache-2.0

/// What a PCI function is for, in words.
#ifndef TOOLS_TOPOLOGY_PCI_KIND_H
#define TOOLS_TOPOLOGY_PCI_KIND_H

#include <cstdint>

/// The names of a class code's base class and, within it, of its subclass. Null where there is no name.
struct pci_kind {
    const char* base_class;
    const char* subclass;
};

/// `class_code` has the base class in bits 23-16, the subclass in bits 15-8 and the programming interface below.
pci_kind kind_of(std::uint64_t class_code);

#endif
