// SPDX-License-Identifier: Apache-2.0

/// @file
/// The loader: walks a CDS tree and writes one inventory row a processor, memory device, PCI bridge and PCI function.
#ifndef ZEBDB_CDS_PARSER_PARSER_H
#define ZEBDB_CDS_PARSER_PARSER_H

#include <cstdint>
#include <map>
#include <vector>

#include <zeb_db.h>

#include "zebdb_cds_parser/export.h"

namespace cds_parser {

class child_slot_group;
class component;

/// The state of one walk; parse_cds() makes one for each load. Where a member takes a handle, the handle stays the
/// caller's, and so does any transaction: the loader neither begins nor ends one.
class ZEBDB_CDS_PARSER_EXPORT parser {
public:
    /// Hands each component of a walk to its parser and counts the failures.
    struct component_visitor {
        _zeb_db_handle_t* handle;  ///< where the rows go
        parser* owner;             ///< who writes them
        unsigned failures = 0;     ///< how many components failed

        /// The result of parse_component(); a null component or a result of 0 counts as a failure and gives 0.
        int operator()(component* visited);
    };

    /// Hands each component of a slot group to a component visitor.
    struct child_slot_group_visitor {
        component_visitor* visitor;  ///< who gets the components

        /// 0 for a null group, else 1, whatever its components gave.
        int operator()(child_slot_group* visited) const;
    };

    /// A walk that has not begun.
    parser();
    /// Does what clear() does.
    ~parser();
    parser(const parser&) = delete;
    parser& operator=(const parser&) = delete;

    /// Deletes every row of the four inventory tables and leaves the marker file "/tmp/.dmdb_memory_deleted_flag".
    /// 1, or 0 with a logged error at the first table that cannot be emptied.
    int wipe(_zeb_db_handle_t* handle);

    /// Takes the column-value buffer of the walk. 1, or 0 with a logged error when memory is out.
    int init();

    /// Releases the buffer and resets the walk; the device keys stay.
    void clear();

    /// Reads the CDS file at `path` and writes the rows of everything in it. 1, or 0 with a logged error when the file
    /// was refused or at least one row could not be written; the rows of all other components are written all the same.
    int parse(_zeb_db_handle_t* handle, const char* path);

    /// Writes the rows of one component and everything below it. 1, or 0 when one of them failed or it is null.
    int parse_component(_zeb_db_handle_t* handle, component* visited);

    /// Writes one row of a component that carries "cpu_info". As with each writer of records, nonzero is success, which
    /// includes a component that has nothing to record; 0 means that the group is missing or, with a logged line, that
    /// the row could not be inserted. Each needs the buffer of init().
    int parse_processor(_zeb_db_handle_t* handle, component* visited);

    /// Writes one row of a component that carries "memory_info", as parse_processor() does.
    int parse_memory(_zeb_db_handle_t* handle, component* visited);

    /// Writes one row of a component that carries "pci_bridge_info", as parse_processor() does.
    int parse_pci_bridge(_zeb_db_handle_t* handle, component* visited);

    /// Writes one row of a component that carries "pci_device_info", as parse_processor() does.
    int parse_pci_device(_zeb_db_handle_t* handle, component* visited);

    /// Memory arrays leave no rows: does nothing and returns 1.
    int parse_memory_array(_zeb_db_handle_t* handle, component* visited);

    /// Index of the main server that was met last, -1 before the first one.
    std::int32_t node_index;
    /// Row id of the bridge whose subtree is being walked, -1 outside every bridge.
    std::int64_t parent_id;
    /// Row id of the last insert; -1 after a bridge or function without a usable address.
    std::int64_t last_row_id;
    /// The `parent_id` to go back to, one for each bridge on the path to the component being walked.
    std::vector<std::int64_t> parent_stack;
    /// The column-value buffer of the walk; null outside init() and clear().
    zeb_db_content_values_t* content;
    /// Device keys of the one-row-a-card GPUs already written, each with its bus number.
    std::map<std::uint32_t, std::int32_t> device_keys;
};

}  // namespace cds_parser

#endif
