// drainage.h - where the water of each sample runs.
#pragma once

#include "plan.h"

struct Drainage
{
    std::vector<int> order;  // samples (z * side + x), each after the one that it drains to
    std::vector<int> toward; // the next sample downstream; -1 in the sea and where nothing drains
    Field level;             // of the ground when every hollow is filled up to its way out
    Field flow;              // how many samples' rain comes by, weighted by the rain there
};

// Sea is 1 where the water ends. The rain of a sample is about 1.
Drainage drain(const Field &height, const Grid<char> &sea, const Field &rain);
