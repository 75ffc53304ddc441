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
    /// The files that stand for the two streams; they stay open, and the caller's.
    explicit Output(int outFile = 1, int errFile = 2) : outFile_(outFile), errFile_(errFile) {}
    ~Output() { flush(); }
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;

    /// The buffer, to be appended to, of standard output.
    std::string& out() { return to(Stream::out); }
    /// The buffer, to be appended to, of standard error.
    std::string& err() { return to(Stream::err); }

    /// Sends the buffer when it is large; to be called when a line is complete.
    void lineDone() {
        if (buffer_.size() >= largeBuffer) {
            flush();
        }
    }

    void flush() noexcept;

    bool failed() const noexcept { return outFailed_ || errFailed_; }

private:
    enum class Stream { out, err };

    static constexpr std::size_t largeBuffer = std::size_t{64} * 1024;

    std::string& to(Stream stream) {
        if (stream_ != stream) {
            flush();
            stream_ = stream;
        }
        return buffer_;
    }

    std::string buffer_;
    Stream stream_ = Stream::out;
    int outFile_;
    int errFile_;
    bool outFailed_ = false;
    bool errFailed_ = false;
};

} // namespace VpAgent
