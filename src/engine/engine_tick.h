// The parts of the engine's tick that have a memory of their own.
#pragma once

namespace skl {

/// engineTick 0, and no backlog of reports told of yet.
void lf_resetTick();

}  // namespace skl
