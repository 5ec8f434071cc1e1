# SPDX-License-Identifier: MIT
# A target of its own that is SSE4.2 under another name: it must come out as sse4 does (scripts/check_targets).
zivcolor_target(toy EXTENDS sse4)
list(PREPEND zivcolor_all_targets toy)
