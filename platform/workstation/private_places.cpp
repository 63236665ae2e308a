// SPDX-License-Identifier: Apache-2.0

// Preloaded, gives a program and its children other places for some paths: where no file system can be mounted, this is
// how scripts/sandbox makes its view. ZEBDB_PRIVATE_PLACES holds a line for each path that changes hands, the path and
// its place with a tab between them; what stands below a path goes with it, and of two paths that fit the longer holds,
// of two lines for one path the first. A program that is linked statically or calls the kernel itself is not reached.

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

// The calls are passed on without knowing more of them than which words are paths: no function has more arguments.
using word = void*;
using function = word (*)(word, word, word, word, word, word);

constexpr std::size_t longest_path = 4096;
constexpr const char* places_variable = "ZEBDB_PRIVATE_PLACES";

struct private_place {
    std::string_view path;
    std::string_view place;
};

bool is_at_or_below(std::string_view path, std::string_view folder) {
    return path.compare(0, folder.size(), folder) == 0 && (path.size() == folder.size() || path[folder.size()] == '/');
}

// Of the places in the environment the one that holds for `path`; empty if there is none.
private_place place_for(std::string_view path) {
    private_place best;
    const char* variable = std::getenv(places_variable);
    std::string_view lines = variable == nullptr ? "" : variable;
    while (!lines.empty()) {
        const std::string_view line = lines.substr(0, lines.find('\n'));
        lines.remove_prefix(line.size() == lines.size() ? line.size() : line.size() + 1);
        const std::size_t tab = line.find('\t');
        if (tab != std::string_view::npos && tab > best.path.size() && is_at_or_below(path, line.substr(0, tab))) {
            best = {line.substr(0, tab), line.substr(tab + 1)};
        }
    }
    return best;
}

// The path that the kernel is to be given for one that a program names.
class kernel_path {
public:
    explicit kernel_path(word named) : path_(static_cast<char*>(named)) {
        if (path_ == nullptr || *path_ != '/') {
            return;
        }
        while (path_[1] == '/') {
            ++path_;
        }
        const std::string_view path = path_;
        const private_place found = place_for(path);
        const std::size_t rest = path.size() - found.path.size();
        if (found.place.size() + rest < sizeof buffer_) {
            std::memcpy(buffer_, found.place.data(), found.place.size());
            std::memcpy(buffer_ + found.place.size(), path.data() + found.path.size(), rest + 1);
            path_ = buffer_;
        }
    }
    kernel_path(const kernel_path&) = delete;
    kernel_path& operator=(const kernel_path&) = delete;

    operator word() const { return path_; }

private:
    char* path_;
    char buffer_[longest_path];
};

function next(const char* name) {
    return reinterpret_cast<function>(dlsym(RTLD_NEXT, name));
}

// mkstemp() and its like write into the name at the end of the path that they are given.
word name_and_make(const char* name, word named, word b, word c) {
    const kernel_path path(named);
    word place = path;
    word result = next(name)(place, b, c, nullptr, nullptr, nullptr);
    const char* made = std::strrchr(static_cast<char*>(place), '/');
    if (made != nullptr) {
        char* given = std::strrchr(static_cast<char*>(named), '/');
        std::memmove(given, made, std::strlen(given));
    }
    return result == place ? named : result;  // mkdtemp() returns the path
}

}  // namespace

// Each of these functions takes the place of the C library's function of that name.
#define REPLACE(name, first, second, third, fourth)                                             \
    extern "C" word replaced_##name(word a, word b, word c, word d, word e, word f) asm(#name); \
    word replaced_##name(word a, word b, word c, word d, word e, word f) {                      \
        static const function call = next(#name);                                               \
        return call(first(a), second(b), third(c), fourth(d), e, f);                            \
    }
#define REPLACE_NAMING(name)                                            \
    extern "C" word replaced_##name(word a, word b, word c) asm(#name); \
    word replaced_##name(word a, word b, word c) {                      \
        return name_and_make(#name, a, b, c);                           \
    }
#define PATH_FIRST(name) REPLACE(name, kernel_path, , , )
#define PATH_SECOND(name) REPLACE(name, , kernel_path, , )
#define PATH_THIRD(name) REPLACE(name, , , kernel_path, )
#define PATHS_FIRST_AND_SECOND(name) REPLACE(name, kernel_path, kernel_path, , )
#define PATHS_FIRST_AND_THIRD(name) REPLACE(name, kernel_path, , kernel_path, )
#define PATHS_SECOND_AND_FOURTH(name) REPLACE(name, , kernel_path, , kernel_path)

