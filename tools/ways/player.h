// player.h - five ways of playing. Each looks at the game's world and holds down keys. The players
// remember their decisions in globals, so a process can play only one game.
#pragma once

#include <cstdint>

struct Way
{
    const char *name;
    void (*holdKeys)(float seconds, uint8_t *held); // seconds since the game was started
    float leastMedian; // seconds of the median life on a land that is good to learn on; 0: no bound
    const char *remedy; // how to mend a land where the median is shorter; null if there is no bound
};

constexpr int WAY_COUNT = 5;
constexpr int STANDING = 0, CAREFUL = 4; // indices in WAYS
extern const Way WAYS[WAY_COUNT];
