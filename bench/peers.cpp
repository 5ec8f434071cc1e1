// SPDX-License-Identifier: MIT
#include "peers.h"

#include <map>

#if defined(ZIVCOLOR_HAVE_LIBYUV)
#include <libyuv.h>
#endif

namespace bench {

#if defined(ZIVCOLOR_HAVE_LIBYUV)

namespace {

using Image = __tag_KOBR_OFFSCREEN;

#if defined(__x86_64__)
constexpr int sse4_flags = libyuv::kCpuInitialized | libyuv::kCpuHasX86 | libyuv::kCpuHasSSE2 | libyuv::kCpuHasSSSE3 |
                           libyuv::kCpuHasSSE41 | libyuv::kCpuHasSSE42;
#endif

#define S(k) s.plane[k], s.pitch[k]
#define D(k) d.plane[k], d.pitch[k]
#define PEER(kernel, call)                                                                      \
    {                                                                                           \
#kernel, [](const Image& s, const Image& d) { static_assert(sizeof(&::kernel)); libyuv::call; } \
    }

// libyuv names 32-bit pixels by their little-endian word and 24-bit RGB by its own tradition: ARGB is B G R A in memory, ABGR
// is R G B A, RGB24 is B G R and RAW is R G B. J420 is full range, like all of ours.
const std::map<std::string, Peer>& peers() {
    static const std::map<std::string, Peer> table = {
        PEER(zivColorNV21toBGR888u8, NV21ToRGB24(S(0), S(1), D(0), d.width, d.height)),
        PEER(zivColorNV12toBGR888u8, NV12ToRGB24(S(0), S(1), D(0), d.width, d.height)),
        PEER(zivColorNV21toRGB888u8, NV21ToRAW(S(0), S(1), D(0), d.width, d.height)),
        PEER(zivColorNV21toBGRA8888u8, NV21ToARGB(S(0), S(1), D(0), d.width, d.height)),
        PEER(zivColorNV21toRGBA8888u8, NV21ToABGR(S(0), S(1), D(0), d.width, d.height)),
        PEER(zivColorNV12toRGBA8888u8, NV12ToABGR(S(0), S(1), D(0), d.width, d.height)),
        PEER(zivColorNV12toBGRA8888u8, NV12ToARGB(S(0), S(1), D(0), d.width, d.height)),
        PEER(zivColorI420toBGR888u8, J420ToRGB24(S(0), S(1), S(2), D(0), d.width, d.height)),
        PEER(zivColorI420toRGB888u8, J420ToRAW(S(0), S(1), S(2), D(0), d.width, d.height)),
        PEER(zivColorI420toBGRA8888u8, J420ToARGB(S(0), S(1), S(2), D(0), d.width, d.height)),
        PEER(zivColorI420toRGBA8888u8, J420ToABGR(S(0), S(1), S(2), D(0), d.width, d.height)),
        PEER(zivColorYV12toBGR888u8, J420ToRGB24(S(0), S(2), S(1), D(0), d.width, d.height)),
        PEER(zivColorYUYVtoRGBA8888u8, YUY2ToARGB(S(0), D(0), d.width, d.height)),
        PEER(zivColorBGR888toI420u8, RGB24ToJ420(S(0), D(0), D(1), D(2), d.width, d.height)),
        PEER(zivColorRGB888toI420u8, RAWToJ420(S(0), D(0), D(1), D(2), d.width, d.height)),
        PEER(zivColorBGR888toNV21u8, RAWToJNV21(S(0), D(0), D(1), d.width, d.height)),
        PEER(zivColorRGB888toNV21u8, RAWToJNV21(S(0), D(0), D(1), d.width, d.height)),
        PEER(zivColorBGR888toNV12u8, RAWToJNV21(S(0), D(0), D(1), d.width, d.height)),
        PEER(zivColorRGB888toNV12u8, RAWToJNV21(S(0), D(0), D(1), d.width, d.height)),
        PEER(zivColorBGRA8888toNV21u8, ARGBToNV21(S(0), D(0), D(1), d.width, d.height)),
        PEER(zivColorRGBA8888toNV21u8, ABGRToNV21(S(0), D(0), D(1), d.width, d.height)),
        PEER(zivColorBGRA8888toNV12u8, ARGBToNV12(S(0), D(0), D(1), d.width, d.height)),
        PEER(zivColorRGBA8888toNV12u8, ABGRToNV12(S(0), D(0), D(1), d.width, d.height)),
        PEER(zivColorBGRA8888toI420u8, ARGBToJ420(S(0), D(0), D(1), D(2), d.width, d.height)),
        PEER(zivColorRGBA8888toI420u8, ABGRToJ420(S(0), D(0), D(1), D(2), d.width, d.height)),
        PEER(zivColorRGBA8888toYUYVu8, ARGBToYUY2(S(0), D(0), d.width, d.height)),
        PEER(zivColorI420toNV21u8, I420ToNV21(S(0), S(1), S(2), D(0), D(1), d.width, d.height)),
        PEER(zivColorNV21toI420u8, NV21ToI420(S(0), S(1), D(0), D(1), D(2), d.width, d.height)),
        PEER(zivColorNV12toI420u8, NV12ToI420(S(0), S(1), D(0), D(1), D(2), d.width, d.height)),
        PEER(zivColorNV12toNV21u8, NV21ToNV12(S(0), S(1), D(0), D(1), d.width, d.height)),
        PEER(zivColorYV12toNV21u8_2, I420ToNV21(S(0), S(2), S(1), D(0), D(1), d.width, d.height)),
        PEER(zivColorI420toYUYVu8, I420ToYUY2(S(0), S(1), S(2), D(0), d.width, d.height)),
        PEER(zivColorYUYVtoNV12u8_v2, YUY2ToNV12(S(0), D(0), D(1), d.width, d.height)),
        PEER(zivColorYUYVtoNV21u8_v2, YUY2ToNV12(S(0), D(0), D(1), d.width, d.height)),
        PEER(zivColorYUYVtoI420u8_2, YUY2ToI420(S(0), D(0), D(1), D(2), d.width, d.height)),
        PEER(zivColorI422HtoI420u8, I422ToI420(S(0), S(1), S(2), D(0), D(1), D(2), d.width, d.height)),
        PEER(zivColorI422HtoNV21u8, I422ToNV21(S(0), S(1), S(2), D(0), D(1), d.width, d.height)),
        PEER(zivColorI422HtoYUYVu8, I422ToYUY2(S(0), S(1), S(2), D(0), d.width, d.height)),
        PEER(zivColorI444toI420u8, I444ToI420(S(0), S(1), S(2), D(0), D(1), D(2), d.width, d.height)),
        PEER(zivColorI444toNV21u8, I444ToNV21(S(0), S(1), S(2), D(0), D(1), d.width, d.height)),
        PEER(zivColorI444toNV12u8, I444ToNV12(S(0), S(1), S(2), D(0), D(1), d.width, d.height)),
        PEER(zivColorNV21toYUVu8, NV21ToYUV24(S(0), S(1), D(0), d.width, d.height)),
        PEER(zivColorRGB888toBGR888u8_2, RAWToRGB24(S(0), D(0), d.width, d.height)),
        PEER(zivColorRGBA8888toBGR888u8, ARGBToRAW(S(0), D(0), d.width, d.height)),
        PEER(zivColorRGB888toARGB8888u8, RAWToARGB(S(0), D(0), d.width, d.height)),
    };
    return table;
}

}  // namespace

Peer peer_of(const std::string& kernel) {
    const auto found = peers().find(kernel);
    return found == peers().end() ? Peer{} : found->second;
}

const std::vector<PeerLevel>& peer_levels() {
    static const std::vector<PeerLevel> levels = {
        {"libyuv", -1},
#if defined(__x86_64__)
        {"libyuv_avx2", sse4_flags | libyuv::kCpuHasAVX | libyuv::kCpuHasAVX2 | libyuv::kCpuHasERMS | libyuv::kCpuHasFMA3},
        {"libyuv_sse4", sse4_flags},
#endif
    };
    return levels;
}

void hold_peer_to(int cpu_flags) { libyuv::MaskCpuFlags(cpu_flags); }

#else

Peer peer_of(const std::string&) { return {}; }
const std::vector<PeerLevel>& peer_levels() {
    static const std::vector<PeerLevel> none;
    return none;
}
void hold_peer_to(int) {}

#endif

}  // namespace bench
