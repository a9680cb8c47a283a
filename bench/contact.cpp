// Which step lengths the contact forces bear: rolls the cube over the game's own land without
// drawing it, a minute in each direction at equal steps with Up held, and counts the runs in which
// it is thrown.
//
//     build/bench/bench/contact data
#include "cube.h"
#include "main.h"
#include "terrain.h"

#include <SDL.h>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

constexpr int SHORTEST = 10, LONGEST = 70, APART = 5; // milliseconds
constexpr int DIRECTIONS = 16;
constexpr float SECONDS = 60;
constexpr float THROWN = 1000; // units above the ground; no hill and no tank sends it as high

static uint8_t held[SDLK_LAST];

// On land without a dent.
static int begin(float heading)
{
    if (!initTerrain(&ter))
        return 0;
    initCube(&cb);
    cb.position = vectorInit(0, getHeightAt(&ter, 0, 0) + cb.size / 2, 0);
    cb.orientation = quaternionInit(1, 0, 0, 0);
    cb.momentum = cb.angularMomentum = cb.velocity = cb.angularVelocity = vectorInit(0, 0, 0);
    cb.heading = heading;
    return 1;
}

static bool isThrown(int milliseconds)
{
    timeH = static_cast<float>(milliseconds / 1000.0);
    for (float t = 0; t < SECONDS; t += timeH)
    {
        handleKeyDown();
        updateCube(&cb, timeH);
        collideCubeTerrain();
        if (cb.position.y > getHeightAt(&ter, cb.position.x, cb.position.z) + THROWN)
            return true;
    }
    return false;
}

int main(int argc, char **argv)
{
    if (argc > 1 && chdir(argv[1]) != 0)
        return EXIT_FAILURE;
    if (!freopen("/dev/null", "w", stderr)) // start-up reports there
        return EXIT_FAILURE;
    keys = held;
    held[SDLK_UP] = 1;
    puts("step    thrown");
    for (int milliseconds = SHORTEST; milliseconds <= LONGEST; milliseconds += APART)
    {
        int thrown = 0;
        for (int i = 0; i < DIRECTIONS; ++i)
        {
            if (!begin(i * 360.0f / DIRECTIONS))
            {
                puts("No land: the folder of the images is missing");
                return EXIT_FAILURE;
            }
            thrown += isThrown(milliseconds);
            destroyCube(&cb);
            deleteTerrain(&ter);
        }
        printf("%2d ms   %2d of %d\n", milliseconds, thrown, DIRECTIONS);
    }
}
