// SPDX-License-Identifier: Apache-2.0

#include "sources/input_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <thread>

#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "sources/cds_file.h"
#include "support/cds_text.h"
#include "support/scratch_file.h"
#include "support/scratch_folder.h"

namespace {

std::string all_of(std::istream& in) {
    return {std::istreambuf_iterator<char>(in), {}};
}

template <class Action>
std::string refusal_of(Action action) {
    try {
        action();
    } catch (const failure& cause) {
        return cause.what();
    }
    return "none";
}

std::string refusal_of_file(const std::string& name) {
    return refusal_of([&name] { const input_file input(name); });
}

}  // namespace

TEST(InputFile, OnDiskIsOpenedByItsPathAsOftenAsOneLikes) {
    const scratch_file file("text");
    const input_file input(file.path());
    EXPECT_EQ(input.path(), file.path());
    EXPECT_TRUE(input.is_on_disk());
    EXPECT_EQ(all_of(*input.read_again()), "text");
    EXPECT_EQ(all_of(*input.read_again()), "text");
    EXPECT_EQ(input.status().st_size, 4);
    EXPECT_EQ(input.read_error(), 0);
}

TEST(InputFile, ThatIsAPipeIsReadOnceAndKeptForAnotherLook) {
    const scratch_folder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string text(200'000, 'x');
    std::thread writer([&path, &text] { std::ofstream(path) << text; });
    const input_file input(path);
    EXPECT_FALSE(input.is_on_disk());
    std::ifstream in(input.path());
    EXPECT_TRUE(all_of(in) == text);
    writer.join();
    EXPECT_TRUE(all_of(*input.read_again()) == text);
    EXPECT_EQ(input.read_error(), 0);
}

TEST(InputFile, ThatIsAPipeIsNoDocumentWhenItGoesOnWithoutAnEnd) {
    const scratch_folder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string text = cds_file("") + std::string(100'000, ' ');
    std::thread writer([&path, &text] { std::ofstream(path) << text; });
    const input_file input(path, 99'000);
    std::ifstream in(input.path());
    cds_parser::document document;
    EXPECT_EQ(refusal_of([&] { read_cds(in, input, document); }), "File too large");
    writer.join();
}

TEST(InputFile, ThatIsAPipeMayBeAsLongAsIsRead) {
    const scratch_folder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string text = cds_file("");
    std::thread writer([&path, &text] { std::ofstream(path) << text; });
    const input_file input(path, text.size());
    std::ifstream in(input.path());
    cds_parser::document document;
    EXPECT_EQ(refusal_of([&] { read_cds(in, input, document); }), "none");
    writer.join();
}

TEST(InputFile, IsRefusedWhenItIsPlainThatItCannotBeRead) {
    EXPECT_EQ(refusal_of_file("missing"), "No such file or directory");
    EXPECT_EQ(refusal_of_file("."), "Is a directory");
    EXPECT_EQ(refusal_of_file(scratch_file("").path()), "the file is empty");
}

TEST(InputTitle, IsTheNameInQuotesOrStandardInput) {
    EXPECT_EQ(input_title("a\tb.xml"), "'a\\tb.xml'");
    EXPECT_EQ(input_title("-"), "standard input");
}
