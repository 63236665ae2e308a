// SPDX-License-Identifier: Apache-2.0

// Prints the normalised text of a CDS file.

#include <zebdb_cds_parser.h>

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    try {
        cds_parser::document document;
        if (argc != 2 || !document.parse(argv[1])) {
            std::cerr << "usage: dump_file FILE, a CDS file\n";
            return 2;
        }
        std::cout << document;
        return 0;
    } catch (const std::exception& error) {
        std::cerr << argv[1] << ": " << error.what() << '\n';
        return 1;
    }
}
