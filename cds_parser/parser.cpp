// SPDX-License-Identifier: Apache-2.0

// The loader: empties the inventory tables and walks a tree, handing each component to the one record writer that its
// setting groups call for.

#include "zebdb_cds_parser/parser.h"

#include <cstdlib>

#include <vonk_log.h>
#include <zeb_db.h>

#include "dispatch.h"
#include "load.h"
#include "record_columns.h"
#include "zebdb_cds_parser/child_slot_group.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/entry_points.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {
namespace {

bool empty_table(_zeb_db_handle_t* handle, const record_kind& kind) {
    const int rc = zeb_db_delete(handle, kind.table, nullptr, nullptr, 0, 0);
    if (rc != 0) {
        vonk_log::logErr(kind.deletion_failed, rc);
    }
    return rc == 0;
}

// Tells the rest of the controller that the memory rows were deleted; nothing here ever removes the file.
void leave_memory_deleted_marker() {
    if (std::system("touch /tmp/.dmdb_memory_deleted_flag") != 0) {
        vonk_log::logErr("CDS PARSER: failed to create /tmp/.dmdb_memory_deleted_flag");
    }
}

int walk_children(parser& walker, _zeb_db_handle_t* handle, const component& parent) {
    parser::component_visitor visit_component{handle, &walker};
    const parser::child_slot_group_visitor visit_group{&visit_component};
    for (child_slot_group* group : parent.child_slot_groups) {
        visit_group(group);
    }
    return visit_component.failures == 0 ? 1 : 0;
}

int walk_bridge(parser& walker, _zeb_db_handle_t* handle, component& bridge) {
    if (walker.parse_pci_bridge(handle, &bridge) == 0) {
        return 0;
    }
    walker.parent_stack.push_back(walker.parent_id);
    walker.parent_id = walker.last_row_id;
    const int result = walk_children(walker, handle, bridge);
    walker.parent_id = walker.parent_stack.back();
    walker.parent_stack.pop_back();
    return result;
}

}  // namespace

int parser::component_visitor::operator()(component* visited) {
    const int result = visited == nullptr ? 0 : owner->parse_component(handle, visited);
    if (result == 0) {
        ++failures;
    }
    return result;
}

int parser::child_slot_group_visitor::operator()(child_slot_group* visited) const {
    if (visited == nullptr) {
        return 0;
    }
    for (component* child : visited->components) {
        (*visitor)(child);
    }
    return 1;
}

parser::parser() : node_index(-1), parent_id(-1), last_row_id(-1), content(nullptr) {}

parser::~parser() {
    clear();
}

int parser::wipe(_zeb_db_handle_t* handle) {
    for (const record_kind* kind : record_kinds) {
        if (!empty_table(handle, *kind)) {
            return 0;
        }
        if (kind == &memory_record) {
            leave_memory_deleted_marker();
        }
    }
    return 1;
}

int parser::init() {
    content = zeb_db_get_content_values();
    if (content == nullptr) {
        vonk_log::logErr("no memory");
        return 0;
    }
    return 1;
}

void parser::clear() {
    node_index = -1;
    parent_id = -1;
    last_row_id = -1;
    parent_stack.clear();
    if (content != nullptr) {
        zeb_db_content_clear(content);
        zeb_db_free_content_values(content);
        content = nullptr;
    }
}

int parser::parse(_zeb_db_handle_t* handle, const char* path) {
    return load_document(*this, handle, path, accept_every_document);
}

int parser::parse_component(_zeb_db_handle_t* handle, component* visited) {
    if (visited == nullptr) {
        return 0;
    }
    if (const setting_group* info = main_server_info(*visited)) {
        node_index = node_index_in(*info);
    }
    const record_kind* kind = kind_of(*visited);
    if (kind == &device_record) {
        return parse_pci_device(handle, visited);
    }
    if (kind == &bridge_record) {
        return walk_bridge(*this, handle, *visited);
    }
    if (kind == &memory_record) {
        return parse_memory(handle, visited);
    }
    if (kind == &processor_record) {
        return parse_processor(handle, visited);
    }
    return walk_children(*this, handle, *visited);
}

}  // namespace cds_parser

int parse_cds(_zeb_db_handle_t* handle, const char* path) {
    return cds_parser::load_file(handle, path, cds_parser::accept_every_document);
}
