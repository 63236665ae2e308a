/// A CDS file named on the command line.
#ifndef TOOLS_SOURCES_INPUT_FILE_H
#define TOOLS_SOURCES_INPUT_FILE_H

#include <sys/stat.h>

#include <atomic>
#include <memory>
#include <string>

/// What messages call the file of that name: 'x.xml' or standard input.
std::string input_title(const std::string& name);

class input_file {
public:
    /// `name` is a path; "-" is standard input, whatever that is. Throws failure, with nothing but the cause, when it
    /// is plain that the file cannot be read. One for standard input at a time.
    explicit input_file(const std::string& name);

    /// What to open; only once where it cannot be read again.
    const std::string& path() const { return path_; }
    bool can_be_read_again() const;

    /// Which file it is; a size of 0 is an unknown one.
    const struct stat& status() const { return status_; }

    /// The system's error when it was this that ended the reading of standard input, else 0.
    int read_error() const { return *read_error_; }

private:
    std::string path_;
    struct stat status_ = {};
    std::shared_ptr<std::atomic<int>> read_error_;
};

#endif
