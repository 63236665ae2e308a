// SPDX-License-Identifier: Apache-2.0

/// What pages are about, of rows or components that a test writes.
#ifndef TESTS_TOOLS_REPORT_REPORTED_H
#define TESTS_TOOLS_REPORT_REPORTED_H

#include <algorithm>
#include <iterator>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <zebdb_cds_parser.h>

#include "difference/difference.h"
#include "explanation/explanation.h"
#include "report/anchors.h"
#include "report/change_marks.h"
#include "report/report.h"
#include "report/reported_inventory.h"
#include "report/sections.h"
#include "rows/kinds.h"
#include "sources/memory_inventory.h"
#include "sources/open_inventory.h"
#include "support/cds_hardware.h"
#include "topology/pci_labels.h"
#include "topology/pci_names.h"

/// One table of each kind, without rows where none is given.
inline std::vector<inventory_table> of_all_kinds(const std::vector<inventory_table>& given) {
    std::vector<inventory_table> all;
    all.reserve(std::size(kinds::all));
    for (const inventory_kind* kind : kinds::all) {
        const auto found = std::find_if(given.begin(), given.end(),
                                        [kind](const inventory_table& table) { return table.kind == kind; });
        all.push_back(found == given.end() ? inventory_table{kind, {}, {}} : *found);
    }
    return all;
}

/// A database of these rows.
inline reported_inventory reported_rows(const std::vector<inventory_table>& given,
                                        std::unique_ptr<older_inventory> older = nullptr) {
    std::vector<inventory_table> tables = of_all_kinds(given);
    std::vector<inventory_table> labelled = tables;
    pci_names names;
    for (inventory_table& table : labelled) {
        add_pci_labels(table, names);
    }
    anchors ids(tables, {}, ids_of_the_page());
    change_marks marks(older ? &older->compared : nullptr);
    return {{{"rows.db", 20480, "d1d1"}, std::nullopt},
            std::move(tables),
            std::move(labelled),
            false,
            {},
            std::move(older),
            std::move(ids),
            std::move(marks)};
}

/// A CDS file of no rows, of whose components this is told.
inline reported_inventory reported_components(const std::vector<explanation>& explanations) {
    reported_inventory reported = reported_rows({});
    reported.is_explained = true;
    reported.explanations = explanations;
    reported.names = anchors(reported.tables, explanations, ids_of_the_page());
    return reported;
}

/// A database of these rows with what has changed since older ones.
inline reported_inventory reported_rows_since(const std::vector<inventory_table>& older,
                                              const std::vector<inventory_table>& given) {
    return reported_rows(
        given, std::make_unique<older_inventory>(older_inventory{{{"older.db", 16384, "d0d0"}, std::nullopt},
                                                                 compare(of_all_kinds(older), of_all_kinds(given))}));
}

/// A CDS file with these components.
inline opened_source opened_components(const std::string& components, const std::string& name) {
    auto document = std::make_unique<cds_parser::document>();
    std::istringstream in(cds_file(components));
    document->parse(in);
    inventory rows = load_into_memory(*document, name);
    return {std::move(rows), std::move(document), {name, 7, "f0f0"}};
}

inline constexpr std::time_t time_of_pages = 1795082400;

inline std::string page_about(const std::string& components, bool redact = false) {
    opened_source shown = opened_components(components, "shown.xml");
    return report_page(shown, nullptr, {time_of_pages, redact});
}

inline std::string page_about_changes(const std::string& older, const std::string& components, bool redact = false) {
    opened_source shown = opened_components(components, "shown.xml");
    opened_source old = opened_components(older, "older.xml");
    return report_page(shown, &old, {time_of_pages, redact});
}

/// What stands from the one text up to the other; empty where the first is not there.
inline std::string part_of_page(const std::string& page, const std::string& first, const std::string& last) {
    const std::size_t begin = page.find(first);
    return begin == std::string::npos ? "" : page.substr(begin, page.find(last, begin) - begin);
}

inline std::string section_of_page(const std::string& page, const std::string& id) {
    return part_of_page(page, "<section id=\"section-" + id + "\"", "</section>");
}

/// What the groups of the pattern match, each time that it does.
inline std::vector<std::string> found_in(const std::string& page, const std::string& pattern) {
    const std::regex form(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator each(page.begin(), page.end(), form), end; each != end; ++each) {
        std::string groups;
        for (std::size_t i = 1; i < each->size(); ++i) {
            groups += (i == 1 ? "" : " | ") + each->str(i);
        }
        found.push_back(groups);
    }
    return found;
}

#endif
