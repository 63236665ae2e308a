// SPDX-License-Identifier: Apache-2.0

#include "sources/includes.h"

#include <fnmatch.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <regex>
#include <set>

namespace fs = std::filesystem;

namespace {

constexpr const char* source_folders[] = {"cds_parser", "include", "inventory", "platform", "tools"};

// Where a compiler looks for what does not stand beside the file that includes it.
constexpr const char* include_folders[] = {"", "include", "platform/include", "platform/workstation", "tools"};

// The rooms of the command, the lowest first; those of one line leave each other alone.
const std::vector<std::vector<std::string>> rooms = {
    {"console"},          {"rows"},        {"sources"},          {"listing"},     {"topology"}, {"difference"},
    {"change_detection"}, {"explanation"}, {"report", "export"}, {"subcommands"},
};

// What every room of the command may include besides the rooms below it: of the library's own files only what it offers
// for this.
const std::vector<std::string> open_to_the_command = {
    "include/*",
    "platform/include/*",
    "platform/workstation/*_workstation.h",
    "cds_parser/dispatch.h",
    "cds_parser/load.h",
    "cds_parser/pci_keys.h",
    "cds_parser/pci_rules.h",
    "cds_parser/record_columns.h",
    "inventory/digest_file.h",
    "inventory/function_keys.h",
    "inventory/own_bridge.h",
    "inventory/query_result.h",
    "inventory/refresh.h",
};

// Some of the sources and what they may include, as patterns of paths below the root.
struct territory {
    std::string sources;
    std::vector<std::string> may_include;
    std::vector<std::string> forbidden_system_headers = {};
};

std::vector<territory> territories() {
    std::vector<territory> all = {
        {"platform/include/*", {"platform/include/*"}, {"sqlite3.h"}},
        {"platform/workstation/*", {"platform/workstation/*", "platform/include/*"}},
        {"include/*", {"include/*", "platform/include/*"}, {"sqlite3.h", "libxml/*"}},
        {"cds_parser/*", {"cds_parser/*", "include/*", "platform/include/*"}, {"sqlite3.h"}},
        {"inventory/*", {"inventory/*", "cds_parser/*", "include/*", "platform/include/*"}, {"sqlite3.h"}},
    };
    std::vector<std::string> below = open_to_the_command;
    for (const std::vector<std::string>& line : rooms) {
        std::vector<std::string> line_rooms;
        for (const std::string& room : line) {
            line_rooms.push_back("tools/" + room + "/*");
            all.push_back({line_rooms.back(), below});
            all.back().may_include.push_back(line_rooms.back());
        }
        below.insert(below.end(), line_rooms.begin(), line_rooms.end());
    }
    all.push_back({"tools/main.cpp", below});
    return all;
}

bool matches(const std::string& path, const std::string& pattern) {
    return fnmatch(pattern.c_str(), path.c_str(), 0) == 0;
}

bool matches_any(const std::string& path, const std::vector<std::string>& patterns) {
    return std::any_of(patterns.begin(), patterns.end(),
                       [&path](const std::string& pattern) { return matches(path, pattern); });
}

std::string list_of(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) {
        list += (list.empty() ? "" : ", ") + name;
    }
    return list;
}

struct include_line {
    std::string file;
    std::size_t line;
    std::string name;   // as it is written
    bool is_quoted;     // and not in angle brackets
    std::string found;  // its path below the root; empty for a header of the system

    std::string place() const { return file + ':' + std::to_string(line) + ": "; }
};

// A file and the header that goes with it are one.
std::string unit_of(const std::string& file) {
    return fs::path(file).replace_extension();
}

class checker {
public:
    explicit checker(const fs::path& root) : root_(root), territories_(territories()) {}

    include_check check() {
        find_files();
        for (const std::string& file : files_) {
            check_file(file);
        }
        find_circles();
        return {{files_.begin(), files_.end()}, problems_};
    }

private:
    void find_files() {
        for (const fs::path folder : source_folders) {
            if (!fs::exists(root_ / folder)) {
                continue;
            }
            for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root_ / folder)) {
                if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp") {
                    files_.insert(fs::relative(entry.path(), root_));
                }
            }
        }
    }

    void check_file(const std::string& file) {
        const auto home = std::find_if(territories_.begin(), territories_.end(),
                                       [&file](const territory& each) { return matches(file, each.sources); });
        if (home == territories_.end()) {
            problems_.push_back(file + ":1: stands in no folder whose includes have a rule");
            return;
        }
        for (const include_line& line : includes_of(file)) {
            if (line.found.empty()) {
                check_system_header(line, *home);
            } else if (!matches_any(line.found, home->may_include)) {
                problems_.push_back(line.place() + "includes " + line.found + "; " + home->sources +
                                    " may include only " + list_of(home->may_include));
            }
            if (!line.found.empty() && unit_of(line.found) != unit_of(file)) {
                units_[unit_of(file)].push_back(line);
            }
        }
    }

    void check_system_header(const include_line& line, const territory& home) {
        if (line.is_quoted) {
            problems_.push_back(line.place() + "includes \"" + line.name + "\", which is no file of the project");
        }
        if (matches_any(line.name, home.forbidden_system_headers)) {
            problems_.push_back(line.place() + "includes <" + line.name + ">; " + home.sources + " must not include " +
                                list_of(home.forbidden_system_headers));
        }
    }

    std::vector<include_line> includes_of(const std::string& file) const {
        static const std::regex directive("\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"].*");
        std::vector<include_line> lines;
        std::ifstream in(root_ / file);
        std::size_t number = 0;
        for (std::string text; std::getline(in, text);) {
            ++number;
            std::smatch parts;
            if (std::regex_match(text, parts, directive)) {
                const bool is_quoted = parts[1] == "\"";
                lines.push_back({file, number, parts[2], is_quoted, resolved(file, parts[2], is_quoted)});
            }
        }
        return lines;
    }

    std::string resolved(const std::string& file, const std::string& name, bool is_quoted) const {
        const fs::path beside = fs::path(file).parent_path() / name;
        if (is_quoted && files_.count(beside.lexically_normal()) != 0) {
            return beside.lexically_normal();
        }
        for (const fs::path folder : include_folders) {
            const fs::path path = (folder / name).lexically_normal();
            if (files_.count(path) != 0) {
                return path;
            }
        }
        return "";
    }

    void find_circles() {
        for (const auto& [unit, lines] : units_) {
            follow(unit);
        }
    }

    void follow(const std::string& unit) {
        if (!followed_.insert(unit).second) {
            return;
        }
        path_.push_back(unit);
        for (const include_line& line : units_[unit]) {
            const std::string next = unit_of(line.found);
            const auto begin = std::find(path_.begin(), path_.end(), next);
            if (begin != path_.end()) {
                problems_.push_back(line.place() + "includes in a circle: " + list_of({begin, path_.end()}) + ", " +
                                    next);
            }
            follow(next);
        }
        path_.pop_back();
    }

    fs::path root_;
    std::vector<territory> territories_;
    std::set<std::string> files_;
    std::map<std::string, std::vector<include_line>> units_;  // what each includes of the others
    std::set<std::string> followed_;
    std::vector<std::string> path_;  // of units, to the one that is followed
    std::vector<std::string> problems_;
};

}  // namespace

include_check check_includes(const fs::path& root) {
    return checker(root).check();
}