// Opening.
PATH_FIRST(open)
PATH_FIRST(open64)
PATH_FIRST(__open_2)
PATH_FIRST(__open64_2)
PATH_FIRST(creat)
PATH_FIRST(creat64)
PATH_FIRST(fopen)
PATH_FIRST(fopen64)
PATH_FIRST(freopen)
PATH_FIRST(freopen64)
PATH_FIRST(opendir)
PATH_SECOND(openat)
PATH_SECOND(openat64)
PATH_SECOND(__openat_2)
PATH_SECOND(__openat64_2)

// Asking.
PATH_FIRST(access)
PATH_FIRST(eaccess)
PATH_FIRST(euidaccess)
PATH_FIRST(stat)
PATH_FIRST(stat64)
PATH_FIRST(lstat)
PATH_FIRST(lstat64)
PATH_FIRST(statfs)
PATH_FIRST(statfs64)
PATH_FIRST(statvfs)
PATH_FIRST(statvfs64)
PATH_FIRST(pathconf)
PATH_FIRST(readlink)
PATH_FIRST(__readlink_chk)
PATH_FIRST(realpath)
PATH_FIRST(__realpath_chk)
PATH_FIRST(canonicalize_file_name)
PATH_FIRST(getxattr)
PATH_FIRST(lgetxattr)
PATH_FIRST(listxattr)
PATH_FIRST(llistxattr)
PATH_FIRST(scandir)
PATH_FIRST(scandir64)
PATH_FIRST(glob)
PATH_FIRST(glob64)
PATH_FIRST(nftw)
PATH_FIRST(nftw64)
PATH_SECOND(faccessat)
PATH_SECOND(fstatat)
PATH_SECOND(fstatat64)
PATH_SECOND(statx)
PATH_SECOND(readlinkat)
PATH_SECOND(__readlinkat_chk)
PATH_SECOND(inotify_add_watch)

// Making, changing and removing.
PATH_FIRST(chdir)
PATH_FIRST(chmod)
PATH_FIRST(chown)
PATH_FIRST(lchown)
PATH_FIRST(mkdir)
PATH_FIRST(mkfifo)
PATH_FIRST(mknod)
PATH_FIRST(remove)
PATH_FIRST(rmdir)
PATH_FIRST(setxattr)
PATH_FIRST(lsetxattr)
PATH_FIRST(truncate)
PATH_FIRST(truncate64)
PATH_FIRST(unlink)
PATH_FIRST(utime)
PATH_FIRST(utimes)
PATH_SECOND(fchmodat)
PATH_SECOND(fchownat)
PATH_SECOND(futimesat)
PATH_SECOND(mkdirat)
PATH_SECOND(mkfifoat)
PATH_SECOND(mknodat)
PATH_SECOND(unlinkat)
PATH_SECOND(utimensat)
PATHS_FIRST_AND_SECOND(link)
PATHS_FIRST_AND_SECOND(rename)
PATHS_FIRST_AND_SECOND(symlink)
PATHS_FIRST_AND_THIRD(symlinkat)
PATHS_SECOND_AND_FOURTH(linkat)
PATHS_SECOND_AND_FOURTH(renameat)
PATHS_SECOND_AND_FOURTH(renameat2)
REPLACE_NAMING(mkdtemp)
REPLACE_NAMING(mkstemp)
REPLACE_NAMING(mkstemp64)
REPLACE_NAMING(mkstemps)
REPLACE_NAMING(mkstemps64)
REPLACE_NAMING(mkostemp)
REPLACE_NAMING(mkostemp64)
REPLACE_NAMING(mkostemps)
REPLACE_NAMING(mkostemps64)

// Running. A program that is searched for in PATH is not found in a private place.
PATH_FIRST(execv)
PATH_FIRST(execve)
PATH_FIRST(execvp)
PATH_FIRST(execvpe)
PATH_SECOND(posix_spawn)
PATH_SECOND(posix_spawnp)
PATH_SECOND(posix_spawn_file_actions_addchdir_np)
PATH_THIRD(posix_spawn_file_actions_addopen)
