// people.h - the horde: a square grid of buckets, each with a chain of the people standing in it,
// so that a step and a frame visit only those near the cube. World units, seconds, degrees.
#pragma once

#include "util.h"

#include <cstdint>

struct Cube;
struct Terrain;
struct TgaImage;

constexpr int BUCKET_COUNT = 250; // buckets along each side of the grid

struct Person
{
    int id;                // identity, from 0 in order of creation
    Vector position;       // y is the height of the ground
    Vector velocity;       // in the ground plane; y stays 0
    float direction;       // yaw about +y at which the person is drawn
    TgaImage *frontImage;  // the pictures are shared by all people, and set only in the mode
    uint32_t frontTexture; // that draws picture boards
    TgaImage *backImage;
    uint32_t backTexture;
};

struct PersonNode
{
    Person person;
    int row; // bucket that a pending change refers to; 0 for the people in the grid
    int column;
    PersonNode *next;
};

struct PeopleList
{
    int count;                                         // people in the grid
    PersonNode **buckets[BUCKET_COUNT * BUCKET_COUNT]; // [row * 250 + column] cell with the head of
                                                       // the chain, newest first; owned
    int bucketCount;                                   // BUCKET_COUNT
    int steprate;                                      // side of a bucket in world units, >= 1
    uint32_t displayList;                              // OpenGL list that draws one person
};

// The buckets within VIEW_DISTANCE of the cube along x and z; the ends are exclusive.
struct ViewRange
{
    int firstRow, endRow;
    int firstColumn, endColumn;
};

// Life cycle. makeList builds the grid over sizex * resolution by sizez * resolution world units
// and scatters n people in it, with four rand() numbers for each. Returns 1, or 0 for a null list,
// a world in which buckets would be less than one unit wide, a missing picture or no memory. After
// a failure the list can still be given to destroyPersonList. Without an OpenGL context the list is
// complete, but cannot be drawn.
int makeList(PeopleList *list, int n, int sizex, int sizez, int resolution);
int destroyPersonList(PeopleList *list); // frees people, cells and record; returns 1
void initPerson(Person *person);         // position, velocity and direction to 0

// Queries
ViewRange viewRange(const PeopleList *list, const Cube *cube);
int needUpdate(Person person, int row, int column, int steprate); // 1 when outside the bucket

// Changes. People outside the grid belong to its nearest edge bucket.
int addPerson(PeopleList *list, Person person); // 1, or 0 if there is no memory
// Takes the person with that id out of bucket (row, column). 1, or 0 when it is not there.
int removePerson(PeopleList *list, Person person, int row, int column);
// One step of h seconds for the people in the cube's view range.
void updatePerson(PeopleList *list, Cube *cube, float h, Terrain *terrain);
void updateAI(Person *person, const Cube *cube, int width, int resolution); // flee or wander
void updatePersonPosition(Person *person, const Terrain *terrain, float h);
int checkPersonCollision(Person person, Cube *cube); // 1 when crushed; adds to size and score

// Drawing
void drawPerson(const Person *person); // at the origin; for use inside a list being compiled
void drawHorde(const PeopleList *list, const Cube *cube); // those in range and in view
