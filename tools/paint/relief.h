// relief.h - the ground before any water: plains, mountain ranges, hills and hollows.
#pragma once

#include "plan.h"

// Returns the heights of the bare ground. The landing place and the valley that leads to it have no
// mountains.
Field raiseGround(const Plan &plan, const std::vector<Field> &countries);
