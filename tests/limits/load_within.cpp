// SPDX-License-Identifier: Apache-2.0

// usage: load_within MEGABYTES FILE
//
// Loads a CDS file into a database in memory while the process may take no more than so much address space besides what
// it has once its libraries are there and the database is open. Says how much it took at most.

#include <sys/resource.h>

#include <zeb_db_workstation.h>
#include <zebdb_cds_parser.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

// A line of /proc/self/status, "VmSize" say, in kilobytes.
unsigned long kilobytes_of(const std::string& name) {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != name + ':') {
    }
    unsigned long kilobytes = 0;
    status >> kilobytes;
    return kilobytes;
}

bool limit_address_space(unsigned long kilobytes) {
    const rlimit limit = {kilobytes * 1024, kilobytes * 1024};
    return setrlimit(RLIMIT_AS, &limit) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    _zeb_db_handle_t* database = nullptr;
    if (argc != 3 || zeb_db_open(":memory:", &database) != 0) {
        std::fputs("usage: load_within MEGABYTES FILE\n", stderr);
        return 2;
    }
    const unsigned long before = kilobytes_of("VmSize");
    if (before == 0 || !limit_address_space(before + std::strtoul(argv[1], nullptr, 10) * 1024)) {
        std::fputs("the address space cannot be limited\n", stderr);
        return 2;
    }
    const int result = parse_cds(database, argv[2]);
    std::printf("parse_cds() returned %d and took %lu kB of address space\n", result, kilobytes_of("VmPeak") - before);
    zeb_db_close(database);
    return result == 0 ? 0 : 1;
}
