// tank.h - the tanks: they wander until the cube is near, then stop, face it and fire.
// World units, seconds; headings are yaws in degrees about +y: 0 faces +x, 90 faces -z.
#pragma once

#include "util.h"

#include <cstdint>

struct Cube;
struct ShotList;
struct Terrain;
struct TgaImage;

struct Tank
{
    int id;              // identity, from 0 in order of creation
    int wanderDistance;  // whole units to drive before a new heading is chosen; may be negative
    Vector position;     // y is the height of the ground at the last settleTanks
    float speed;         // along heading, units per second
    float targetSpeed;   // what speed eases toward
    float acceleration;  // rate of change in the last step
    float heading;       // of the hull; not wrapped
    float targetHeading; // what heading eases toward; not wrapped
    float turnRate;      // rate of change in the last step
    float scale;         // of the model when it is drawn
    float lastShotTime;  // seconds since start-up
};

struct TankNode
{
    Tank tank;
    TankNode *next;
};

struct TankList
{
    TankNode *head;      // newest tank, or null; owned, like all that follow
    uint32_t turretList; // OpenGL list of turret and barrel
    uint32_t hullList;   // OpenGL list of hull and tracks
    TgaImage *image;     // texture atlas; owned
    uint32_t texture;    // OpenGL name of the atlas
};

// Life cycle. makeTankList compiles the model, loads TexTank.tga from the working directory and
// creates n equal tanks. Returns 1, or 0 for a null list or a missing picture. Without an OpenGL
// context the list is complete, but cannot be drawn. randomTankPlacement scatters the tanks over
// sizex * resolution by sizez * resolution world units, with three rand() numbers for each tank.
// The centre of this area lies a tenth of each side from the origin, toward -x and -z.
int makeTankList(TankList *list, int n);
void initTank(Tank *tank); // does not set id and wanderDistance
void randomTankPlacement(TankList *list, int sizex, int sizez, int resolution);
int destroyTankList(TankList *list); // frees tanks, picture and record; returns 1

// Changes
int addTank(TankList *list, Tank tank);    // 1, or 0 if there is no memory
int removeTank(TankList *list, Tank tank); // by id; 1, or 0 when it is not in the list
// One step of h seconds for all tanks; time is in seconds since start-up.
void updateTank(TankList *list, Cube *cube, float h, Terrain *terrain, ShotList *shots, float time);
// Chooses targetSpeed and targetHeading, and fires.
void updateTankAI(Tank *tank, const Cube *cube, ShotList *shots, float time);
void updateTankPosition(Tank *tank, float h, int width, int resolution); // turns and drives
int checkTankCollision(Tank tank, Cube *cube, Terrain *terrain); // 1 when crushed; applies effects
void settleTanks(TankList *list, const Terrain *terrain);        // puts every tank on the ground

// Drawing
void drawTank(const Tank *tank);   // hull and tracks at the origin; the record is not read
void drawTurret(const Tank *tank); // turret and barrel at the origin; the record is not read
void drawTanks(TankList *list, const Cube *cube,
               const Terrain *terrain); // calls settleTanks, then draws those in view
