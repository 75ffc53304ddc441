#pragma once

#include <string>
#include <string_view>

namespace VpAgent {

/// Standard output and standard error, each buffered, with what is written to them kept in order.
///
/// There is one buffer: writing to the other stream first sends what is in it. So people see both
/// streams in the order of events, and programs pay one system call per 64 KiB. Whoever may block,
/// fork or end the process flushes first.
///
/// A failed write (a full disk, a closed file) is remembered and reported by `failed()`. That
/// stream is given nothing more, so that what it holds is whole up to one place, and nothing
/// behind.
class Output {
public:
    Output() = default;
    ~Output() { flush(); }
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;

    /// The buffer, to be appended to, of standard output.
    std::string& out() { return to(standardOutput); }
    /// The buffer, to be appended to, of standard error.
    std::string& err() { return to(standardError); }

    /// Sends the buffer when it is large; to be called when a line is complete.
    void lineDone() {
        if (buffer_.size() >= largeBuffer) {
            flush();
        }
    }

    void flush() noexcept;

    bool failed() const noexcept { return outFailed_ || errFailed_; }

private:
    static constexpr int standardOutput = 1;
    static constexpr int standardError = 2;
    static constexpr std::size_t largeBuffer = std::size_t{64} * 1024;

    std::string& to(int stream) {
        if (stream_ != stream) {
            flush();
            stream_ = stream;
        }
        return buffer_;
    }

    std::string buffer_;
    int stream_ = standardOutput;
    bool outFailed_ = false;
    bool errFailed_ = false;
};

} // namespace VpAgent
