// water.h - lakes, rivers and the fjord's shore.
#pragma once

#include "courses.h"

struct Waters
{
    std::vector<Course> rivers; // see Land
    Nearby river;               // to each sample
    Field shore;                // units from the nearest lake, pond or the fjord; 0 in it
    Field shoreLevel;           // height of that water
};

// Finds lakes and rivers on the bare ground and carves them and all shores into it.
Waters layWater(const Plan &plan, const std::vector<Field> &countries, Field &height);

// Lowers the wanted ground under rivers wherever the final heights rise along them. Returns 0 when
// nothing is to be lowered.
int deepenBeds(const Plan &plan, const Waters &waters, const Field &height, Field &wanted);

// How much of each sample is water, when its heights are final: 0 .. 1.
Field waterSurface(const Plan &plan, const Waters &waters, const Field &height);
// The white water of rivers, 0 .. 1.
Field riverFalls(const Plan &plan, const Waters &waters);
