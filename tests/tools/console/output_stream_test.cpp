// SPDX-License-Identifier: Apache-2.0

#include "console/output_stream.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>

#include "support/scratch_folder.h"

namespace {

constexpr std::size_t block_size = 65536;

/// As long as it lives, standard output is a file of its own.
class output_in_file {
public:
    output_in_file() : usual_(dup(STDOUT_FILENO)) {
        std::FILE* file = std::fopen(path_.c_str(), "w");
        dup2(fileno(file), STDOUT_FILENO);
        std::fclose(file);
    }
    ~output_in_file() {
        dup2(usual_, STDOUT_FILENO);
        close(usual_);
    }
    output_in_file(const output_in_file&) = delete;
    output_in_file& operator=(const output_in_file&) = delete;

    std::string text() const {
        std::ifstream file(path_);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    scratch_folder folder_;
    std::string path_ = folder_.file("output");
    int usual_;
};

class opened_buffer : public output_buffer {
public:
    using output_buffer::overflow;
};

std::string counted(std::size_t size) {
    std::string text;
    for (std::size_t i = 0; text.size() < size; ++i) {
        text += std::to_string(i);
    }
    return text.substr(0, size);
}

}  // namespace

TEST(OutputBuffer, PrintsWhatIsLeftAtTheEnd) {
    const output_in_file printed;
    output_buffer buffer;
    std::ostream out(&buffer);
    out << "a " << 1 << std::flush << " text";
    EXPECT_EQ(printed.text(), "");
    buffer.finish();
    EXPECT_EQ(printed.text(), "a 1 text");
}

TEST(OutputBuffer, PrintsNothingTwice) {
    const output_in_file printed;
    output_buffer buffer;
    std::ostream out(&buffer);
    out << "a";
    buffer.finish();
    buffer.finish();
    out << "b";
    buffer.finish();
    EXPECT_EQ(printed.text(), "ab");
}

TEST(OutputBuffer, PrintsBlocks) {
    const output_in_file printed;
    output_buffer buffer;
    std::ostream out(&buffer);
    const std::string text = counted(block_size + 1);
    out << text.substr(0, block_size);
    EXPECT_EQ(printed.text().size(), 0u);
    out << text.back();
    EXPECT_TRUE(printed.text() == text.substr(0, block_size));
    buffer.finish();
    EXPECT_TRUE(printed.text() == text);
}

TEST(OutputBuffer, PrintsALongTextAsItIs) {
    const output_in_file printed;
    output_buffer buffer;
    std::ostream out(&buffer);
    const std::string text = counted(3 * block_size + 17);
    out << text;
    buffer.finish();
    EXPECT_TRUE(printed.text() == text);
}

TEST(OutputBuffer, PrintsWhatItHasWhereNoCharacterFollows) {
    const output_in_file printed;
    opened_buffer buffer;
    buffer.sputc('a');
    EXPECT_NE(buffer.overflow(opened_buffer::traits_type::eof()), opened_buffer::traits_type::eof());
    EXPECT_EQ(printed.text(), "a");
}
