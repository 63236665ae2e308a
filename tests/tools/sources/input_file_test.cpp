// SPDX-License-Identifier: Apache-2.0

#include "sources/input_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include <zebdb_cds_parser.h>

#include "console/failure.h"
#include "sources/cds_file.h"
#include "support/cds_text.h"
#include "support/replaced_stdin.h"
#include "support/scratch_file.h"
#include "support/scratch_folder.h"

namespace fs = std::filesystem;

namespace {

std::string all_of(std::istream& in) {
    return {std::istreambuf_iterator<char>(in), {}};
}

// As gzip would pack it.
std::string packed(const std::string& text) {
    constexpr int gzip_format = 16 + MAX_WBITS;
    z_stream stream = {};
    EXPECT_EQ(deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, gzip_format, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY), Z_OK);
    std::string bytes(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    bytes.resize(stream.total_out);
    deflateEnd(&stream);
    return bytes;
}

// What is wrong with a file of that content when it is read to its end.
std::string read_error_of(const std::string& content) {
    const scratch_file file(content);
    const input_file input(file.path());
    std::ifstream in(input.path());
    all_of(in);
    return input.read_error();
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

// Waits, for some seconds at most, until the copying has ended that other inputs have left behind.
void await_end_of_copying() {
    const auto threads = [] { return std::distance(fs::directory_iterator("/proc/self/task"), {}); };
    for (int i = 0; i < 1000 && threads() > 1; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

int lowest_free_descriptor() {
    const int lowest = dup(STDIN_FILENO);
    close(lowest);
    return lowest;
}

// Allows no descriptors but those below as long as it lives.
class descriptors_below {
public:
    explicit descriptors_below(int limit) {
        EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &usual_), 0);
        const rlimit few = {static_cast<rlim_t>(limit), usual_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    }
    ~descriptors_below() { setrlimit(RLIMIT_NOFILE, &usual_); }
    descriptors_below(const descriptors_below&) = delete;
    descriptors_below& operator=(const descriptors_below&) = delete;

private:
    rlimit usual_ = {};
};

}  // namespace

TEST(InputFile, OnDiskIsOpenedByItsPathAsOftenAsOneLikes) {
    const scratch_file file("text");
    const input_file input(file.path());
    EXPECT_EQ(input.path(), file.path());
    EXPECT_TRUE(input.is_on_disk());
    EXPECT_EQ(all_of(*input.read_again()), "text");
    EXPECT_EQ(all_of(*input.read_again()), "text");
    EXPECT_EQ(input.status().st_size, 4);
    EXPECT_EQ(input.read_error(), "");
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
    unlink(path.c_str());
    EXPECT_TRUE(all_of(*input.read_as_it_lies()) == text);
    EXPECT_EQ(input.read_error(), "");
}

TEST(InputFile, ThatIsPackedIsUnpacked) {
    const scratch_file file(packed(std::string(200'000, 'x')));
    const input_file input(file.path());
    EXPECT_FALSE(input.is_on_disk());
    std::ifstream in(input.path());
    EXPECT_TRUE(all_of(in) == std::string(200'000, 'x'));
    EXPECT_TRUE(all_of(*input.read_again()) == std::string(200'000, 'x'));
    EXPECT_EQ(input.read_error(), "");
}

TEST(InputFile, ThatIsPackedMayHaveSeveralParts) {
    const scratch_file file(packed("first ") + packed("second"));
    const input_file input(file.path());
    std::ifstream in(input.path());
    EXPECT_EQ(all_of(in), "first second");
}

TEST(InputFile, ThatIsPackedAndLacksItsEndIsSaidToDoSo) {
    std::string content = packed(std::string(200'000, 'x'));
    content.resize(content.size() / 2);
    EXPECT_EQ(read_error_of(content), "it was packed by gzip and lacks its end");
}

TEST(InputFile, ThatIsPackedAndDamagedIsSaidToBeSo) {
    std::string content = packed("a text that is long enough to be damaged in its middle");
    content[content.size() / 2] = static_cast<char>(~content[content.size() / 2]);
    EXPECT_EQ(read_error_of(content), "it was packed by gzip and is damaged");
}

TEST(InputFile, ThatIsPackedTwiceIsNoDocumentAndSaidToBeSo) {
    const scratch_file file(packed(packed(cds_file(""))));
    const input_file input(file.path());
    std::ifstream in(input.path());
    cds_parser::document document;
    EXPECT_EQ(refusal_of([&] { read_cds(in, input, document); }),
              "it was packed by gzip twice; unpack it with gzip -d");
}

TEST(InputFile, ThatIsPackedMayNotGrowWithoutBound) {
    EXPECT_EQ(read_error_of(packed(std::string((std::size_t{256} << 20) + 1, '\0'))),
              "it was packed by gzip and holds more than 256 MiB");
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
    EXPECT_EQ(refusal_of([&] { read_cds(in, input, document); }), "it holds more than 256 MiB");
    writer.join();
}

TEST(InputFile, ThatIsPackedIsReadNoFurtherThanAllowed) {
    const scratch_file file(packed(cds_file("")));
    const input_file input(file.path(), 10);
    EXPECT_EQ(refusal_of([&input] { input.read_all(); }), "it was packed by gzip and holds more than 256 MiB");
    EXPECT_EQ(input_file::most_bytes, std::size_t{268'435'456});
}

TEST(InputFile, WithoutAnEndIsReadNoFurtherThanAllowed) {
    const input_file input("/dev/zero", 1000);
    EXPECT_EQ(refusal_of([&input] { input.read_all(); }), "it holds more than 256 MiB");
}

TEST(InputFile, ThatIsStandardInputIsReadAsWhateverItIs) {
    const scratch_file file("text");
    const replaced_stdin standard_input(file.path());
    const input_file input("-");
    EXPECT_FALSE(input.is_on_disk());
    EXPECT_EQ(input.status().st_size, 4);
    EXPECT_EQ(input.read_all(), "text");
}

TEST(InputFile, ThatIsStandardInputHasToBeOpen) {
    const replaced_stdin standard_input(nullptr);
    EXPECT_EQ(refusal_of_file("-"), "it is closed");
}

TEST(InputFile, NeedsADescriptorForItselfAndTwoForAPipe) {
    await_end_of_copying();
    const int first_free = lowest_free_descriptor();
    for (const int left : {0, 1, 2}) {
        const descriptors_below few(first_free + left);
        EXPECT_EQ(refusal_of_file("/dev/null"), "Too many open files") << left;
    }
}

TEST(InputFile, LeavesNoDescriptorOpen) {
    const scratch_file plain("text");
    const scratch_file other(packed("text"));
    await_end_of_copying();
    const int before = lowest_free_descriptor();
    {
        const input_file input(plain.path());
        EXPECT_EQ(lowest_free_descriptor(), before);
    }
    EXPECT_EQ(lowest_free_descriptor(), before);
    EXPECT_EQ(input_file(other.path()).read_all(), "text");
    EXPECT_EQ(lowest_free_descriptor(), before);
    const replaced_stdin standard_input(plain.path());
    const int with_standard_input = lowest_free_descriptor();
    EXPECT_EQ(input_file("-").read_all(), "text");
    EXPECT_EQ(lowest_free_descriptor(), with_standard_input);
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

TEST(InputFile, ThatIsPackedKeepsNothingOpen) {
    const scratch_file file(packed(std::string(1'000'000, 'x')));
    std::string path;
    {
        const input_file input(file.path());
        path = input.path();
    }
    EXPECT_FALSE(std::ifstream(path).is_open());
}

TEST(InputFile, IsReadWhole) {
    const std::string text(200'000, 'x');
    const scratch_file plain(text);
    const scratch_file other(packed(text));
    EXPECT_TRUE(input_file(plain.path()).read_all() == text);
    EXPECT_TRUE(input_file(other.path()).read_all() == text);
}

TEST(InputFile, ThatCannotBeReadWholeIsAFailure) {
    const std::string bytes = packed("text");
    const scratch_file file(bytes.substr(0, bytes.size() - 1));
    EXPECT_EQ(refusal_of([&file] { input_file(file.path()).read_all(); }), "it was packed by gzip and lacks its end");
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
