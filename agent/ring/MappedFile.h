#pragma once

#include "language/Words.h"

#include <cstddef>
#include <span>

namespace VpAgent {

/// A file's bytes, mapped read-only: of a large file only the parts that are looked at are read.
///
/// The file must not be cut short while it is looked at: that ends the process (SIGBUS).
class MappedFile {
public:
    /// Throws `Refusal`, at the place of the word, unless the file that it names can be read and is
    /// a regular one of at most `Limits::ringFile` bytes.
    explicit MappedFile(Word const& name);
    ~MappedFile();
    MappedFile(MappedFile const&) = delete;
    MappedFile& operator=(MappedFile const&) = delete;

    std::span<std::byte const> bytes() const noexcept { return bytes_; }

private:
    std::span<std::byte const> bytes_;
};

} // namespace VpAgent
