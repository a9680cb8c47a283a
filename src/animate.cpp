#include "animate.h"

#include "camera.h"
#include "cube.h"
#include "main.h"
#include "people.h"
#include "shot.h"
#include "tank.h"

#include <SDL.h>

static const int milli = 1000;   // milliseconds in a second
static float startTime = 0.0f;   // SDL's tick count at initAnimation, in seconds
static float elapsedTime = 0.0f; // seconds from initAnimation to the current step

static double tickSeconds()
{
    return SDL_GetTicks() / static_cast<double>(milli);
}

void initAnimation()
{
    startTime = static_cast<float>(tickSeconds());
    timeH = 0;
}

void animate(Cube *cube, PeopleList *people, TankList *tanks, Camera *camera, Terrain *terrain,
             ShotList *shots)
{
    static float time = 0.0f; // elapsedTime of the previous step
    static float h = 0.0f;    // length of this step

    elapsedTime = static_cast<float>(tickSeconds() - startTime);
    h = elapsedTime - time;
    time = elapsedTime;
    timeH = h;
    updateCube(cube, h);
    updatePerson(people, cube, h, terrain);
    updateTank(tanks, cube, h, terrain, shots, time);
    updateShot(shots, cube, h);
    calcTargetView(camera, cube);
    updateCamera(camera, h);
}
