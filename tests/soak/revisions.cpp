// SPDX-License-Identifier: Apache-2.0

#include "soak/revisions.h"

#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "soak/process.h"
#include "support/built.h"
#include "support/server_of_revision.h"

namespace {

// Stands for every other revision in what is printed beforehand.
constexpr int any_revision = 19'999'999;
constexpr int other_revision = 10'000'000;
constexpr std::size_t digits = 8;

struct size {
    int rows;
    std::size_t text_length;
};

constexpr size sizes[] = {{3, 0}, {200, 0}, {20, 0}, {700, 4000}, {60, 0}};

std::string with_revision(std::string text, int revision) {
    const std::string any = std::to_string(any_revision);
    for (std::size_t at = text.find(any); at != std::string::npos; at = text.find(any, at + digits)) {
        text.replace(at, digits, std::to_string(revision));
    }
    return text;
}

std::string output_of(const std::vector<std::string>& line, int status) {
    const ended_process ended = run(line);
    if (ended.status != status) {
        throw std::runtime_error(ended.command + " ended with " + std::to_string(ended.status) + ": " + ended.err);
    }
    return ended.out;
}

void load(const std::string& cds_file, const std::string& database) {
    std::ofstream("first.xml") << cds_file;
    output_of(zebdb_cds({"load", "first.xml", "--database", database}), 0);
}

}  // namespace

std::vector<std::string> zebdb_cds(std::vector<std::string> words) {
    words.insert(words.begin(), built::command);
    return words;
}

std::vector<std::string> reading_command::line(const std::string& database) const {
    std::vector<std::string> line = zebdb_cds(words);
    line.push_back(database);
    return line;
}

const std::vector<reading_command>& reading_commands() {
    static const std::vector<reading_command> all = {
        {{"show", "--format", "json", "--database"}, 0},
        {{"show", "devices", "--format", "csv", "--database"}, 0},
        {{"tree"}, 0},
        {{"tree", "--format", "json"}, 0},
        {{"diff", "--format", "json", "other.db"}, 1},
    };
    return all;
}

revisions::revisions() {
    load(server_of_revision(sizes[0].rows, other_revision), "other.db");
    nothing_ = known_server(server_of_revision(0, any_revision));
    for (const auto& [rows, text_length] : sizes) {
        servers_.push_back(known_server(server_of_revision(rows, any_revision, text_length)));
    }
}

revisions::server revisions::known_server(const std::string& cds_file) {
    server known = {cds_file, {}};
    load(cds_file, "kept.db");
    for (const reading_command& command : reading_commands()) {
        known.outputs.push_back(without_age(output_of(command.line("kept.db"), command.status)));
    }
    return known;
}

const revisions::server& revisions::server_of(int revision) const {
    return revision == none ? nothing_ : servers_[static_cast<std::size_t>(revision) % servers_.size()];
}

std::string revisions::cds_file(int revision) const {
    return with_revision(server_of(revision).cds_file, revision);
}

std::string revisions::output(const reading_command& command, int revision) const {
    const auto index = static_cast<std::size_t>(&command - reading_commands().data());
    return with_revision(server_of(revision).outputs[index], revision);
}

std::string revisions::without_age(const std::string& output) {
    return output.substr(0, output.rfind("\nLoaded "));
}

int revisions::revision_in(const std::string& output) {
    const std::string beginning = "revision 2";
    const std::size_t at = output.find(beginning);
    return at == std::string::npos ? none : std::atoi(output.substr(at + beginning.size() - 1, digits).c_str());
}
