// SPDX-License-Identifier: Apache-2.0

// The functions of the C library that are given other places for paths, each called as a program calls it. Paths below
// /private-place lead to the folder of a test; nothing of that name is on the machine.

#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <glob.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utime.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/scratch_folder.h"

// What the C library's headers call in checked builds.
extern "C" {
int __open_2(const char* path, int flags);
int __open64_2(const char* path, int flags);
int __openat_2(int folder, const char* path, int flags);
int __openat64_2(int folder, const char* path, int flags);
ssize_t __readlink_chk(const char* path, char* target, std::size_t length, std::size_t size);
ssize_t __readlinkat_chk(int folder, const char* path, char* target, std::size_t length, std::size_t size);
char* __realpath_chk(const char* path, char* resolved, std::size_t size);
}

namespace fs = std::filesystem;

using testing::StartsWith;

namespace {

constexpr const char* variable = "ZEBDB_PRIVATE_PLACES";
constexpr const char* top = "/private-place";
constexpr const char* file = "/private-place/file";
constexpr const char* link_to_file = "/private-place/link";
constexpr const char* folder = "/private-place/folder";
constexpr const char* program = "/private-place/program";
constexpr const char* made = "/private-place/made";

bool closed(int descriptor) {
    return descriptor != -1 && close(descriptor) == 0;
}

bool closed(std::FILE* stream) {
    return stream != nullptr && std::fclose(stream) == 0;
}

bool closed(DIR* entries) {
    return entries != nullptr && closedir(entries) == 0;
}

bool freed(char* text) {
    const bool given = text != nullptr;
    std::free(text);
    return given;
}

// Not every file system has extended attributes.
bool found(ssize_t result) {
    return result != -1 || errno != ENOENT;
}

template <class Answer>
bool told(int (*ask)(const char*, Answer*)) {
    Answer answer;
    return ask(file, &answer) == 0;
}

template <class Answer>
bool told_at(int (*ask)(int, const char*, Answer*, int)) {
    Answer answer;
    return ask(AT_FDCWD, file, &answer, 0) == 0;
}

bool told_by_statx() {
    struct statx answer;
    return statx(AT_FDCWD, file, 0, STATX_SIZE, &answer) == 0;
}

// An emulator of 32 bits passes on how a kernel of 64 numbers the entries, which on some file systems is beyond them.
template <class Entry>
bool listed(int (*list)(const char*, Entry***, int (*)(const Entry*), int (*)(const Entry**, const Entry**))) {
    Entry** entries = nullptr;
    const int count = list(top, &entries, nullptr, nullptr);
    for (int i = 0; i < count; ++i) {
        std::free(entries[i]);
    }
    std::free(entries);
    return count > 0 || (count == -1 && errno == EOVERFLOW);
}

template <class Paths>
bool matched(int (*match)(const char*, int, int (*)(const char*, int), Paths*), void (*release)(Paths*)) {
    Paths paths = {};
    const int result = match("/private-place/*", 0, nullptr, &paths);
    release(&paths);
    return result == 0;
}

// A stream that nobody owns: C libraries differ in whether one that could not be reopened is still to be closed.
bool reopened(std::FILE* (*reopen)(const char*, const char*, std::FILE*)) {
    return reopen(file, "r", stdin) != nullptr;
}

template <class Status>
int go_on(const char*, const Status*, int, FTW*) {
    return 0;
}

bool entered(int (*enter)(const char*)) {
    const fs::path before = fs::current_path();
    return enter(folder) == 0 && fs::current_path().filename() == "folder" && chdir(before.c_str()) == 0;
}

bool watched() {
    const int events = inotify_init1(IN_CLOEXEC);
    const bool added = inotify_add_watch(events, file, IN_MODIFY) != -1;
    close(events);
    return added;
}

bool ended_well(pid_t child) {
    int status = -1;
    return waitpid(child, &status, 0) == child && status == 0;
}

bool ran(void (*execute)(char* const* arguments)) {
    const pid_t child = fork();
    if (child == 0) {
        char name[] = "program";
        char* const arguments[] = {name, nullptr};
        execute(arguments);
        _exit(127);
    }
    return ended_well(child);
}

using spawn_function = int(pid_t*, const char*, const posix_spawn_file_actions_t*, const posix_spawnattr_t*,
                           char* const*, char* const*);

bool spawned(spawn_function* spawn, const char* path, const posix_spawn_file_actions_t* actions) {
    char name[] = "program";
    char* const arguments[] = {name, nullptr};
    pid_t child = -1;
    return spawn(&child, path, actions, nullptr, arguments, environ) == 0 && ended_well(child);
}

bool spawned_with(int (*add)(posix_spawn_file_actions_t*)) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const bool done = add(&actions) == 0 && spawned(posix_spawn, "/bin/true", &actions);
    posix_spawn_file_actions_destroy(&actions);
    return done;
}

