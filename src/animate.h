// animate.h - the game's clock and the world step.
#pragma once

struct Camera;
struct Cube;
struct PeopleList;
struct ShotList;
struct TankList;
struct Terrain;

void initAnimation(); // starts the clock and sets timeH to 0

// Steps the world by the time since the last step, in the order cube, people, tanks, shots, camera.
// Sets timeH to that time in seconds. It has no upper limit: a stall becomes one large step.
void animate(Cube *cube, PeopleList *people, TankList *tanks, Camera *camera, Terrain *terrain,
             ShotList *shots);
