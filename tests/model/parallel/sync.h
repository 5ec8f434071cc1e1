// SPDX-License-Identifier: MIT
// Stands in for the engine's own header of this name: threads that meet in a simulation.
#pragma once

#include "model/model.h"

namespace zivcolor {

template <class T>
using Atomic = model::Atomic<T>;
using Clock = model::Clock;
using Condition = model::Condition;
using Mutex = model::Mutex;
using Thread = model::Thread;
using model::yield;
inline void pause() { model::yield(); }

}  // namespace zivcolor
