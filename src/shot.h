// shot.h - the projectiles that tanks fire: they fly under gravity, push and shrink the cube, or
// dig a crater where they reach the ground. World units, seconds, degrees.
#pragma once

#include "util.h"

#include <cstdint>

struct Cube;
struct Terrain;

struct Shot
{
    int32_t id;      // identity, given by addShot
    Vector position; // origin of the model
    Vector velocity; // units/s; x and z are doubled when the shot moves
    int32_t heading; // yaw about +y at which the shot is drawn, whole degrees
    Shot *next;      // the next older shot, or null
};

struct ShotList
{
    Shot *head;     // newest shot in flight, or null; owned, like all that follow
    int32_t nextId; // identity of the next added shot; never decreases
};

// Life cycle
int destroyShotList(ShotList *list); // frees the shots and the record; returns 1

// Changes
int addShot(ShotList *list, Shot shot);                // sets id and next; 1, or 0: no memory
int removeShot(ShotList *list, Shot shot);             // by id; 1, or 0 when it is not in the list
void applyShotGravity(Shot *shot, float dt);           // one step of the velocity
void updateShotPosition(Shot *shot, float dt);         // one step of the position
int checkShotCollision(const Shot *shot, Cube *cube);  // 1 if it hits; pushes and shrinks the cube
void updateShot(ShotList *list, Cube *cube, float dt); // one world step of all shots
void landShots(ShotList *list, Terrain *terrain); // removes those under the ground, digs craters

// Drawing
void drawShots(ShotList *list, Terrain *terrain); // calls landShots, then draws the others
void drawShot(const Shot *shot);                  // the model at the origin; the record is not read
