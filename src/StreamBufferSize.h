#pragma once

namespace OrvoStream
{

/// Bytes in the buffer of COStream and CIStream. One call can write at most so many, and an input
/// of at most so many can be read whole through a stream.
inline constexpr int StreamBufferSize = 20480;

} // namespace OrvoStream
