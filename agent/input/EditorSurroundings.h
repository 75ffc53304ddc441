#pragma once

namespace VpAgent {

// What the line editor takes from its surroundings without a look at it: who sat down at a terminal
// does not always choose these. They are looked at before the line editor sees them.

/// Whether the terminal's screen has no more than `Limits::terminal` characters now. The line
/// editor keeps three copies of the screen.
bool hasUsualScreen();

/// Whether `TERM` may name a type of terminals: up to 255 printable ASCII characters, or none at
/// all. The system's library shows a name that it does not know on the terminal, as it is.
bool hasUsualType();

/// Keeps the line editor from settings (`EDITRC`, or `.editrc` in the home folder) that are no
/// regular file of at most `Limits::editorSettings`. It would read them to their end.
void leaveOutUnusualSettings();

} // namespace VpAgent
