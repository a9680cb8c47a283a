// relief.h - the ground before any water: plains, mountain ranges, hills and hollows.
#pragma once

#include "plan.h"

// Returns the heights of the bare ground. No mountain stands at the landing place or in the valley
// that leads to it.
Field raiseGround(const Plan &plan, const std::vector<Field> &countries);
