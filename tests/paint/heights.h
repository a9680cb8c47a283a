// heights.h - the heights that the game makes of a map. Headers of the game and of the painter
// cannot be included together, because both define Colour.
#pragma once

#include <cstdint>
#include <vector>

// Lets the game load a Map.tga with these grey pixels, row by row from the bottom. Returns the
// height of each sample in the same order; nothing if the game refuses the map.
std::vector<float> heightsInTheGame(const std::vector<uint8_t> &greys, int side);
