#include "tank.h"

#include "cube.h"
#include "image.h"
#include "main.h"
#include "shot.h"
#include "terrain.h"
#include "texture.h"
#include "view.h"

#include <GL/gl.h>

#include <cmath>
#include <cstdlib>

constexpr float FIRING_RANGE = 500.0f; // in the ground plane
constexpr double RELOAD_SECONDS = 2.0; // between two shots of one tank
constexpr float WANDER_SPEED = 100.0f; // units/s
constexpr int SHORTEST_LEG = 500;      // units driven from one choice of heading to the next
constexpr int LEG_SPREAD = 2000;       // units; a random length below this is added to a leg
constexpr double TURN_GAIN = 10.0;     // 1/s^2
constexpr double SPEED_GAIN = 15.0;    // 1/s^2
constexpr float MUZZLE_AHEAD = 10.0f;  // along world x, whichever way the turret faces
constexpr float MUZZLE_HEIGHT = 33.0f;
constexpr float MUZZLE_LIFT = 80.0f;  // upward speed of a shot
constexpr double CRUSH_KICK = 3000.0; // units/s^2, upward; times the cube's mass
constexpr float CRUSH_CRATER = 10.0f; // gives a crater of strength 20
constexpr float CRUSH_GROWTH = 10.0f;
constexpr int CRUSH_SCORE = 50;
constexpr double PLACEMENT_OFFSET = 0.6; // fraction of the extent; 0.5 would centre the tanks
constexpr float HULL_YAW = 5.0f;         // degrees added to the heading when the tank is drawn

// ---- life cycle ---------------------------------------------------------------------------------

static void unlinkTank(TankNode **link)
{
    TankNode *node = *link;
    *link = node->next;
    free(node);
}

void initTank(Tank *tank)
{
    tank->position = vectorInit(0, 50, 0);
    tank->speed = 100;
    tank->targetSpeed = 100;
    tank->acceleration = 0;
    tank->heading = 0;
    tank->targetHeading = 0;
    tank->turnRate = 0;
    tank->scale = 10;
    tank->lastShotTime = 0;
}

static uint32_t compileModel(void (*draw)(const Tank *), const Tank *tank)
{
    const uint32_t list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    draw(tank);
    glEndList();
    return list;
}

int makeTankList(TankList *list, int n)
{
    if (!list)
        return 0;
    Tank tank = {};
    initTank(&tank);
    list->hullList = compileModel(drawTank, &tank);
    list->turretList = compileModel(drawTurret, &tank);
    list->head = nullptr;
    if (!loadTexture("Loading Tank texture...\n", "TexTank.tga", GL_RGBA, &list->image,
                     &list->texture))
        return 0;
    for (int id = 0; id < n; ++id)
    {
        tank.id = id;
        addTank(list, tank);
    }
    return 1;
}

void randomTankPlacement(TankList *list, int sizex, int sizez, int resolution)
{
    const int extentX = sizex * resolution;
    const int extentZ = sizez * resolution;
    if (extentX <= 0 || extentZ <= 0)
        return;
    for (TankNode *node = list->head; node; node = node->next)
    {
        Tank &tank = node->tank;
        tank.position.x = static_cast<float>(rand() % extentX - extentX * PLACEMENT_OFFSET);
        tank.position.z = static_cast<float>(rand() % extentZ - extentZ * PLACEMENT_OFFSET);
        tank.targetHeading = static_cast<float>(rand() % 360);
    }
}

int destroyTankList(TankList *list)
{
    while (list->head)
        unlinkTank(&list->head);
    tgaDestroy(list->image);
    free(list);
    return 1;
}

int addTank(TankList *list, Tank tank)
{
    TankNode *node = static_cast<TankNode *>(malloc(sizeof(TankNode)));
    if (!node)
        return 0;
    *node = {tank, list->head};
    list->head = node;
    return 1;
}

int removeTank(TankList *list, Tank tank)
{
    for (TankNode **link = &list->head; *link; link = &(*link)->next)
        if ((*link)->tank.id == tank.id)
        {
            unlinkTank(link);
            return 1;
        }
    return 0;
}

// ---- behaviour ----------------------------------------------------------------------------------

// The heading of a tank that drives straight toward the cube.
static double headingToCube(const Tank *tank, const Cube *cube)
{
    return 180.0 - findDirection(cube->position, tank->position);
}

// The horizontal velocity equals the offset to the cube: the farther the cube, the faster the shot.
static void fire(const Tank *tank, const Cube *cube, ShotList *shots)
{
    Shot shot = {};
    shot.position = vectorAdd(tank->position, vectorInit(MUZZLE_AHEAD, MUZZLE_HEIGHT, 0));
    shot.velocity = vectorInit(cube->position.x - tank->position.x, MUZZLE_LIFT,
                               cube->position.z - tank->position.z);
    shot.heading = truncateToInt(360.0 - findDirection(vectorInit(0, 0, 0), shot.velocity));
    addShot(shots, shot);
}

