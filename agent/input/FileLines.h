#pragma once

#include "input/LineSource.h"

#include <unistd.h>

#include <functional>
#include <string>

namespace VpAgent {

/// The lines of a script, or of standard input for the name `-`.
///
/// A line ends with a line feed, which the last one may lack, and is at most `Limits::line` long.
/// Reads 64 KiB at a time. Before each
/// read, which may block as long as it takes somebody to write the next command, `beforeRead` is
/// called.
class FileLines final : public LineSource {
public:
    /// Opens the file. Throws `Refusal` when it cannot be read, or belongs to the state file in
    /// use.
    FileLines(std::string name, std::function<void()> beforeRead);
    ~FileLines() override;
    FileLines(FileLines const&) = delete;
    FileLines& operator=(FileLines const&) = delete;

    bool next(CommandLine& line) override;

private:
    bool readMore();
    void checkLength(std::size_t length) const;
    [[noreturn]] void refuse(std::string const& reason) const;

    std::string name_;
    std::function<void()> beforeRead_;
    int file_ = STDIN_FILENO;
    std::string buffer_;
    std::size_t at_ = 0; ///< of the next line in `buffer_`
    std::size_t number_ = 0;
};

} // namespace VpAgent
