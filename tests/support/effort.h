// How much a test may compute. The sanitizers look for faults of memory, which a part of the arguments shows, and make a test
// ten times slower.
#pragma once

namespace orv::test {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool sanitized = true;
#else
inline constexpr bool sanitized = false;
#endif

}  // namespace orv::test
