#pragma once

namespace VpAgent {

/// Takes the descriptors 0 to 2 where the program was started without them, so that no file that it
/// opens becomes one of its standard streams. To be called before any file is opened.
///
/// A stream that was closed stays without use: reading or writing it fails as it did before. Throws
/// `std::system_error` when a descriptor cannot be taken.
void occupyStandardStreams();

} // namespace VpAgent
