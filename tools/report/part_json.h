// SPDX-License-Identifier: Apache-2.0

/// What the templates fill in for one part of an inventory.
#ifndef TOOLS_REPORT_PART_JSON_H
#define TOOLS_REPORT_PART_JSON_H

#include <cstddef>
#include <string>

#include <nlohmann/json.hpp>

#include "explanation/explanation.h"
#include "report/anchors.h"
#include "report/change_marks.h"
#include "report/reported_inventory.h"
#include "rows/table.h"

/// The names of an element: "id", "href" and "place".
nlohmann::json anchor_json(const anchor& named);

/// "word" and "mark".
nlohmann::json mark_json(const change_mark& mark);

/// These, the part's "kind", its "change" with "word" and "mark" or null, and the markup of all its "values".
/// `row` is one of a labelled table.
nlohmann::json part_json(const reported_inventory& reported, const inventory_row& row);

/// The same of a component that was left out, with its "title", "path", "code", "reasons" and "why" in short. By its
/// place among the explanations.
nlohmann::json left_out_json(const reported_inventory& reported, std::size_t place);

/// As in "left out: has no location".
std::string why_text(const explanation& told);

/// As in "3 slots".
std::string counted(std::size_t count, const char* one, const char* many);

#endif