bool lies_in_the_folder(const char* path) {
    return std::strstr(path, "XXXXXX") == nullptr && access(path, F_OK) == 0;
}

// A name that was filled in leads to what was made, for whoever gave it.
template <class... Rest>
bool named(int (*make)(char*, Rest...), const char* ending, Rest... rest) {
    std::string path = "/private-place/XXXXXX" + std::string(ending);
    return closed(make(path.data(), rest...)) && lies_in_the_folder(path.c_str());
}

bool named_folder() {
    char path[] = "/private-place/XXXXXX";
    return mkdtemp(path) == path && lies_in_the_folder(path);
}

struct replaced_function {
    const char* name;
    bool (*reaches)();  // what is below the path
};

char target[PATH_MAX];

const replaced_function functions[] = {
    {"open", [] { return closed(open(file, O_RDONLY)); }},
    {"open64", [] { return closed(open64(file, O_RDONLY)); }},
    {"__open_2", [] { return closed(__open_2(file, O_RDONLY)); }},
    {"__open64_2", [] { return closed(__open64_2(file, O_RDONLY)); }},
    {"creat", [] { return closed(creat(made, 0600)); }},
    {"creat64", [] { return closed(creat64(made, 0600)); }},
    {"fopen", [] { return closed(fopen(file, "r")); }},
    {"fopen64", [] { return closed(fopen64(file, "r")); }},
    {"freopen", [] { return reopened(freopen); }},
    {"freopen64", [] { return reopened(freopen64); }},
    {"opendir", [] { return closed(opendir(top)); }},
    {"openat", [] { return closed(openat(AT_FDCWD, file, O_RDONLY)); }},
    {"openat64", [] { return closed(openat64(AT_FDCWD, file, O_RDONLY)); }},
    {"__openat_2", [] { return closed(__openat_2(AT_FDCWD, file, O_RDONLY)); }},
    {"__openat64_2", [] { return closed(__openat64_2(AT_FDCWD, file, O_RDONLY)); }},

    {"access", [] { return access(file, F_OK) == 0; }},
    {"eaccess", [] { return eaccess(file, F_OK) == 0; }},
    {"euidaccess", [] { return euidaccess(file, F_OK) == 0; }},
    {"stat", [] { return told<struct stat>(stat); }},
    {"stat64", [] { return told<struct stat64>(stat64); }},
    {"lstat", [] { return told<struct stat>(lstat); }},
    {"lstat64", [] { return told<struct stat64>(lstat64); }},
    {"statfs", [] { return told<struct statfs>(statfs); }},
    {"statfs64", [] { return told<struct statfs64>(statfs64); }},
    {"statvfs", [] { return told<struct statvfs>(statvfs); }},
    {"statvfs64", [] { return told<struct statvfs64>(statvfs64); }},
    {"pathconf", [] { return pathconf(file, _PC_NAME_MAX) != -1; }},
    {"readlink", [] { return readlink(link_to_file, target, sizeof target) != -1; }},
    {"__readlink_chk", [] { return __readlink_chk(link_to_file, target, sizeof target, sizeof target) != -1; }},
    {"realpath", [] { return realpath(file, target) != nullptr; }},
    {"__realpath_chk", [] { return __realpath_chk(file, target, sizeof target) != nullptr; }},
    {"canonicalize_file_name", [] { return freed(canonicalize_file_name(file)); }},
    {"getxattr", [] { return found(getxattr(file, "user.none", nullptr, 0)); }},
    {"lgetxattr", [] { return found(lgetxattr(file, "user.none", nullptr, 0)); }},
    {"listxattr", [] { return found(listxattr(file, nullptr, 0)); }},
    {"llistxattr", [] { return found(llistxattr(file, nullptr, 0)); }},
    {"scandir", [] { return listed<dirent>(scandir); }},
    {"scandir64", [] { return listed<dirent64>(scandir64); }},
    {"glob", [] { return matched(glob, globfree); }},
    {"glob64", [] { return matched(glob64, globfree64); }},
    {"nftw", [] { return nftw(top, go_on, 8, 0) == 0; }},
    {"nftw64", [] { return nftw64(top, go_on, 8, 0) == 0; }},
    {"faccessat", [] { return faccessat(AT_FDCWD, file, F_OK, 0) == 0; }},
    {"fstatat", [] { return told_at<struct stat>(fstatat); }},
    {"fstatat64", [] { return told_at<struct stat64>(fstatat64); }},
    {"statx", told_by_statx},
    {"readlinkat", [] { return readlinkat(AT_FDCWD, link_to_file, target, sizeof target) != -1; }},
    {"__readlinkat_chk",
     [] { return __readlinkat_chk(AT_FDCWD, link_to_file, target, sizeof target, sizeof target) != -1; }},
    {"inotify_add_watch", watched},

    {"chdir", [] { return entered(chdir); }},
    {"chmod", [] { return chmod(file, 0600) == 0; }},
    {"chown", [] { return chown(file, getuid(), getgid()) == 0; }},
    {"lchown", [] { return lchown(file, getuid(), getgid()) == 0; }},
    {"mkdir", [] { return mkdir(made, 0700) == 0; }},
    {"mkfifo", [] { return mkfifo(made, 0600) == 0; }},
    {"mknod", [] { return mknod(made, S_IFREG | 0600, 0) == 0; }},
    {"remove", [] { return remove(file) == 0; }},
    {"rmdir", [] { return rmdir(folder) == 0; }},
    {"setxattr", [] { return found(setxattr(file, "user.some", "", 0, 0)); }},
    {"lsetxattr", [] { return found(lsetxattr(file, "user.some", "", 0, 0)); }},
    {"truncate", [] { return truncate(file, 1) == 0; }},
    {"truncate64", [] { return truncate64(file, 1) == 0; }},
    {"unlink", [] { return unlink(file) == 0; }},
    {"utime", [] { return utime(file, nullptr) == 0; }},
    {"utimes", [] { return utimes(file, nullptr) == 0; }},
    {"fchmodat", [] { return fchmodat(AT_FDCWD, file, 0600, 0) == 0; }},
    {"fchownat", [] { return fchownat(AT_FDCWD, file, getuid(), getgid(), 0) == 0; }},
    {"futimesat", [] { return futimesat(AT_FDCWD, file, nullptr) == 0; }},
    {"mkdirat", [] { return mkdirat(AT_FDCWD, made, 0700) == 0; }},
    {"mkfifoat", [] { return mkfifoat(AT_FDCWD, made, 0600) == 0; }},
    {"mknodat", [] { return mknodat(AT_FDCWD, made, S_IFREG | 0600, 0) == 0; }},
    {"unlinkat", [] { return unlinkat(AT_FDCWD, file, 0) == 0; }},
    {"utimensat", [] { return utimensat(AT_FDCWD, file, nullptr, 0) == 0; }},
    {"link", [] { return link(file, made) == 0; }},
    {"rename", [] { return rename(file, made) == 0; }},
    {"symlink", [] { return symlink(file, made) == 0 && access(made, F_OK) == 0; }},
    {"symlinkat", [] { return symlinkat(file, AT_FDCWD, made) == 0 && access(made, F_OK) == 0; }},
    {"linkat", [] { return linkat(AT_FDCWD, file, AT_FDCWD, made, 0) == 0; }},
    {"renameat", [] { return renameat(AT_FDCWD, file, AT_FDCWD, made) == 0; }},
    {"renameat2", [] { return renameat2(AT_FDCWD, file, AT_FDCWD, made, 0) == 0; }},
    {"mkdtemp", named_folder},
    {"mkstemp", [] { return named(mkstemp, ""); }},
    {"mkstemp64", [] { return named(mkstemp64, ""); }},
    {"mkstemps", [] { return named(mkstemps, ".db", 3); }},
    {"mkstemps64", [] { return named(mkstemps64, ".db", 3); }},
    {"mkostemp", [] { return named(mkostemp, "", O_CLOEXEC); }},
    {"mkostemp64", [] { return named(mkostemp64, "", O_CLOEXEC); }},
    {"mkostemps", [] { return named(mkostemps, ".db", 3, O_CLOEXEC); }},
    {"mkostemps64", [] { return named(mkostemps64, ".db", 3, O_CLOEXEC); }},

    {"execv", [] { return ran([](char* const* arguments) { execv(program, arguments); }); }},
    {"execve", [] { return ran([](char* const* arguments) { execve(program, arguments, environ); }); }},
    {"execvp", [] { return ran([](char* const* arguments) { execvp(program, arguments); }); }},
    {"execvpe", [] { return ran([](char* const* arguments) { execvpe(program, arguments, environ); }); }},
    {"posix_spawn", [] { return spawned(posix_spawn, program, nullptr); }},
    {"posix_spawnp", [] { return spawned(posix_spawnp, program, nullptr); }},
    {"posix_spawn_file_actions_addchdir_np",
     [] { return spawned_with([](auto* actions) { return posix_spawn_file_actions_addchdir_np(actions, folder); }); }},
    {"posix_spawn_file_actions_addopen",
     [] {
         return spawned_with(
             [](auto* actions) { return posix_spawn_file_actions_addopen(actions, 0, file, O_RDONLY, 0); });
     }},
};

