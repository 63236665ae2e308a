// SPDX-License-Identifier: Apache-2.0

// Writes a made-up CDS file of any size.

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>

#include "cds_generator.h"

namespace {

int generate(int argc, char** argv) {
    unsigned servers = 1;
    std::uint32_t seed = 1;
    white_space between = white_space::tabs;
    std::string path;
    const std::map<std::string, white_space> styles = {
        {"none", white_space::none}, {"tabs", white_space::tabs}, {"blanks", white_space::blanks}};

    CLI::App app("Writes a made-up CDS file to FILE or to standard output.");
    app.add_option("--servers", servers, "main servers in the file")->capture_default_str();
    app.add_option("--seed", seed, "the same seed gives the same bytes")->capture_default_str();
    app.add_option("--white-space", between, "between the elements: none, tabs (the default) or blanks")
        ->transform(CLI::Transformer(styles));
    app.add_option("FILE", path, "where to write");
    CLI11_PARSE(app, argc, argv);

    std::ofstream file;
    if (!path.empty()) {
        file.open(path, std::ios::binary);
    }
    std::ostream& out = path.empty() ? std::cout : file;
    generate_cds(out, servers, seed, between);
    if (!out.flush()) {
        throw std::runtime_error("cannot write " + (path.empty() ? "standard output" : path) + ": " +
                                 std::strerror(errno));
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return generate(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "generate_cds: " << error.what() << '\n';
        return 2;
    }
}
