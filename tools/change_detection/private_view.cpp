#include "change_detection/private_view.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

#include "console/failure.h"

namespace {

constexpr const char* this_program = "/proc/self/exe";
constexpr const char* private_places[] = {"/tmp/", "/var/DS/", "/var/log/", "/var/vonk/"};

std::vector<std::string> own_command_line() {
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    std::vector<std::string> words;
    for (std::string word; std::getline(file, word, '\0');) {
        words.push_back(word);
    }
    return words;
}

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

std::string own_path() {
    char path[4096];
    const ssize_t length = ::readlink(this_program, path, sizeof path);
    if (length < 0) {
        throw failure(std::string("cannot find the program itself: ") + std::strerror(errno));
    }
    return std::string(path, static_cast<std::size_t>(length));
}

// The script that makes the view: beside an installed program, or in the sources that this one was built from.
std::string sandbox_script(const std::string& program) {
    const std::string installed = program.substr(0, program.rfind('/')) + "/../libexec/zebdb-cds/sandbox";
    for (const std::string& script : {installed, std::string(ZEBDB_SOURCE_DIR "/scripts/sandbox")}) {
        if (::access(script.c_str(), X_OK) == 0) {
            return script;
        }
    }
    throw failure("--root needs the script '" + installed + "', which is not there; install the command again");
}

}  // namespace

void enter_private_view(const std::string& folder) {
    if (folder.empty()) {
        return;
    }
    std::vector<std::string> words = without_root_option(own_command_line());
    words.front() = own_path();
    if (is_in_private_place(words.front())) {
        throw failure("with --root the program cannot be run from '" + words.front() +
                      "', a folder that is replaced by one below DIR; install it elsewhere");
    }
    const std::string script = sandbox_script(words.front());
    words.insert(words.begin(), {script, folder});

    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    ::execv(script.c_str(), arguments.data());
    throw failure("cannot run '" + script + "': " + std::strerror(errno));
}

std::string private_view_hint(const std::string& path) {
    const char* folder = std::getenv("ZEBDB_SANDBOX");
    if (folder == nullptr || !is_in_private_place(path)) {
        return "";
    }
    return std::string(" (below '") + folder + "', as --root has it)";
}
