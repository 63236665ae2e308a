// SPDX-License-Identifier: Apache-2.0

#include "workloads.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <sysipc.h>
#include <sysxml.h>
#include <zeb_db.h>
#include <zebdb_cds_parser.h>

#include <cstddef>
#include <fstream>
#include <stdexcept>
#include <string>

namespace {

std::size_t count_components(const cds_parser::component& counted) {
    std::size_t count = 1;
    for (const cds_parser::child_slot_group* slots : counted.child_slot_groups) {
        for (const cds_parser::component* child : slots->components) {
            count += count_components(*child);
        }
    }
    return count;
}

}  // namespace

void build_plain_document(const char* path) {
    xmlDoc* document = xmlReadFile(path, nullptr, XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_COMPACT);
    if (document == nullptr) {
        throw std::runtime_error(std::string("cannot read ") + path);
    }
    xmlFreeDoc(document);
}

void build_xml_document(const char* path) {
    std::ifstream file(path);
    const sysxml::parser library;
    const sysxml::document document(file, false);
}

std::size_t read_tree(const char* path) {
    cds_parser::document document;
    if (!document.parse(path)) {
        throw sysipc::exception("the root element is no component");
    }
    return count_components(document.root);
}

void load_inventory(_zeb_db_handle_t* handle, const char* path) {
    if (zeb_db_begin_transaction(handle) != 0 || parse_cds(handle, path) != 0 ||
        zeb_db_commit_transaction(handle) != 0) {
        throw std::runtime_error(std::string("cannot load ") + path);
    }
}
