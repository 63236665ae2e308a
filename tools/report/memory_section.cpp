// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "console/utf8.h"
#include "report/page_template.h"
#include "report/part_json.h"
#include "report/reported_inventory.h"
#include "report/sections.h"
#include "rows/column_units.h"
#include "rows/decoded_text.h"
#include "rows/kinds.h"
#include "rows/row_text.h"
#include "rows/table.h"
#include "topology/topology_phrases.h"

using nlohmann::json;

namespace {

// Sockets beyond these are folded.
constexpr std::size_t most_open_sockets = 16;

std::string text_of(const inventory_row& row, const char* column) {
    return stripped(decoded_text(row.kind(), column, row[column]));
}

// What a locator says of the socket, as "CPU 1" in "CPU 1 DIMM 3", with one blank for several; empty for nothing. Such
// a name stands at the start of a locator.
std::string socket_in(const std::string& locator) {
    constexpr std::size_t most_characters = 64;
    static const std::regex form("(?:^|[/ _])((?:processor|proc|cpu|socket|p)[ _-]*[0-9]+)(?![0-9])",
                                 std::regex::icase);
    static const std::regex blanks("[ _]+");
    const std::string start = first_characters(locator, most_characters);
    std::smatch found;
    return std::regex_search(start, found, form) ? std::regex_replace(found.str(1), blanks, " ") : "";
}

std::string socket_of(const inventory_row& row) {
    const std::string in_locator = socket_in(text_of(row, "DevLocator"));
    return in_locator.empty() ? socket_in(text_of(row, "BankLocator")) : in_locator;
}

std::string bare(const std::string& name) {
    std::string letters;
    for (const char character : name) {
        if (std::isalnum(static_cast<unsigned char>(character)) != 0) {
            letters += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
        }
    }
    return letters;
}

// The processor of that name at that server, or its only one where there is no name.
std::string processor_in(const inventory_table& processors, const inventory_value& node, const std::string& socket) {
    std::vector<std::string> here;
    for (std::size_t place = 0; place < processors.rows.size(); ++place) {
        const inventory_row processor(processors, place);
        const std::string name = text_of(processor, "Socket");
        if (processor["NodeIndex"] == node && (socket.empty() || bare(name) == bare(socket))) {
            const std::string version = text_of(processor, "Version");
            here.push_back(name);
            here.back() += version.empty() ? "" : ", " + version;
        }
    }
    return here.size() == 1 ? here.front() : "";
}

bool is_filled(const inventory_row& row) {
    return number_in(row["MemSize"]).value_or(0) != 0;
}

json slot_json(const reported_inventory& reported, const inventory_row& row) {
    json slot = part_json(reported, row);
    slot["name"] = text_of(row, "DevLocator");
    slot["bank"] = text_of(row, "BankLocator");
    slot["filled"] = is_filled(row);
    if (is_filled(row)) {
        slot["size"] = text_of(row, "MemSize");
        slot["type"] = text_of(row, "MemType");
        slot["speed"] = text_of(row, "ClockSpeed");
        slot["persistent"] = is_put(row["Capacity"]);
    }
    return slot;
}

struct socket_group {
    std::string server;
    std::string name;
    std::string processor;
    std::vector<inventory_row> slots;
};

std::vector<socket_group> groups_of(const inventory_table& memory, const inventory_table& processors) {
    std::vector<socket_group> groups;
    for (std::size_t place = 0; place < memory.rows.size(); ++place) {
        const inventory_row row(memory, place);
        const std::string server = node_text(row);
        const std::string socket = socket_of(row);
        auto group = std::find_if(groups.begin(), groups.end(), [&](const socket_group& each) {
            return each.server == server && each.name == socket;
        });
        if (group == groups.end()) {
            group =
                groups.insert(groups.end(), {server, socket, processor_in(processors, row["NodeIndex"], socket), {}});
        }
        group->slots.push_back(row);
    }
    return groups;
}

std::string title_of(const socket_group& group) {
    if (!group.processor.empty()) {
        return group.processor;
    }
    return group.name.empty() ? "Slots whose names do not tell the socket" : group.name;
}

std::string content_of(const socket_group& group) {
    std::uint64_t mebibytes = 0;
    for (const inventory_row& row : group.slots) {
        mebibytes += number_in(row["MemSize"]).value_or(0);
    }
    const auto count = static_cast<std::size_t>(std::count_if(group.slots.begin(), group.slots.end(), is_filled));
    return column_units::mebibytes(mebibytes) + ", " + std::to_string(count) + " of " +
           counted(group.slots.size(), "slot", "slots") + " filled";
}

}  // namespace

std::string memory_section(const reported_inventory& reported) {
    const std::vector<socket_group> groups =
        groups_of(reported.labelled_table(kinds::memory), reported.labelled_table(kinds::processors));
    json sockets = json::array();
    for (const socket_group& group : groups) {
        json slots = json::array();
        std::transform(group.slots.begin(), group.slots.end(), std::back_inserter(slots),
                       [&reported](const inventory_row& row) { return slot_json(reported, row); });
        sockets.push_back({{"server", group.server},
                           {"title", title_of(group)},
                           {"content", content_of(group)},
                           {"open", groups.size() <= most_open_sockets},
                           {"slots", std::move(slots)}});
    }
    return filled("memory.html", {{"sockets", sockets}});
}
