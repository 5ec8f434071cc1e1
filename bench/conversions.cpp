// SPDX-License-Identifier: MIT
// Every conversion of the kernel list on every target that runs here, and through libyuv.
#include "core/targets.h"
#include "measure.h"
#include "peers.h"

namespace bench {

using zivcolor::Image;

namespace {

using Convert = std::function<void(const Image& source, const Image& destination)>;

Make job_of(const harness::Conversion& c, const Convert& convert) {
    return [&c, convert](const Shape& shape) {
        const Memory memory = memory_for(shape);
        size_t bytes = 0;
        const Image source = image(c.source, shape.width, shape.height, memory.source, &bytes);
        const Image destination = image(c.destination, shape.width, shape.height, memory.destination, &bytes);
        return Job{[=] { convert(source, destination); }, bytes, static_cast<double>(shape.width) * shape.height};
    };
}

}  // namespace

void add_conversions() {
    for (const harness::Conversion& c : harness::conversions()) {
        const std::string name = c.name;
        if (name == "zivColorNV41toNV21") continue;  // ends the process by design
        for (const zivcolor::Target& target : zivcolor::built_targets()) {
            if (!target.runs_here()) continue;
            add(name + "/" + target.name, job_of(c, [&c, kernels = target.kernels](const Image& s, const Image& d) {
                    c.convert_as_entry(*kernels, &s, &d, 255);
                }));
        }
        const Peer peer = peer_of(name);
        if (!peer) continue;
        for (const PeerLevel& level : peer_levels())
            add(name + "/" + level.name, [job = job_of(c, peer), flags = level.cpu_flags](const Shape& shape) {
                hold_peer_to(flags);
                return job(shape);
            });
    }
}

}  // namespace bench
