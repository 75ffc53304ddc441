#pragma once

#include <string>

namespace ModelTest {

/// Says what is under way when something ends the process that nobody can survive: a failed
/// assertion, a sanitizer's report, a signal of a crash, an exception that nobody catches, or one
/// that leaves the scope of this object. The process then ends as it would without it.
///
/// One at a time. Copies of the process say nothing: whoever made them knows how they ended.
class LastWords {
public:
    LastWords();
    ~LastWords();
    LastWords(LastWords const&) = delete;
    LastWords& operator=(LastWords const&) = delete;

    /// The words from now on. They are whole before they are needed, since memory can no longer be
    /// had when they are.
    void are(std::string words);

    /// Forgets the words, when somebody else has said more.
    static void areSaid() noexcept;

private:
    std::string words_;
    int exceptions_;
};

} // namespace ModelTest
