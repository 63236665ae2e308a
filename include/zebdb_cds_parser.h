// SPDX-License-Identifier: Apache-2.0

/// @file
/// The one header to include: the CDS element tree, the loader and the entry points.
#ifndef ZEBDB_CDS_PARSER_H
#define ZEBDB_CDS_PARSER_H

// IWYU pragma: begin_exports
#include "zebdb_cds_parser/child_slot_group.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/document.h"
#include "zebdb_cds_parser/element.h"
#include "zebdb_cds_parser/entry_points.h"
#include "zebdb_cds_parser/errors.h"
#include "zebdb_cds_parser/parser.h"
#include "zebdb_cds_parser/setting_group.h"
#include "zebdb_cds_parser/setting_node.h"
#include "zebdb_cds_parser/version.h"
// IWYU pragma: end_exports

#endif