static void engage(Tank *tank, const Cube *cube, ShotList *shots, float time)
{
    tank->targetSpeed = 0;
    tank->targetHeading = static_cast<float>(headingToCube(tank, cube));
    tank->wanderDistance = -1; // a new heading is chosen as soon as the cube is out of range
    if (static_cast<double>(time) - tank->lastShotTime > RELOAD_SECONDS)
    {
        fire(tank, cube, shots);
        tank->lastShotTime = time;
    }
}

void updateTankAI(Tank *tank, const Cube *cube, ShotList *shots, float time)
{
    const float distance =
        pithag(tank->position.x - cube->position.x, tank->position.z - cube->position.z);
    if (distance < FIRING_RANGE && gameOver == 0)
        engage(tank, cube, shots, time);
    else if (tank->wanderDistance <= 0)
    {
        tank->targetSpeed = WANDER_SPEED;
        tank->wanderDistance = rand() % LEG_SPREAD + SHORTEST_LEG;
        tank->targetHeading = static_cast<float>(rand() % 360 - 180);
    }
}

// Headings are not wrapped: from 170 to -170 a tank turns by 340 degrees.
static void turnAndAccelerate(Tank *tank, float h)
{
    if (tank->heading != tank->targetHeading)
    {
        const double gap = static_cast<double>(tank->targetHeading) - tank->heading;
        tank->turnRate = static_cast<float>(h * TURN_GAIN * gap);
        tank->heading = static_cast<float>(tank->heading + static_cast<double>(tank->turnRate) * h);
    }
    if (tank->speed != tank->targetSpeed)
    {
        const double gap = static_cast<double>(tank->targetSpeed) - tank->speed;
        tank->acceleration = static_cast<float>(h * SPEED_GAIN * gap);
        tank->speed = static_cast<float>(tank->speed + static_cast<double>(tank->acceleration) * h);
    }
}

// A tank beyond the space along x turns back. A tank beyond the space along z turns outward and
// leaves the land, also in a corner: the rule for z comes last.
static void chooseHeadingAtEdge(Tank *tank, Span space)
{
    if (tank->position.x > space.high)
        tank->targetHeading = 180;
    else if (tank->position.x < space.low)
        tank->targetHeading = 0;
    if (tank->position.z > space.high)
        tank->targetHeading = 270;
    else if (tank->position.z < space.low)
        tank->targetHeading = 90;
}

static void drive(Tank *tank, float h, Span space)
{
    turnAndAccelerate(tank, h);
    chooseHeadingAtEdge(tank, space);
    const double course = decToRad(static_cast<float>(tank->heading + 90.0));
    tank->position.x = static_cast<float>(tank->position.x + std::sin(course) * h * tank->speed);
    tank->position.z = static_cast<float>(tank->position.z + std::cos(course) * h * tank->speed);
    tank->wanderDistance =
        truncateToInt(tank->wanderDistance - static_cast<double>(tank->speed) * h);
}

void updateTankPosition(Tank *tank, float h, int width, int resolution)
{
    drive(tank, h, livingSpace(width * resolution));
}

int checkTankCollision(Tank tank, Cube *cube, Terrain *terrain)
{
    if (!cubeCrushes(cube, tank.position))
        return 0;
    cube->targetSize += CRUSH_GROWTH;
    deformTerrain(terrain, tank.position, CRUSH_CRATER, DEFORM_CRATER);
    applyForce(cube, vectorInit(0, static_cast<float>(cube->mass * CRUSH_KICK), 0), tank.position);
    cube->score += CRUSH_SCORE;
    return 1;
}

void updateTank(TankList *list, Cube *cube, float h, Terrain *terrain, ShotList *shots, float time)
{
    const Span space = livingSpace(terrain->width * truncateToInt(terrain->scale));
    for (TankNode *node = list->head, *next = nullptr; node; node = next)
    {
        updateTankAI(&node->tank, cube, shots, time);
        drive(&node->tank, h, space);
        next = node->next;
        if (checkTankCollision(node->tank, cube, terrain))
            removeTank(list, node->tank);
    }
}

static float groundUnder(const Tank *tank, const Terrain *terrain)
{
    return getHeightAt(terrain, tank->position.x, tank->position.z);
}

void settleTanks(TankList *list, const Terrain *terrain)
{
    for (TankNode *node = list->head; node; node = node->next)
        node->tank.position.y = groundUnder(&node->tank, terrain);
}

