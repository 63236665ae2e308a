// SPDX-License-Identifier: Apache-2.0

#include "change_detection/missing_places.h"

#include <pwd.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <string>

namespace {

constexpr const char* marker = "/tmp/.dmdb_memory_deleted_flag";

struct place {
    const char* path;
    int needed;
    const char* what_is_not_done;
};

constexpr place places[] = {
    {"/bin/pci_digest.sh", X_OK, "no digests were made"},
    {"/var/vonk", W_OK | X_OK, "no digests were kept"},
    {"/var/DS", W_OK | X_OK, "no function keys were saved"},
};

std::string user_name(uid_t user) {
    const passwd* entry = ::getpwuid(user);
    return entry == nullptr ? "user " + std::to_string(user) : "the user " + std::string(entry->pw_name);
}

}  // namespace

std::string missing_places() {
    std::string missing;
    for (const place& each : places) {
        if (::access(each.path, each.needed) != 0) {
            missing += (missing.empty() ? "" : ", ") + std::string(each.path) + " (" + each.what_is_not_done + ')';
        }
    }
    return missing;
}

std::string foreign_marker() {
    struct stat status = {};
    if (::stat(marker, &status) != 0 || status.st_uid == ::geteuid() || ::access(marker, W_OK) == 0) {
        return "";
    }
    return std::string(marker) + ", the mark that a load has deleted the memory rows, belongs to " +
           user_name(status.st_uid) + " and was not renewed; the rows are loaded all the same";
}
