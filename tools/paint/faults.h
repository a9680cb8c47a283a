// faults.h - what would keep a land from being played.
#pragma once

#include "land.h"

// How far the ground under a river rises above what it was upstream, at most; in units.
float largestRise(const Land &land, const Course &river);

// What is wrong with a land, or null: a landing place that is wet, steep or high, a closed valley,
// a river that runs uphill or nowhere, or too few villages.
const char *faultOf(const Land &land);
