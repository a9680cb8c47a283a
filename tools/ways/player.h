// player.h - five ways of playing, each of which holds keys for the cube cb of the game that is
// being played. A process plays one game: the players remember what they decided.
#pragma once

#include <cstdint>

struct Way
{
    const char *name;
    void (*holdKeys)(float seconds, uint8_t *held); // seconds since the game was started
    float leastMedian; // seconds that the median life must reach on a good land; 0: any
    const char *remedy;
};

constexpr int WAY_COUNT = 5;
constexpr int STANDING = 0, CAREFUL = 4; // the places in WAYS of two that are compared
extern const Way WAYS[WAY_COUNT];
