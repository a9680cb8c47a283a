// smoothing.h - the game smooths a map when it loads it. The map is exaggerated to allow for that.
#pragma once

#include "plan.h"

// What the game does to the heights when it loads them: three sweeps of a running mean in each of
// the four directions.
void smoothAsTheGame(Field &height);

// Returns the heights of a map from which the game's smoothing makes nearly the wanted heights.
Field sharpened(const Field &wanted);
