// The command zebdb-cds: reads the command line and runs the subcommand that it names.

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <utility>
#include <vector>

#include "failure.h"
#include "output.h"
#include "subcommand.h"

namespace {

constexpr subcommand subcommands[] = {
    {"load", "Replace the inventory by what a CDS file describes", define_load},
    {"show", "Print the inventory", define_show},
    {"tree", "Print the PCI bridges and functions as a tree", define_tree},
    {"explain", "Tell what became of every component of a CDS file, and why", define_explain},
    {"dump", "Print the normalised text of a CDS file", define_dump},
    {"diff", "Print what differs between two inventories", define_diff},
    {"refresh", "Take the inventory to what a CDS file describes and say what changed", define_refresh},
    {"check", "Say whether the inventory may have changed since the last refresh", define_check},
    {"save-digest", "Save the digests that check compares with", define_save_digest},
    {"bmc-address", "Record and print the PCI address of the controller's own bridge", define_bmc_address},
};

constexpr const char* purpose = "Loads CDS hardware descriptions into an inventory database and shows what it holds.";
constexpr const char* statuses = "Exit status: 0 done, 1 the answer is no, 2 there is none (the message says why).";

// A descriptor that the caller closed would be given to the next file opened, and messages would be written into it.
// What is opened here instead refuses what the closed one would have refused.
void occupy_standard_descriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) == -1) {
            ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

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

int run(int argc, char** argv) {
    CLI::App app(purpose, "zebdb-cds");
    app.set_version_flag("--version", "zebdb-cds " ZEBDB_VERSION, "Print the version and exit");
    app.footer(statuses);
    app.require_subcommand(0, 1);  // the name of a file may be that of a subcommand

    std::vector<std::pair<CLI::App*, action>> actions;
    for (const subcommand& each : subcommands) {
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

}  // namespace

int main(int argc, char** argv) {
    occupy_standard_descriptors();
    std::signal(SIGPIPE, SIG_IGN);  // a reader that has seen enough must not cut a load short
    std::setlocale(LC_CTYPE, "");
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        complain("out of memory");
        return status_failed;
    } catch (const std::exception& problem) {
        complain(problem.what());
        return status_failed;
    }
}