void PrintTo(const replaced_function& function, std::ostream* out) {
    *out << function.name;
}

class PrivatePlaces : public testing::Test {
protected:
    PrivatePlaces() {
        std::ofstream(scratch.file("file")) << "private";
        fs::create_symlink("file", scratch.file("link"));
        fs::create_directory(scratch.file("folder"));
        fs::create_symlink("/bin/true", scratch.file("program"));
        give(line(top, place()));
    }
    ~PrivatePlaces() override { unsetenv(variable); }

    static void give(const std::string& lines) { setenv(variable, lines.c_str(), 1); }
    static std::string line(const std::string& path, const std::string& place) { return path + '\t' + place + '\n'; }

    std::string place(const std::string& name = "") const { return fs::absolute(scratch.file(name)); }

    const scratch_folder scratch;
};

class ReplacedFunction : public PrivatePlaces, public testing::WithParamInterface<replaced_function> {};

INSTANTIATE_TEST_SUITE_P(Each, ReplacedFunction, testing::ValuesIn(functions),
                         [](const auto& function) { return std::string(function.param.name); });

TEST_P(ReplacedFunction, ReachesThePlaceOfItsPath) {
    EXPECT_TRUE(GetParam().reaches()) << std::strerror(errno);
}

TEST_P(ReplacedFunction, IsTheCLibrarysWithoutPlaces) {
    unsetenv(variable);
    EXPECT_FALSE(GetParam().reaches());
}

