// SPDX-License-Identifier: Apache-2.0

// A caller that names nothing of the platform: a linker that leaves out what is not named leaves that out, and the
// library has to find it all the same.

#include <zebdb_cds_parser.h>

#include <cstdio>

int main() {
    const cds_parser::component component(0);
    std::printf("%s starts without naming the platform\n", zebdb_cds_parser_version());
    return component.has_setting_group("cpu_info") ? 1 : 0;
}
