// smoothing.h - the game smooths a map when it loads it; the map makes up for that.
#pragma once

#include "plan.h"

// What the game does to the heights when it loads them: three sweeps of a running mean in each of
// the four directions.
void smoothAsTheGame(Field &height);

// The heights of a map that the game's smoothing turns into nearly the heights wanted.
Field sharpened(const Field &wanted);
