// SPDX-License-Identifier: Apache-2.0

#include "topology/pci_names.h"

#include <unistd.h>

#include <cerrno>
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <optional>
#include <string>

// The header leaves it to its reader that these are functions of C.
extern "C" {
#include <pci/pci.h>
}

#include "console/utf8.h"

namespace {

constexpr std::uint64_t largest_id = 0xFFFF;
constexpr std::size_t longest_name = 1024;

// Where to go on when libpci meets an error: it expects not to be returned to, and an exception cannot pass through C.
std::jmp_buf after_error;

PCI_NONRET void leave_libpci(char*, ...) {
    std::longjmp(after_error, 1);  // NOLINT(cert-err52-cpp): see above
}

void ignore(char*, ...) {}

// A list that may be packed and is not stands beside the name of the packed one. libpci looks there, too, but does not
// look whether it has memory for the other name.
std::string list_beside(const std::string& path) {
    const std::string packed = ".gz";
    const std::size_t length = path.size() < packed.size() ? 0 : path.size() - packed.size();
    const bool is_missing = path.substr(length) == packed && ::access(path.c_str(), R_OK) != 0;
    return is_missing ? path.substr(0, length) : path;
}

// False when there is none or it cannot be used; `errno` is ENOMEM when that is for want of memory. This and
// look_up_in() hold nothing that would have to be destroyed when libpci is left by a jump.
bool load_list(pci_access* access) {
    if (setjmp(after_error) != 0) {  // NOLINT(cert-err52-cpp): see above
        return false;
    }
    errno = 0;
    return pci_load_name_list(access) != 0;
}

// The name in `buffer`, or null. What can fail once the list is loaded is to get memory.
const char* look_up_in(pci_access* access, char (&buffer)[longest_name], int what, int vendor, int device,
                       bool& failed) {
    if (setjmp(after_error) != 0) {  // NOLINT(cert-err52-cpp): see above
        failed = true;
        return nullptr;
    }
    return pci_lookup_name(access, buffer, static_cast<int>(longest_name),
                           what | PCI_LOOKUP_NO_NUMBERS | PCI_LOOKUP_NO_HWDB, vendor, device);
}

}  // namespace

void pci_names::closer::operator()(pci_access* access) const {
    pci_cleanup(access);
}

// The devices of this machine are of no interest: the access is never initialised.
pci_names::pci_names() : access_(pci_alloc()) {
    access_->error = leave_libpci;
    access_->warning = ignore;
    access_->debug = ignore;
    access_->id_lookup_mode = 0;  // else names that were once fetched from the network are taken from a file at home
    const char* chosen = std::getenv("ZEBDB_PCI_IDS");
    list_ = list_beside(chosen != nullptr && *chosen != '\0' ? chosen : access_->id_file_name);
    pci_set_name_list_path(access_.get(), list_.data(), 0);
}

std::optional<std::string> pci_names::vendor(id vendor) {
    return look_up(PCI_LOOKUP_VENDOR, vendor, 0);
}

std::optional<std::string> pci_names::device(id vendor, id device) {
    return look_up(PCI_LOOKUP_DEVICE, vendor, device);
}

std::optional<std::string> pci_names::look_up(int what, id vendor, id device) {
    if (!vendor || *vendor > largest_id || !device || *device > largest_id || !has_list()) {
        return std::nullopt;
    }
    char buffer[longest_name];
    bool failed = false;
    const char* name =
        look_up_in(access_.get(), buffer, what, static_cast<int>(*vendor), static_cast<int>(*device), failed);
    if (failed) {
        throw std::bad_alloc();
    }
    if (name == nullptr || *name == '\0') {
        return std::nullopt;
    }
    return printable(repaired_utf8(name));
}

bool pci_names::has_list() {
    if (access_ != nullptr && !is_loaded_) {
        is_loaded_ = load_list(access_.get());
        if (!is_loaded_ && errno == ENOMEM) {
            throw std::bad_alloc();
        }
        if (!is_loaded_) {
            access_.reset();
        }
    }
    return access_ != nullptr;
}
