// SPDX-License-Identifier: Apache-2.0

#include "change_detection/private_view.h"

#include <dlfcn.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include <zeb_db_workstation.h>
#include <zebdb_cds_parser.h>

#include "console/failure.h"

namespace {

// What the library keeps at fixed places, see --root.
constexpr const char* private_places[] = {"/bin/pci_digest.sh", "/tmp/.dmdb_memory_deleted_flag", "/var/DS/",
                                          "/var/log/", "/var/vonk/"};

std::vector<std::string> own_words;

std::vector<std::string> without_root_option(const std::vector<std::string>& words) {
    const auto options = static_cast<std::size_t>(std::find(words.begin(), words.end(), "--") - words.begin());
    std::vector<std::string> kept;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i < options && words[i] == "--root") {
            ++i;  // its folder
        } else if (i >= options || words[i].compare(0, 7, "--root=") != 0) {
            kept.push_back(words[i]);
        }
    }
    return kept;
}

bool is_in_private_place(const std::string& path) {
    return std::any_of(std::begin(private_places), std::end(private_places),
                       [&path](const std::string& place) { return path.compare(0, place.size(), place) == 0; });
}

// Where the program stands, as the kernel was told; /proc, which knows better, is not mounted everywhere.
std::string own_path() {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the kernel passes addresses as numbers
    const auto* path = reinterpret_cast<const char*>(::getauxval(AT_EXECFN));
    std::error_code error;
    const std::filesystem::path found = std::filesystem::canonical(path == nullptr ? own_words.front() : path, error);
    if (error) {
        throw failure("cannot find the program itself: " + error.message());
    }
    return found;
}

// The file that holds the function at `address`.
std::string file_of(const void* address) {
    Dl_info info = {};
    return ::dladdr(address, &info) != 0 ? info.dli_fname : "";
}

// The script that makes the view stands where an installed program has it, and a build likewise.
std::string sandbox_script(const std::string& program) {
    std::string script = program.substr(0, program.rfind('/')) + "/../libexec/zebdb-cds/sandbox";
    if (::access(script.c_str(), X_OK) != 0) {
        throw failure("--root needs the script '" + script + "', which is not there; install the command again");
    }
    return script;
}

}  // namespace

void remember_command_line(int argc, char** argv) {
    own_words.assign(argv, argv + argc);
}

void enter_private_view(const std::string& folder, const std::vector<std::string>& kept) {
    if (folder.empty()) {
        return;
    }
    const std::string program = own_path();
    const std::string script = sandbox_script(program);

    std::vector<std::string> words = {script};
    const auto keep = [&words](const std::string& path) {
        if (!path.empty()) {
            words.insert(words.end(), {"--keep", path});
        }
    };
    std::for_each(kept.begin(), kept.end(), keep);
    keep(program);
    keep(file_of(reinterpret_cast<const void*>(&parse_cds)));
    keep(file_of(reinterpret_cast<const void*>(&zeb_db_open)));
    words.insert(words.end(), {folder, program});
    const std::vector<std::string> options = without_root_option(own_words);
    words.insert(words.end(), options.begin() + 1, options.end());

    std::vector<char*> arguments(words.size() + 1);  // a null ends them
    std::transform(words.begin(), words.end(), arguments.begin(), [](std::string& word) { return word.data(); });
    ::execv(script.c_str(), arguments.data());
    throw failure("cannot run '" + script + "': " + std::strerror(errno));
}

std::string private_view_hint(const std::string& path) {
    const char* folder = std::getenv("ZEBDB_SANDBOX");
    if (folder == nullptr || !is_in_private_place(path)) {
        return "";
    }
    return std::string(" (with --root that is '") + folder + path + "')";
}
