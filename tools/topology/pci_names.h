// SPDX-License-Identifier: Apache-2.0

/// The names of PCI vendors and devices, from the list of PCI ids that ZEBDB_PCI_IDS names, else from the one that the
/// distribution installs.
#ifndef TOOLS_TOPOLOGY_PCI_NAMES_H
#define TOOLS_TOPOLOGY_PCI_NAMES_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

struct pci_access;

/// Nothing but that list is asked. Without a readable list nothing has a name, and nobody is told.
class pci_names {
public:
    pci_names();

    using id = std::optional<std::uint64_t>;

    /// One line of UTF-8. Nothing when there is no name, or no id.
    std::optional<std::string> vendor(id vendor);
    std::optional<std::string> device(id vendor, id device);

private:
    struct closer {
        void operator()(pci_access* access) const;
    };

    std::optional<std::string> look_up(int what, id vendor, id device);
    bool has_list();

    std::string list_;                            // its path, which libpci keeps no copy of
    std::unique_ptr<pci_access, closer> access_;  // null once there is no list
    bool is_loaded_ = false;
};

#endif
