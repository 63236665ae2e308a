// SPDX-License-Identifier: Apache-2.0

// Prints the sockets of the processors that a CDS file describes, with the number of their cores.

#include <zebdb_cds_parser.h>

#include <cstdio>
#include <exception>

namespace {

void print_processor(const cds_parser::setting_group& processor) {
    const cds_parser::setting_node* socket = processor.get_setting("Socket Designation");
    const cds_parser::setting_node* cores = processor.get_setting("Core Count");
    std::printf("%s: %lld cores\n", socket == nullptr ? "no socket" : socket->value.c_str(),
                cores == nullptr ? 0 : cores->get_int64(0));
}

void print_processors_below(const cds_parser::component& component) {
    if (const cds_parser::setting_group* processor = component.get_setting_group("cpu_info")) {
        print_processor(*processor);
    }
    for (const cds_parser::child_slot_group* slots : component.child_slot_groups) {
        for (const cds_parser::component* child : slots->components) {
            print_processors_below(*child);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        cds_parser::document document;
        if (argc != 2 || !document.parse(argv[1])) {
            std::fprintf(stderr, "usage: %s FILE, a CDS file\n", argv[0]);
            return 2;
        }
        print_processors_below(document.root);
        return 0;
    } catch (const std::exception& error) {  // the file cannot be read, or breaks the grammar
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
}
