// SPDX-License-Identifier: Apache-2.0

#include "subcommands/run.h"

#include <CLI/CLI.hpp>
#include <string>
#include <utility>
#include <vector>

#include <zebdb_cds_parser/version.h>

#include "console/output.h"
#include "subcommands/command_line.h"
#include "subcommands/subcommand.h"

namespace {

constexpr const char* purpose = "Loads CDS hardware descriptions into an inventory database and shows what it holds.";
constexpr const char* statuses = "Exit status: 0 done, 1 the answer is no, 2 there is none (the message says why).";

int refuse(const CLI::App& app, const CLI::Error& error) {
    const auto named = app.get_subcommands();
    if (named.empty() && app.remaining_size() != 0 && app.remaining().front().compare(0, 1, "-") != 0) {
        complain("there is no subcommand " + in_quotes(app.remaining().front()) + "; see 'zebdb-cds --help'");
    } else {
        const std::string help = named.empty() ? app.get_name() : app.get_name() + ' ' + named.front()->get_name();
        complain(error.what() + ("; see '" + help + " --help'"));
    }
    return status_failed;
}

}  // namespace

int run(int argc, char** argv) {
    CLI::App app(purpose, "zebdb-cds");
    app.set_version_flag("--version", "zebdb-cds " ZEBDB_CDS_PARSER_VERSION_STRING, "Print the version and exit");
    app.footer(statuses);
    app.require_subcommand(0, 1);  // the name of a file may be that of a subcommand

    std::vector<std::pair<CLI::App*, action>> actions;
    for (const subcommand& each : subcommands()) {
        CLI::App* named = app.add_subcommand(each.name, each.purpose);
        command_line arguments(*named);
        actions.emplace_back(named, each.define(arguments));
    }

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        print(app.help());
        return status_done;
    } catch (const CLI::CallForVersion& version) {
        print(std::string(version.what()) + '\n');
        return status_done;
    } catch (const CLI::Error& error) {
        return refuse(app, error);
    }

    for (const auto& [named, act] : actions) {
        if (named->parsed()) {
            return act();
        }
    }
    write_error(app.help());
    return status_failed;
}
