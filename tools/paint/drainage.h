// drainage.h - to where the rain of each sample flows.
#pragma once

#include "plan.h"

struct Drainage
{
    std::vector<int> order;  // samples (z * side + x), each after the one that it drains to
    std::vector<int> toward; // the next sample downstream; -1 in the sea and where nothing drains
    Field level;             // height of the ground with every hollow filled up to its outlet
    Field flow;              // rain of all samples that drain through this one, and its own
};

// `sea` is 1 on the samples into which all water drains. The rain of a sample is about 1.
Drainage drain(const Field &height, const Grid<char> &sea, const Field &rain);
