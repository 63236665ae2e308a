// SPDX-License-Identifier: Apache-2.0

/// Numbers as much of the world writes them, whatever locales the machine has.
#ifndef TESTS_SUPPORT_COMMA_LOCALE_H
#define TESTS_SUPPORT_COMMA_LOCALE_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <clocale>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <string>

#include "support/scratch_folder.h"

/// As long as it lives, the process has set a locale in which numbers have a decimal comma: xx_XX, which the programs
/// that it starts find, too.
class comma_locale {
public:
    comma_locale() {
        write_characters();
        std::ofstream(folder_.file("numbers")) << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\n"
                                                  "grouping 3;3\nEND LC_NUMERIC\n";
        make_locale();
        setenv("LOCPATH", std::filesystem::absolute(folder_.file("")).c_str(), 1);
        EXPECT_NE(std::setlocale(LC_NUMERIC, "xx_XX"), nullptr);
        EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    }
    ~comma_locale() {
        std::setlocale(LC_NUMERIC, "C");
        unsetenv("LOCPATH");
    }
    comma_locale(const comma_locale&) = delete;
    comma_locale& operator=(const comma_locale&) = delete;

private:
    // Of the processor that the test is compiled for, which need not be the one that localedef is of.
    static constexpr const char* byte_order =
        __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ ? "--big-endian" : "--little-endian";

    void write_characters() const {
        std::ofstream file(folder_.file("characters"));
        file << "<code_set_name> ASCII\n<comment_char> %\n<escape_char> /\n<mb_cur_min> 1\n<mb_cur_max> 1\nCHARMAP\n"
             << std::hex << std::uppercase << std::setfill('0');
        for (int character = 0; character < 128; ++character) {
            file << "<U" << std::setw(4) << character << "> /x" << std::setw(2) << character << " character\n";
        }
        file << "END CHARMAP\n";
    }

    // Not by a shell, which a test may have replaced. The status tells that the locale has nothing but numbers.
    void make_locale() const {
        const pid_t child = fork();
        if (child == 0) {
            const int silence = open("/dev/null", O_WRONLY);
            dup2(silence, STDOUT_FILENO);
            dup2(silence, STDERR_FILENO);
            execlp("localedef", "localedef", byte_order, "--no-archive", "-c", "-f", folder_.file("characters").c_str(),
                   "-i", folder_.file("numbers").c_str(), folder_.file("xx_XX").c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
        EXPECT_EQ(waitpid(child, nullptr, 0), child);
    }

    scratch_folder folder_;
};

#endif
