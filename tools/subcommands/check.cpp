// zebdb-cds check: says whether the inventory may have changed since the last refresh, and why.

#include <cstdlib>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>

#include <zebdb_cds_parser.h>

#include "change_detection/private_view.h"
#include "change_detection/service.h"
#include "change_detection/shell_path.h"
#include "console/failure.h"
#include "console/output.h"
#include "inventory/function_keys.h"
#include "sources/database_file.h"
#include "sources/library_log.h"
#include "subcommands/options.h"
#include "subcommands/subcommand.h"

namespace {

struct check_options {
    std::string first;
    std::string second;
    std::string database;
    std::string root;
};

std::string cause_of_failure(const library_log& log) {
    if (log.has_line("check_file_digest: open ")) {
        return "a file has no saved digest; save it with 'zebdb-cds save-digest'";
    }
    const std::string cause = log.cause();
    return cause.empty()
               ? std::string(adapter_function_keys.file) + " cannot be read; write it with 'zebdb-cds refresh'"
               : with_advice(cause);
}

std::string changed_file(const check_options& options, const library_log& log) {
    for (const std::string& path : {options.first, options.second}) {
        if (log.has_line("check_file_digest: " + path + " digest [")) {
            return "  '" + path + "' differs from its saved digest\n";
        }
    }
    return "";
}

std::string pending_firmware() {
    zebdb_pldm_firmware_pending_list pending = {0, nullptr};
    if (zebdb_get_pldm_firmware_pending_list(&pending) != 0 || pending.count == 0) {
        return "";
    }
    std::free(pending.entries);
    return "  firmware is pending: " + std::to_string(pending.count) +
           (pending.count == 1 ? " update\n" : " updates\n");
}

std::string key_text(std::uint32_t key) {
    std::ostringstream text;
    text << "0x" << std::hex << std::setfill('0') << std::setw(8) << key << " (" << std::setw(4) << (key >> 24) << ':'
         << std::setw(2) << ((key >> 16) & 0xFF) << ':' << std::setw(2) << ((key >> 8) & 0xFF) << '.' << (key & 0xFF)
         << ')';
    return text.str();
}

std::string vanished_key(_zeb_db_handle_t* handle, const function_key_set& set) {
    function_key_list present;
    function_key_list saved;
    if (read_fkeys_fromDb(handle, present, set.table, set.column) != 0 || read_fkeys_fromFile(set.file, saved) != 0) {
        return "";
    }
    const auto key = first_vanished_key(saved, present);
    return key ? "  function key " + key_text(*key) + " of " + set.file + " has vanished from " + set.table + "\n" : "";
}

std::string reasons(const check_options& options, const library_log& log) {
    std::string file = changed_file(options, log);
    if (!file.empty()) {
        return file;
    }
    _zeb_db_handle_t* handle = get_dmdb_handle();
    return pending_firmware() + vanished_key(handle, pci_function_keys) + vanished_key(handle, adapter_function_keys);
}

int check(const check_options& options) {
    enter_private_view(options.root);
    for (const std::string& path : {options.first, options.second}) {
        require_shell_path(path, longest_path_to_check);
    }
    require_database_file(options.database);
    open_service(options.database);

    const library_log log;
    int changed = 0;
    if (check_pci(options.first.c_str(), options.second.c_str(), &changed) != 0) {
        throw failure("cannot tell whether the inventory changed: " + cause_of_failure(log));
    }
    print(changed == 0 ? "unchanged\n" : "changed\n" + reasons(options, log));
    return changed == 0 ? status_done : status_no;
}

}  // namespace

action define_check(command_line& arguments) {
    const auto options = std::make_shared<check_options>();
    arguments.argument("FIRST", options->first, "The first file, the CDS file as a rule");
    arguments.argument("SECOND", options->second, "The second file");
    add_database_option(arguments, options->database);
    add_root_option(arguments, options->root);
    return [options] { return check(*options); };
}