// ---- drawing ------------------------------------------------------------------------------------

namespace
{
struct TankVertex
{
    float position[3]; // model units: x forward, y up from the ground
    float atlas[2];    // atlas units, 32 to the picture
};

struct Quad
{
    float normal[3];
    TankVertex vertices[4];
};
} // namespace

constexpr float ATLAS_UNITS = 32.0f;
constexpr float MODEL_RADIUS = 4.5f; // model units from the ground below the centre to the muzzle

constexpr Quad HULL[] = {
    // left track, outer
    {{0, 0, 1}, {{2, 0, 2, 15, 20}, {2, 1.5f, 2, 15, 26}, {-2, 2, 2, 31, 31}, {-2, 0, 2, 31, 20}}},
    // left track, inner
    {{0, -1, 0}, {{-2, 0, 1, 15, 20}, {-2, 2, 1, 15, 26}, {2, 1.5f, 1, 31, 31}, {2, 0, 1, 31, 20}}},
    // left track, front
    {{1, 0, 0}, {{2, 0, 1, 14, 19}, {2, 1.5f, 1, 14, 25}, {2, 1.5f, 2, 8, 25}, {2, 0, 2, 8, 19}}},
    // left track, back
    {{-1, 0, 0}, {{-2, 0, 2, 14, 19}, {-2, 2, 2, 14, 25}, {-2, 2, 1, 8, 25}, {-2, 0, 1, 8, 19}}},
    // left track, top
    {{0, 1, 0}, {{2, 1.5f, 2, 14, 31}, {2, 1.5f, 1, 8, 31}, {-2, 2, 1, 8, 16}, {-2, 2, 2, 14, 16}}},
    // right track, outer
    {{0, 0, -1},
     {{-2, 0, -2, 31, 20}, {-2, 2, -2, 31, 31}, {2, 1.5f, -2, 15, 26}, {2, 0, -2, 15, 20}}},
    // right track, inner
    {{0, -1, 0},
     {{2, 0, -1, 15, 20}, {2, 1.5f, -1, 15, 26}, {-2, 2, -1, 31, 31}, {-2, 0, -1, 31, 20}}},
    // right track, front
    {{1, 0, 0},
     {{2, 0, -2, 14, 19}, {2, 1.5f, -2, 14, 25}, {2, 1.5f, -1, 8, 25}, {2, 0, -1, 8, 19}}},
    // right track, back
    {{-1, 0, 0},
     {{-2, 0, -1, 14, 19}, {-2, 2, -1, 14, 25}, {-2, 2, -2, 8, 25}, {-2, 0, -2, 8, 19}}},
    // right track, top
    {{0, 1, 0},
     {{2, 1.5f, -1, 14, 31}, {2, 1.5f, -2, 8, 31}, {-2, 2, -2, 8, 16}, {-2, 2, -1, 14, 16}}},
    // body, front
    {{1, 0, 0},
     {{1.8f, 0.7f, -1, 15, 1},
      {1.8f, 2.5f, -1, 15, 15},
      {1.8f, 2.5f, 1, 1, 15},
      {1.8f, 0.7f, 1, 1, 1}}},
    // body, back
    {{-1, 0, 0},
     {{-1.8f, 0.7f, 1, 15, 1},
      {-1.8f, 2.5f, 1, 15, 15},
      {-1.8f, 2.5f, -1, 1, 15},
      {-1.8f, 0.7f, -1, 1, 1}}},
    // body, top
    {{0, 1, 0},
     {{1.8f, 2.5f, 1, 31, 19},
      {1.8f, 2.5f, -1, 16, 19},
      {-1.8f, 2.5f, -1, 16, 1},
      {-1.8f, 2.5f, 1, 31, 1}}},
    // body, right side
    {{0, 0, -1},
     {{-1.8f, 0.7f, -1, 15, 1},
      {-1.8f, 2.5f, -1, 15, 15},
      {1.8f, 2.5f, -1, 1, 15},
      {1.8f, 0.7f, -1, 1, 1}}},
    // body, left side
    {{0, 0, 1},
     {{1.8f, 0.7f, 1, 15, 1},
      {1.8f, 2.5f, 1, 15, 15},
      {-1.8f, 2.5f, 1, 1, 15},
      {-1.8f, 0.7f, 1, 1, 1}}},
};

