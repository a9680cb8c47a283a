// coast.h - the fjord around the land, and the cliff beyond it that keeps the cube on the land.
#pragma once

#include "plan.h"

// Units inland from the fjord's shore, negative beyond it.
float shoreDistance(const Plan &plan, float x, float z);

// 1 on the cliff and as far as its foot spreads when the game smooths it.
int isCliff(const Plan &plan, float x, float z);

// How steeply the ground may rise at the fjord: 0 over a beach .. 1 where mountains meet the water.
float coastSteepness(const Plan &plan, float x, float z);

// Raises the cliff out of the fjord. The rain must not reach it, for the cube climbs gullies.
void raiseCliff(const Plan &plan, Field &height);

// Brooks that fall over the cliff: 0 none .. 1 white water.
float cliffFall(const Plan &plan, float x, float z);
