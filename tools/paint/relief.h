// relief.h - the ground before any water: plains, mountain ranges, hills and hollows.
#pragma once

#include "plan.h"

// Heights of the bare ground, which leave the landing plain and the valley to it open.
Field raiseGround(const Plan &plan, const std::vector<Field> &countries);
