// SPDX-License-Identifier: Apache-2.0

// A load touches its marker file through the shell. That is part of its work and is done here as well, but in the
// working directory: a benchmark leaves nothing in /tmp.

#include <dlfcn.h>

#include <cstdlib>
#include <string>

extern "C" int system(const char* command) {
    static const auto run = reinterpret_cast<int (*)(const char*)>(dlsym(RTLD_NEXT, "system"));
    std::string here = command;
    const std::string folder = "/tmp/";
    here.replace(here.find(folder), folder.size(), "./");
    return run(here.c_str());
}
