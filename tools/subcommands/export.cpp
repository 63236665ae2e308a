// SPDX-License-Identifier: Apache-2.0

// zebdb-cds export: prints a line of JSON about each of many CDS files.

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "console/failure.h"
#include "console/output.h"
#include "console/utf8.h"
#include "export/observation.h"
#include "sources/cds_folder.h"
#include "sources/input_file.h"
#include "subcommands/command_line.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

struct export_arguments {
    std::vector<std::string> names;
    std::string server;  // empty for that of the file
    std::string at;      // empty for the time of the file
    bool redact = false;
};

void require_a_server_for_each(const export_arguments& arguments) {
    const bool has_standard_input = std::any_of(arguments.names.begin(), arguments.names.end(), is_standard_input);
    if (arguments.server.empty()) {
        if (has_standard_input) {
            throw failure("standard input has no name for its server; give one by --server");
        }
        return;
    }
    if (arguments.names.size() != 1 || is_folder(arguments.names.front())) {
        throw failure("--server names the server of one file, not of several; leave it out, or name one file alone");
    }
    if (repaired_utf8(arguments.server) != arguments.server) {
        throw failure("--server " + in_quotes(arguments.server) + " is not UTF-8");
    }
}

// Prints what the inputs hold, one after the other.
class printer {
public:
    explicit printer(const export_arguments& arguments)
        : observer_({arguments.server, time_in_option(arguments.at), arguments.redact}) {}

    /// Of a file or of the files in a folder. False when nobody reads on.
    bool print_input(const std::string& name) { return is_folder(name) ? print_folder(name) : print_file(name); }

    /// Whether nothing was refused.
    bool is_complete() const { return is_complete_; }

private:
    bool print_folder(const std::string& folder) {
        const std::vector<std::string> files = files_in(folder);
        return std::all_of(files.begin(), files.end(), [this](const std::string& file) { return print_file(file); });
    }

    std::vector<std::string> files_in(const std::string& folder) {
        try {
            std::vector<std::string> files = cds_files_in(folder);
            if (files.empty()) {
                refuse(folder, "there is no *.xml in it");
            }
            return files;
        } catch (const failure& cause) {
            refuse(folder, cause.what());
            return {};
        }
    }

    bool print_file(const std::string& name) {
        const observation seen = observe(name);
        if (seen.refusal) {
            refuse(name, *seen.refusal);
        }
        return print(observation_line(seen));
    }

    observation observe(const std::string& name) {
        try {
            return observer_.observe(name);
        } catch (const failure& cause) {
            throw failure(problem_with(name, cause.what()));
        }
    }

    void refuse(const std::string& name, const std::string& cause) {
        complain(problem_with(name, cause));
        is_complete_ = false;
    }

    static std::string problem_with(const std::string& name, const std::string& cause) {
        return "cannot export " + input_title(name) + ": " + cause;
    }

    observer observer_;
    bool is_complete_ = true;
};

int export_all(const export_arguments& arguments) {
    require_a_server_for_each(arguments);
    printer inputs(arguments);
    for (const std::string& name : arguments.names) {
        if (!inputs.print_input(name)) {
            break;
        }
    }
    return inputs.is_complete() ? status_done : status_no;
}

}  // namespace

action define_export(command_line& arguments) {
    const auto options = std::make_shared<export_arguments>();
    arguments.arguments("FILE", options->names,
                        "CDS files, and folders, which stand for the *.xml in them; - is standard input");
    arguments.text_option("--server", "NAME", options->server,
                          "The name of the server, instead of that of the file; with one file only");
    arguments.text_option("--at", "TIME", options->at,
                          "The time of what is said, as 2026-11-19T10:00:00Z, instead of that of each file");
    add_redact_flag(arguments, options->redact);
    return [options] { return export_all(*options); };
}
