#pragma once

#include <string>

namespace VpAgent {

/// Looks for damage in the write-ahead log beside an SQLite database, and throws `Damage` when it
/// finds any. A log that is not there or empty has none, unless it is `needed`.
///
/// SQLite itself takes the first frame that does not check out for the end of the log, as a write
/// that a crash cut off leaves it, and would lose every transaction behind it without a word. But
/// each transaction is on disk before the next one begins, so a crash cuts off the last one alone:
/// the ends of two whole transactions behind the first bad frame tell damage. Damage in the last
/// two transactions cannot be told from a crash, nor a log that ends early behind a whole frame
/// from a shorter one.
///
/// The database must be locked, so that nobody writes the log meanwhile. Cost: the log is read
/// once.
void checkWal(std::string const& path, bool needed);

} // namespace VpAgent
