// SPDX-License-Identifier: Apache-2.0

/// The inventories that are written, each of a revision of its own, and what the command prints of each.
#ifndef TESTS_SOAK_REVISIONS_H
#define TESTS_SOAK_REVISIONS_H

#include <string>
#include <vector>

/// The command line of zebdb-cds with those words.
std::vector<std::string> zebdb_cds(std::vector<std::string> words);

/// A way to read a database.
struct reading_command {
    std::vector<std::string> words;  ///< but for the database, which comes last
    int status;                      ///< when it is done

    std::vector<std::string> line(const std::string& database) const;
};

const std::vector<reading_command>& reading_commands();

class revisions {
public:
    /// Takes what the commands print of servers of each size from the command itself. In the working folder, where it
    /// leaves databases; throws std::runtime_error when the command fails.
    revisions();

    /// That of an inventory without a row.
    static constexpr int none = 0;
    /// Eight digits, like all that follow it.
    static constexpr int first = 20'000'000;

    /// A CDS file: of few rows, of some hundred, or of more than a transaction keeps in memory, by turns.
    std::string cds_file(int revision) const;

    /// What one of the reading commands prints of the inventory of that file, but for its last line, which says how old
    /// that is.
    std::string output(const reading_command& command, int revision) const;

    /// What was printed, but for that line.
    static std::string without_age(const std::string& output);

    /// Which inventory something tells of that was printed.
    static int revision_in(const std::string& output);

private:
    struct server {
        std::string cds_file;
        std::vector<std::string> outputs;
    };

    static server known_server(const std::string& cds_file);
    const server& server_of(int revision) const;

    server nothing_;
    std::vector<server> servers_;
};

#endif
