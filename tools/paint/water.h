// water.h - lakes, rivers and the fjord's shore.
#pragma once

#include "courses.h"

struct Waters
{
    std::vector<Course> rivers; // as in Land
    Nearby river;               // the nearest point of all rivers, for each sample
    Field shore;                // units to the nearest lake, pond or fjord; 0 in the water
    Field shoreLevel;           // height of the water that is nearest
};

// Finds the lakes and rivers of the bare ground. Carves them and all shores into the ground.
Waters layWater(const Plan &plan, const std::vector<Field> &countries, Field &height);

// Lowers the wanted ground under rivers wherever the final heights rise in the direction of the
// flow. Returns 1 if some rise was so large that it would be noticed, else 0.
int deepenBeds(const Plan &plan, const Waters &waters, const Field &height, Field &wanted);

// How much of each sample is water, 0 .. 1. The heights are the final ones.
Field waterSurface(const Plan &plan, const Waters &waters, const Field &height);
// The white water of rivers, 0 .. 1.
Field riverFalls(const Plan &plan, const Waters &waters);
