// SPDX-License-Identifier: MIT
// Rows written by streaming stores, and from which size on that pays. For kernel files too.
#pragma once

#include <stdint.h>

namespace zivcolor {

#if defined(__x86_64__)
inline constexpr bool has_streaming_stores = true;
#else
inline constexpr bool has_streaming_stores = false;
#endif

// So many bytes read and written are converted faster through the caches of any machine.
inline constexpr int64_t cached_bytes = int64_t{24} << 20;
// Whether the caches of this machine are too small for so many.
bool beyond_caches(int64_t bytes);

// Writes a row, whole lines of the cache by streaming stores and the ragged first and last one as usual. A row may come in
// parts, each whole lines long but the last. What a part leaves of its last line must then stand before the next part.
void stream_bytes(uint8_t* to, const uint8_t* from, int64_t bytes, bool first, bool last);
// Orders what was streamed before all later stores, for other threads to see.
void end_streaming();

}  // namespace zivcolor
