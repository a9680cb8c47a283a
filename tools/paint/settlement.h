// settlement.h - villages and the tracks between them.
#pragma once

#include "water.h"

// Chooses places that are dry, gentle and near water, and levels the ground there a little.
std::vector<Place> settle(const Plan &plan, const std::vector<Field> &countries,
                          const Waters &waters, Field &height);

// Leads tracks from village to village over the ways that cost a walker least.
std::vector<Course> layTracks(const Plan &plan, const Waters &waters, const Field &height,
                              const std::vector<Place> &villages);

// How worn each sample is by the tracks: 0 .. 1.
Field wornBy(const Plan &plan, const std::vector<Course> &tracks);
