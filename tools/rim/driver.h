// driver.h - which keys a player holds to roll the cube to a place.
#pragma once

#include "cube.h"
#include "main.h"

#include <SDL.h>

#include <cmath>

inline void holdKeysToward(Vector goal, uint8_t *held)
{
    const double off = std::remainder(findDirection(cb.position, goal) - cb.heading, 360.0);
    held[SDLK_UP] = std::fabs(off) < 60;
    held[SDLK_DOWN] = std::fabs(off) > 120;
    held[SDLK_LEFT] = off < -20;
    held[SDLK_RIGHT] = off > 20;
}
