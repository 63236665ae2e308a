// SPDX-License-Identifier: Apache-2.0

/// A CDS file named on the command line.
#ifndef TOOLS_SOURCES_INPUT_FILE_H
#define TOOLS_SOURCES_INPUT_FILE_H

#include <sys/stat.h>
#include <zlib.h>

#include <cstddef>
#include <istream>
#include <memory>
#include <string>

/// Whether the name is "-", which stands for standard input.
bool is_standard_input(const std::string& name);

/// What messages call the file of that name: 'x.xml' or standard input.
std::string input_title(const std::string& name);

class input_file {
public:
    /// Of what can be read only once and is kept in memory for another look; it may have no end.
    static constexpr std::size_t most_bytes = std::size_t{256} << 20;

    /// `name` is a path; "-" is standard input, whatever that is. What gzip packed is unpacked while it is read. Throws
    /// failure, with nothing but the cause, when it is plain that the file cannot be read. What is not on disk and goes
    /// on beyond `most_bytes_passed`, or cannot be read to its end, is no XML document, whatever stands in it. One for
    /// standard input at a time.
    explicit input_file(const std::string& name, std::size_t most_bytes_passed = most_bytes);
    ~input_file();
    input_file(const input_file&) = delete;
    input_file& operator=(const input_file&) = delete;

    /// What to open; only once unless it is a file on disk.
    const std::string& path() const { return path_; }
    /// As it is to be read: what is packed is not.
    bool is_on_disk() const { return passed_ == nullptr; }

    /// Which file it is; a size of 0 is an unknown one.
    const struct stat& status() const { return status_; }

    /// What ended the reading of what is not on disk before its end; empty when nothing did.
    std::string read_error() const;

    /// Whether that was a lack of memory.
    bool lacked_memory() const;

    /// All that there is to read. Throws failure with the cause alone; lack_of_memory where the input is not to blame.
    std::string read_all() const;

    /// What has been read, from its start, for another look.
    std::unique_ptr<std::istream> read_again() const;

    /// The bytes of the file that was named, packed or not; of what can be read only once, what has been read.
    std::unique_ptr<std::istream> read_as_it_lies() const;

private:
    struct passed_bytes;
    static bool pass_block(gzFile source, int sink, passed_bytes& passed);
    static void pass_all(int source, int sink, passed_bytes& passed);
    static void pass(int source, int sink, const std::shared_ptr<passed_bytes>& passed);
    int pass_on(int source, std::size_t most_bytes_passed);

    std::string name_;
    std::string path_;
    int pipe_ = -1;  // where `path_` leads, unless that is standard input
    struct stat status_ = {};
    std::shared_ptr<passed_bytes> passed_;  // null for a file on disk
};

#endif
