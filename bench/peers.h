// The same conversion through libyuv, where it has one: nearest in meaning, not the same bytes.
#pragma once

#include <functional>
#include <string>

#include "zivcolor.h"

namespace bench {

using Peer = std::function<void(const __tag_KOBR_OFFSCREEN& s, const __tag_KOBR_OFFSCREEN& d)>;

// Null if libyuv has no such conversion, or is not here.
Peer peer_of(const std::string& kernel);

}  // namespace bench
