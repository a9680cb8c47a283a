// faults.h - faults that would make a land bad to play on.
#pragma once

#include "land.h"

// The largest rise of a river's bed in the direction of the flow, in units: how far the bed lies
// above the lowest point of the bed upstream.
float largestRise(const Land &land, const Course &river);

// Returns what is wrong with a land, or null: a landing place that is wet, steep or high, a closed
// valley, a river that runs uphill or ends on dry land, no river, too few villages or a wet one.
const char *faultOf(const Land &land);
