// coast.h - the fjord around the land, and the cliff beyond it that keeps the cube on the land.
#pragma once

#include "plan.h"

// Units inland from the fjord's shore, negative beyond it.
float shoreDistance(const Plan &plan, float x, float z);

// 1 on the cliff and on its foot, which becomes wider when the game smooths the land.
int isCliff(const Plan &plan, float x, float z);

// How steeply the ground may rise from the fjord: 0 at a beach .. 1 where mountains meet the water.
float coastSteepness(const Plan &plan, float x, float z);

// Raises the cliff out of the fjord. Call this after erode: rain would dig gullies into the cliff,
// and the cube would climb out through them.
void raiseCliff(const Plan &plan, Field &height);

// Brooks that fall over the cliff: 0 none .. 1 white water.
float cliffFall(const Plan &plan, float x, float z);
