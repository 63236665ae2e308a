// SPDX-License-Identifier: Apache-2.0

// Does one step of a load in a process of its own, so that its instructions can be counted and its peak memory read.
// Built with the workstation platform and, as load_once_dropping, with a platform that drops the rows.

#include <CLI/CLI.hpp>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <zeb_db.h>
#include <zeb_db_workstation.h>

#include "workloads.h"

namespace {

// Of this program image alone; what getrusage() tells may come from the program that started it.
std::string peak_memory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) {
            return line.substr(line.find_first_not_of(" \t", 6));
        }
    }
    throw std::runtime_error("/proc/self/status tells no VmHWM");
}

void load_into(const std::string& database, const char* path) {
    _zeb_db_handle_t* handle = nullptr;
    if (zeb_db_open(database.c_str(), &handle) != 0) {
        throw std::runtime_error("cannot open " + database);
    }
    load_inventory(handle, path);
    zeb_db_close(handle);
}

int measure(int argc, char** argv) {
    std::string step;
    std::vector<std::string> paths;
    std::string database = "load_once.db";
    unsigned times = 1;
    const std::map<std::string, std::function<void(const char*)>> steps = {
        {"plain", build_plain_document},
        {"document", build_xml_document},
        {"tree", read_tree},
        {"load", [&database](const char* file) { load_into(database, file); }},
    };

    CLI::App app("Does one step of a load and prints the process's peak memory.");
    app.add_option("STEP", step,
                   "plain: libxml2's document as it comes; document: the XML document; tree: document::parse(); load: "
                   "parse_cds()")
        ->required()
        ->check(CLI::IsMember(steps));
    app.add_option("FILE", paths, "the CDS files, one after the other")->required();
    app.add_option("--times", times, "how often to do it")->capture_default_str();
    app.add_option("--database", database, "where a load goes")->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    for (unsigned time = 0; time < times; ++time) {
        for (const std::string& path : paths) {
            steps.at(step)(path.c_str());
        }
    }
    std::cout << peak_memory() << '\n';
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return measure(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "load_once: " << error.what() << '\n';
        return 2;
    }
}