constexpr Quad TURRET[] = {
    // turret, front
    {{1, 0, 0},
     {{1, 2.5f, -1, 15, 1}, {1, 3.5f, -1, 15, 15}, {1, 3.5f, 1, 1, 15}, {1, 2.5f, 1, 1, 1}}},
    // turret, back
    {{-1, 0, 0},
     {{-1, 2.5f, 1, 15, 1}, {-1, 3.2f, 1, 15, 15}, {-1, 3.2f, -1, 1, 15}, {-1, 2.5f, -1, 1, 1}}},
    // turret, top
    {{0, 1, 0},
     {{1, 3.5f, 1, 31, 19}, {1, 3.5f, -1, 16, 19}, {-1, 3.2f, -1, 16, 1}, {-1, 3.2f, 1, 31, 1}}},
    // turret, right side
    {{0, 0, -1},
     {{-1, 2.5f, -1, 15, 1}, {-1, 3.2f, -1, 15, 15}, {1, 3.5f, -1, 1, 15}, {1, 2.5f, -1, 1, 1}}},
    // turret, left side
    {{0, 0, 1},
     {{1, 2.5f, 1, 15, 1}, {1, 3.5f, 1, 15, 15}, {-1, 3.2f, 1, 1, 15}, {-1, 2.5f, 1, 1, 1}}},
    // barrel, top
    {{0, 1, 0},
     {{2.5f, 3.7f, 0.4f, 3, 31},
      {2.5f, 3.7f, -0.4f, 1, 31},
      {1, 3.5f, -0.4f, 1, 19},
      {1, 3.5f, 0.4f, 3, 19}}},
    // barrel, right side
    {{0, 0, -1},
     {{1, 2.7f, -0.4f, 5, 31},
      {1, 3.5f, -0.4f, 4, 31},
      {2.5f, 3.7f, -0.4f, 4, 19},
      {2.5f, 2.9f, -0.4f, 5, 19}}},
    // barrel, muzzle end
    {{0, 0, -1},
     {{2.5f, 2.9f, 0.4f, 3, 16},
      {2.5f, 2.9f, -0.4f, 3, 18},
      {2.5f, 3.7f, -0.4f, 1, 18},
      {2.5f, 3.7f, 0.4f, 1, 16}}},
    // barrel, left side
    {{0, 0, 1},
     {{2.5f, 2.9f, 0.4f, 5, 19},
      {2.5f, 3.7f, 0.4f, 4, 19},
      {1, 3.5f, 0.4f, 4, 31},
      {1, 2.7f, 0.4f, 5, 31}}},
};

template <int count> static void drawQuads(const Quad (&quads)[count])
{
    glBegin(GL_QUADS);
    for (const Quad &quad : quads)
    {
        glNormal3fv(quad.normal);
        for (const TankVertex &vertex : quad.vertices)
        {
            glTexCoord2f(vertex.atlas[0] / ATLAS_UNITS, vertex.atlas[1] / ATLAS_UNITS);
            glVertex3fv(vertex.position);
        }
    }
    glEnd();
}

void drawTank(const Tank *)
{
    drawQuads(HULL);
}

void drawTurret(const Tank *)
{
    drawQuads(TURRET);
}

static void setTankSurface(const TankList *list)
{
    constexpr float WHITE[] = {1, 1, 1, 1};
    glColor3f(1, 1, 1);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, WHITE);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, WHITE);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 20);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, WHITE);
    useTexture(list->texture, GL_MODULATE, GL_REPEAT);
}

// Turns the model's up axis onto the ground's normal.
static void tiltToGround(const Tank *tank, const Terrain *terrain)
{
    constexpr Vector UP = {0, 1, 0};
    const Vector ground = terrain->normals[worldToTerrainX(terrain, tank->position.x)]
                                          [worldToTerrainZ(terrain, tank->position.z)];
    const Vector axis = vectorCrossProduct(UP, ground);
    const double tilt = clampedAcos(vectorDotProduct(UP, ground));
    glRotatef(radToDec(static_cast<float>(tilt)), axis.x, 0, axis.z);
}

static void drawOneTank(const TankList *list, const Tank *tank, const Cube *cube,
                        const Terrain *terrain)
{
    glPushMatrix();
    glTranslatef(tank->position.x, tank->position.y, tank->position.z);
    glScalef(tank->scale, tank->scale, tank->scale);
    tiltToGround(tank, terrain);
    glRotatef(tank->heading + HULL_YAW, 0, 1, 0);
    glCallList(list->hullList);
    glRotatef(static_cast<float>(headingToCube(tank, cube) - tank->heading), 0, 1, 0);
    glCallList(list->turretList);
    glPopMatrix();
}

void drawTanks(TankList *list, const Cube *cube, const Terrain *terrain)
{
    setTankSurface(list);
    settleTanks(list, terrain);
    for (const TankNode *node = list->head; node; node = node->next)
        if (sphereInView(node->tank.position, node->tank.scale * MODEL_RADIUS))
            drawOneTank(list, &node->tank, cube, terrain);
}
