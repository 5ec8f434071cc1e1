// SPDX-License-Identifier: MIT
// The same conversion through libyuv, where it has one: nearest in meaning, not the same bytes.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "zivcolor.h"

namespace bench {

using Peer = std::function<void(const __tag_KOBR_OFFSCREEN& s, const __tag_KOBR_OFFSCREEN& d)>;

// Null if libyuv has no such conversion, or is not here.
Peer peer_of(const std::string& kernel);

// What libyuv may use of the CPU, for a fair comparison with one of our targets: all of it, or no more than an older CPU has.
struct PeerLevel {
    const char* name;
    int cpu_flags;  // libyuv's
};
const std::vector<PeerLevel>& peer_levels();
void hold_peer_to(int cpu_flags);

}  // namespace bench
