// animate.h - the game's clock and the world step.
#pragma once

struct Camera;
struct Cube;
struct PeopleList;
struct ShotList;
struct TankList;
struct Terrain;

void initAnimation(); // starts the clock and sets timeH to 0

// One world step, as long as the time since the last one: cube, people, tanks, shots, camera.
// Sets timeH to its length in seconds. The step is not bounded: a stall becomes one large step.
void animate(Cube *cube, PeopleList *people, TankList *tanks, Camera *camera, Terrain *terrain,
             ShotList *shots);
