// settlement.h - villages and the tracks between them.
#pragma once

#include "water.h"

// Chooses places for villages: dry, not steep and near water. Levels the ground there a little.
std::vector<Place> settle(const Plan &plan, const std::vector<Field> &countries,
                          const Waters &waters, Field &height);

// Returns tracks that join all villages along the ways that cost a walker least.
std::vector<Course> layTracks(const Plan &plan, const Waters &waters, const Field &height,
                              const std::vector<Place> &villages);

// How worn each sample is by the tracks: 0 .. 1.
Field wornBy(const Plan &plan, const std::vector<Course> &tracks);
