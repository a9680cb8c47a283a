#include "shot.h"

#include "cube.h"
#include "terrain.h"

#include <GL/gl.h>

#include <cstdlib>

constexpr double SHOT_GRAVITY = 200.0; // units/s^2, along -y
constexpr float HIT_PENALTY = 7.5f;    // taken from the cube's target size
constexpr double KNOCK_BACK = 2750.0;  // units/s^2; times the cube's mass
constexpr float CRATER_POWER = 8.0f;   // gives a crater of strength 16
constexpr float MODEL_SCALE = 3.0f;

static void unlinkShot(Shot **link)
{
    Shot *shot = *link;
    *link = shot->next;
    free(shot);
}

int destroyShotList(ShotList *list)
{
    while (list->head)
        unlinkShot(&list->head);
    free(list);
    return 1;
}

int addShot(ShotList *list, Shot shot)
{
    shot.id = list->nextId++;
    shot.next = list->head;
    Shot *node = static_cast<Shot *>(malloc(sizeof(Shot)));
    if (!node)
        return 0;
    *node = shot;
    list->head = node;
    return 1;
}

int removeShot(ShotList *list, Shot shot)
{
    for (Shot **link = &list->head; *link; link = &(*link)->next)
        if ((*link)->id == shot.id)
        {
            unlinkShot(link);
            return 1;
        }
    return 0;
}

void applyShotGravity(Shot *shot, float dt)
{
    shot->velocity.y = static_cast<float>(shot->velocity.y - dt * SHOT_GRAVITY);
}

void updateShotPosition(Shot *shot, float dt)
{
    const double h = dt;
    shot->position.x = static_cast<float>(shot->position.x + 2.0 * shot->velocity.x * h);
    shot->position.y = static_cast<float>(shot->position.y + shot->velocity.y * h);
    shot->position.z = static_cast<float>(shot->position.z + 2.0 * shot->velocity.z * h);
}

int checkShotCollision(const Shot *shot, Cube *cube)
{
    if (!cubeCovers(cube, shot->position, 0.5 * cube->size))
        return 0;
    cube->targetSize -= HIT_PENALTY;
    const Vector push = vectorMultiply(normalizeVector(shot->velocity),
                                       static_cast<float>(cube->mass * KNOCK_BACK));
    applyForce(cube, push, shot->position);
    return 1;
}

void updateShot(ShotList *list, Cube *cube, float dt)
{
    for (Shot *shot = list->head, *next = nullptr; shot; shot = next)
    {
        applyShotGravity(shot, dt);
        updateShotPosition(shot, dt);
        const int struck = checkShotCollision(shot, cube);
        next = shot->next;
        if (struck)
            removeShot(list, *shot);
    }
}

void landShots(ShotList *list, Terrain *terrain)
{
    for (Shot *shot = list->head, *next = nullptr; shot; shot = next)
    {
        next = shot->next;
        const float clearance =
            shot->position.y - getHeightAt(terrain, shot->position.x, shot->position.z);
        if (clearance < 0)
        {
            deformTerrain(terrain, shot->position, CRATER_POWER, DEFORM_CRATER);
            removeShot(list, *shot);
        }
    }
}

void drawShots(ShotList *list, Terrain *terrain)
{
    glDisable(GL_CULL_FACE);
    landShots(list, terrain);
    for (const Shot *shot = list->head; shot; shot = shot->next)
    {
        glPushMatrix();
        glTranslatef(shot->position.x, shot->position.y, shot->position.z);
        glRotatef(static_cast<float>(shot->heading), 0, 1, 0);
        glScalef(MODEL_SCALE, MODEL_SCALE, MODEL_SCALE);
        drawShot(shot);
        glPopMatrix();
    }
    glEnable(GL_CULL_FACE);
}

constexpr float HEAD_GLOW[] = {1, 0.8f, 0.4f, 1};
constexpr float TAIL_GLOW[] = {0.5f, 0, 0, 0}; // alpha 0: blending adds it to the background
constexpr float NO_LIGHT[] = {0, 0, 0, 0};

static void setGlow(const float *colour)
{
    glColor4fv(colour);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, colour);
}

// Both vertices of the tail are at the same place: the quadrilateral is a triangle.
static void drawTail()
{
    setGlow(TAIL_GLOW);
    glVertex3f(-12, 0, 0);
    glVertex3f(-12, 0, 0);
}

void drawShot(const Shot *)
{
    glColor4fv(HEAD_GLOW);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, NO_LIGHT);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, HEAD_GLOW);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, NO_LIGHT);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, NO_LIGHT);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 0);
    glPushMatrix();
    glBegin(GL_QUADS);
    glNormal3f(0, 1, 0);
    glVertex3f(4, 0, 1);
    glVertex3f(4, 0, -1);
    drawTail();
    setGlow(HEAD_GLOW);
    glNormal3f(1, 0, 0);
    glVertex3f(4, -1, 0);
    glVertex3f(4, 1, 0);
    drawTail();
    glEnd();
    glPopMatrix();
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, NO_LIGHT);
}