TEST(ReplacedFunctions, AreTriedWithoutException) {
    std::ifstream source(SOURCE_DIR "/platform/workstation/private_places.cpp");
    const std::string text{std::istreambuf_iterator<char>(source), {}};
    static const std::regex replacement("\n(?:PATHS?_[A-Z_]+|REPLACE_NAMING)\\((\\w+)\\)");
    std::vector<std::string> replaced;
    for (std::sregex_iterator each(text.begin(), text.end(), replacement), end; each != end; ++each) {
        replaced.push_back((*each)[1]);
    }
    std::vector<std::string> tried;
    for (const replaced_function& function : functions) {
        tried.emplace_back(function.name);
    }
    EXPECT_THAT(replaced, testing::UnorderedElementsAreArray(tried));
}

std::string text_at(const char* path) {
    std::ifstream stream(path);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

void write(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
}

TEST_F(PrivatePlaces, HoldForThePathItself) {
    give(line("/private-place/file", place("folder/other")));
    write(place("folder/other"), "other");
    EXPECT_EQ(text_at("/private-place/file"), "other");
}

TEST_F(PrivatePlaces, DoNotHoldForANameThatBeginsAlike) {
    EXPECT_NE(access("/private-placefile", F_OK), 0);
    EXPECT_NE(access("/private-placement/file", F_OK), 0);
}

TEST_F(PrivatePlaces, DoNotHoldForANameOfTheSameLength) {
    EXPECT_NE(access("/another-place/file", F_OK), 0);
    EXPECT_NE(access("/another-place", F_OK), 0);
}

TEST_F(PrivatePlaces, HoldForTheLongerPathOfTwo) {
    write(place("folder/other"), "longer");
    const std::string shorter = line(top, place());
    const std::string longer = line(file, place("folder/other"));
    give(shorter + longer);
    EXPECT_EQ(text_at(file), "longer");
    give(longer + shorter);
    EXPECT_EQ(text_at(file), "longer");
}

TEST_F(PrivatePlaces, AreTheFirstOfTwoForAPath) {
    give(line(top, place()) + line(top, "/missing"));
    EXPECT_EQ(text_at(file), "private");
}

TEST_F(PrivatePlaces, HoldWithoutALineEndBehindTheLast) {
    give(top + std::string("\t") + place());
    EXPECT_EQ(text_at(file), "private");
}

TEST_F(PrivatePlaces, AreNotNamedByALineWithoutATab) {
    give(std::string(top) + "\n" + line(top, place()));
    EXPECT_EQ(text_at(file), "private");
}

TEST_F(PrivatePlaces, HoldForAPathOfSeveralSlashesAtItsBegin) {
    EXPECT_EQ(text_at("///private-place/file"), "private");
}

TEST_F(PrivatePlaces, DoNotHoldForARelativePath) {
    EXPECT_NE(access("private-place/file", F_OK), 0);
    EXPECT_NE(access("x/private-place/file", F_OK), 0);
}

TEST_F(PrivatePlaces, LeaveOtherPathsAsTheyAre) {
    EXPECT_EQ(text_at(place("file").c_str()), "private");
}

TEST_F(PrivatePlaces, LeaveNullToTheCLibrary) {
    EXPECT_EQ(realpath(nullptr, target), nullptr);
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(PrivatePlaces, DoNotHoldForAPathThatGrowsTooLong) {
    const auto path_that_grows_to = [this](std::size_t length) {
        return top + std::string(length - place().size(), '/');
    };
    EXPECT_EQ(access(path_that_grows_to(PATH_MAX - 1).c_str(), F_OK), 0);
    EXPECT_EQ(access(path_that_grows_to(PATH_MAX).c_str(), F_OK), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(PrivatePlaces, LeaveANameThatIsFilledInElsewhereAsItIsMade) {
    std::string path = place("XXXXXX");
    ASSERT_TRUE(closed(mkstemp(path.data())));
    EXPECT_THAT(path, StartsWith(place()));
    EXPECT_EQ(access(path.c_str(), F_OK), 0);
}

// Where a place is relative, that may be.
TEST_F(PrivatePlaces, LeaveANameAsItIsWhosePlaceIsInNoFolder) {
    const std::string relative = "made-here-XXXXXX";
    give(line("/private-place-XXXXXX", relative));
    char path[] = "/private-place-XXXXXX";
    const fs::path before = fs::current_path();
    fs::current_path(place("folder"));
    const bool is_made = closed(mkstemp(path));
    fs::current_path(before);
    EXPECT_TRUE(is_made);
    EXPECT_STREQ(path, "/private-place-XXXXXX");
    EXPECT_FALSE(fs::is_empty(place("folder")));
}

// An error of the file in the place; without places there would be none of that name.
TEST_F(PrivatePlaces, HoldTheProgramThatMayNotBeRun) {
    char name[] = "program";
    char* const arguments[] = {name, nullptr};
    for (const char* path : {file, folder}) {
        for (int (*execute)(const char*, char* const*) : {execv, execvp}) {
            EXPECT_EQ(execute(path, arguments), -1);
            EXPECT_EQ(errno, EACCES);
        }
        for (int (*execute)(const char*, char* const*, char* const*) : {execve, execvpe}) {
            EXPECT_EQ(execute(path, arguments, environ), -1);
            EXPECT_EQ(errno, EACCES);
        }
    }
}

TEST_F(PrivatePlaces, LeaveARelativeNameThatIsFilledInAsItIsMade) {
    char path[] = "scratch-XXXXXX";
    ASSERT_TRUE(closed(mkstemp(path)));
    EXPECT_EQ(unlink(path), 0);
}

}  // namespace
