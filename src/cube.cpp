#include "cube.h"

#include "image.h"
#include "main.h"
#include "texture.h"

#include <GL/gl.h>

#include <cmath>

constexpr double GRAVITY = 200.0;         // units/s^2, along -y
constexpr double GROWTH_GAIN = 30.0;      // 1/s^2; gain with which size eases toward targetSize
constexpr double MASS_GAIN = 5.0;         // mass gained with each unit of size
constexpr float TRAVEL_SPEED = 150.0f;    // units/s along x or z; if faster, velocity sets heading
constexpr double FAR_BELOW = 10000000.0;  // units; length of the shadow prisms
constexpr float SHADOW_BOX_HALF = 100.0f; // units; the box lies between the near and the far plane
constexpr float SHADOW_DARKNESS = 0.3f;   // fraction of the light that the shadow removes

void initCube(Cube *cube)
{
    cube->score = 0;
    cube->size = 100;
    cube->targetSize = 100;
    cube->growthRate = 0;
    cube->mass = 1000000;
    cube->inverseMass = 1 / cube->mass;
    cube->spinLimit = 5;
    cube->position = vectorInit(0, 2000, -4000);
    cube->velocity = vectorInit(0, 0, 0);
    cube->momentum = vectorInit(0, 0, 1000000000);
    cube->heading = 90.1f;
    setInertia(cube);
    cube->orientation = quaternionInit(1, 0, 0, 0);
    cube->force = vectorInit(0, 0, 0);
    cube->torque = vectorInit(0, 0, 0);

    loadTexture("Loading cube texture...\n", "TexCube.tga", GL_RGBA, &cube->image, &cube->texture);
}

void destroyCube(Cube *cube)
{
    tgaDestroy(cube->image);
    cube->image = nullptr;
}

void setInertia(Cube *cube)
{
    cube->inertia = static_cast<double>(cube->mass) * cube->size * cube->size / 6.0;
    cube->inverseInertia = 1 / cube->inertia;
}

Vector getCornerNoRotation(const Cube *cube, int corner)
{
    constexpr Vector SIGNS[CUBE_CORNERS] = {{1, -1, 1},  {1, 1, 1},  {1, 1, -1},  {1, -1, -1},
                                            {-1, -1, 1}, {-1, 1, 1}, {-1, 1, -1}, {-1, -1, -1}};
    if (corner < 1 || corner > CUBE_CORNERS)
        return vectorInit(0, 0, 0);
    return vectorMultiply(SIGNS[corner - 1], static_cast<float>(cube->size / 2.0));
}

Vector getCorner(const Cube *cube, int corner)
{
    Matrix rotation;
    quaternionToMatrix(cube->orientation, rotation);
    return vectorAdd(matrixVectorMultiply(rotation, getCornerNoRotation(cube, corner)),
                     cube->position);
}

Vector getCornerVelocity(const Cube *cube, int corner)
{
    const Vector arm = vectorSubtract(getCorner(cube, corner), cube->position);
    return vectorAdd(cube->velocity, vectorCrossProduct(cube->angularVelocity, arm));
}

// The offset is truncated to whole units first.
static bool isWithin(double offset, double limit)
{
    return std::fabs(std::trunc(offset)) < limit;
}

bool cubeCovers(const Cube *cube, Vector position, double reach)
{
    const double x = cube->position.x, y = cube->position.y, z = cube->position.z;
    const double half = 0.5 * cube->size;
    return isWithin(x - position.x, half) && isWithin(z - position.z, half) &&
           isWithin(y - position.y, reach);
}

bool cubeCrushes(const Cube *cube, Vector position)
{
    return cubeCovers(cube, position, cube->size);
}

static Vector farBelow(Vector corner)
{
    const Vector down = vectorInit(corner.x, static_cast<float>(corner.y - FAR_BELOW), corner.z);
    return vectorMultiply(normalizeVector(down), static_cast<float>(FAR_BELOW));
}

Vector getShadowEnd(const Cube *cube, int corner)
{
    return farBelow(getCorner(cube, corner));
}

static void applyGravity(Cube *cube, float dt)
{
    cube->momentum.y = static_cast<float>(cube->momentum.y - dt * GRAVITY * cube->mass);
}

// dt is applied twice: to the rate and to the size.
static void easeSize(Cube *cube, float dt)
{
    const double gap = static_cast<double>(cube->targetSize) - cube->size;
    cube->growthRate = static_cast<float>(dt * GROWTH_GAIN * gap);
    cube->size = static_cast<float>(cube->size + static_cast<double>(cube->growthRate) * dt);
}

static void grow(Cube *cube, float dt)
{
    if (cube->size < SMALLEST_SIZE)
    {
        cube->targetSize = 0;
        easeSize(cube, dt);
        cube->momentum = vectorInit(0, 0, 0);
        gameOver = 1;
    }
    else if (cube->size != cube->targetSize)
    {
        if (cube->targetSize > LARGEST_SIZE)
            cube->targetSize = LARGEST_SIZE;
        easeSize(cube, dt);
        cube->mass =
            static_cast<float>(cube->mass + static_cast<double>(cube->growthRate) * dt * MASS_GAIN);
        setInertia(cube);
    }
    cube->spinLimit =
        static_cast<float>((static_cast<double>(LARGEST_SIZE) - cube->size) / 50.0 + 1.0);
}

static void moveBody(Cube *cube, float dt)
{
    cube->momentum = vectorAdd(cube->momentum, vectorMultiply(cube->force, dt));
    cube->velocity = vectorMultiply(cube->momentum, cube->inverseMass);
    cube->position = vectorAdd(cube->position, vectorMultiply(cube->velocity, dt));
}

static void turnBody(Cube *cube, float dt)
{
    cube->angularMomentum = vectorAdd(cube->angularMomentum, vectorMultiply(cube->torque, dt));
    cube->angularVelocity =
        vectorMultiply(cube->angularMomentum, static_cast<float>(cube->inverseInertia));
    const Vector rate = cube->angularVelocity;
    cube->spin = quaternionMultiplyFloat(
        quaternionMultiplyQuaternion(quaternionInit(0, rate.x, rate.y, rate.z), cube->orientation),
        0.5f);
    Quaternion *turned = &cube->orientation;
    turned->w = static_cast<float>(turned->w + static_cast<double>(cube->spin.w) * dt);
    turned->x = static_cast<float>(turned->x + static_cast<double>(cube->spin.x) * dt);
    turned->y = static_cast<float>(turned->y + static_cast<double>(cube->spin.y) * dt);
    turned->z = static_cast<float>(turned->z + static_cast<double>(cube->spin.z) * dt);
    *turned = normalize(*turned);
}

// The heading of a slow cube stays as the keys have turned it.
static void followTravel(Cube *cube)
{
    if (mod(cube->velocity.x) >= TRAVEL_SPEED || mod(cube->velocity.z) >= TRAVEL_SPEED)
        cube->heading = findDirection(vectorInit(0, 0, 0), cube->velocity);
}

void updateCube(Cube *cube, float dt)
{
    applyGravity(cube, dt);
    grow(cube, dt);
    moveBody(cube, dt);
    turnBody(cube, dt);
    followTravel(cube);
    cube->force = vectorInit(0, 0, 0);
    cube->torque = vectorInit(0, 0, 0);
}

void applyForce(Cube *cube, Vector force, Vector point)
{
    cube->force = vectorAdd(cube->force, force);
    const Vector arm = vectorSubtract(point, cube->position);
    cube->torque = vectorAdd(cube->torque, vectorCrossProduct(arm, force));
}

void handleCollision(Cube *cube, Vector normal, Vector velocity, Vector corner, float depth)
{
    const float impactDamping = 8 * cube->mass;
    const float penetrationStiffness = 12 * cube->mass;
    const float depthDamping = static_cast<float>(0.1 * cube->mass);
    const float slideFriction = 6 * cube->mass;
    const float approachSpeed = -vectorDotProduct(velocity, normal);

    if (approachSpeed > 0)
        applyForce(cube, vectorMultiply(normal, approachSpeed * impactDamping), corner);
    const Vector slide = vectorAdd(velocity, vectorMultiply(normal, approachSpeed));
    applyForce(cube, vectorMultiply(slide, -slideFriction), corner);
    applyForce(cube, vectorMultiply(normal, depth * penetrationStiffness), corner);
    const double weakening = static_cast<double>(approachSpeed) * depth * depthDamping;
    applyForce(cube, vectorMultiply(normal, static_cast<float>(weakening)), corner);
}

// ---- drawing ------------------------------------------------------------------------------------

namespace
{
struct Face
{
    Vector normal;
    int corners[4]; // counter-clockwise from outside
};
} // namespace

constexpr Face FACES[] = {{{0, 0, 1}, {1, 2, 6, 5}},  {{-1, 0, 0}, {5, 6, 7, 8}},
                          {{0, 0, -1}, {8, 7, 3, 4}}, {{1, 0, 0}, {4, 3, 2, 1}},
                          {{0, 1, 0}, {2, 3, 7, 6}},  {{0, -1, 0}, {1, 5, 8, 4}}};
constexpr float FACE_TEXTURE[4][2] = {{1, 0}, {1, 1}, {0, 1}, {0, 0}};

static void setCubeSurface(const Cube *cube)
{
    constexpr float WHITE[] = {1, 1, 1, 1}, SHININESS[] = {40};
    glColor4f(1, 1, 1, 1);
    glMaterialfv(GL_FRONT, GL_AMBIENT, WHITE);
    glMaterialfv(GL_FRONT, GL_SPECULAR, WHITE);
    glMaterialfv(GL_FRONT, GL_SHININESS, SHININESS);
    glMaterialfv(GL_FRONT, GL_DIFFUSE, WHITE);
    useTexture(cube->texture, GL_MODULATE, GL_CLAMP);
}

static void emitVertex(Vector v)
{
    glVertex3f(v.x, v.y, v.z);
}

void drawCube(const Cube *cube)
{
    setCubeSurface(cube);
    glPushMatrix();
    glBegin(GL_QUADS);
    for (const Face &face : FACES)
    {
        glNormal3f(face.normal.x, face.normal.y, face.normal.z);
        for (int k = 0; k < 4; ++k)
        {
            glTexCoord2fv(FACE_TEXTURE[k]);
            emitVertex(getCornerNoRotation(cube, face.corners[k]));
        }
    }
    glEnd();
    glPopMatrix();
    glBindTexture(GL_TEXTURE_2D, 0);
}

// Corners in counter-clockwise order as seen from inside the cube. All polygons of the prism below
// a downward face then face outward, and the stencil count of what lies inside the prism ends at 1.
// The prism below an upward face is inside out, so that all its counts end at 0.
constexpr int SHADOW_FACES[6][4] = {{1, 2, 3, 4}, {2, 6, 7, 3}, {3, 7, 8, 4},
                                    {4, 8, 5, 1}, {5, 6, 2, 1}, {6, 5, 8, 7}};

constexpr float SHADOW_BOX[24][3] = {
    {-1, -1, 1},  {-1, 1, 1},  {1, 1, 1},    {1, -1, 1},   // z = +
    {-1, -1, -1}, {-1, 1, -1}, {-1, 1, 1},   {-1, -1, 1},  // x = -
    {1, -1, -1},  {1, 1, -1},  {-1, 1, -1},  {-1, -1, -1}, // z = -
    {1, -1, 1},   {1, 1, 1},   {1, 1, -1},   {1, -1, -1},  // x = +
    {-1, 1, 1},   {-1, 1, -1}, {1, 1, -1},   {1, 1, 1},    // y = +
    {1, -1, 1},   {1, -1, -1}, {-1, -1, -1}, {-1, -1, 1},  // y = -
};

void renderShadowVolume(const Cube *cube, int a, int b, int c, int d)
{
    const int corners[4] = {a, b, c, d};
    Vector near[4], far[4];
    for (int k = 0; k < 4; ++k)
    {
        near[k] = getCorner(cube, corners[k]);
        far[k] = farBelow(near[k]);
    }
    glBegin(GL_QUADS);
    for (int k = 3; k >= 0; --k)
        emitVertex(far[k]);
    glEnd();
    glBegin(GL_QUADS);
    for (int k = 0; k < 4; ++k)
        emitVertex(near[k]);
    glEnd();
    glBegin(GL_QUAD_STRIP);
    for (int k = 0; k <= 4; ++k)
    {
        emitVertex(near[k % 4]);
        emitVertex(far[k % 4]);
    }
    glEnd();
}

void drawShadowBox(float x, float y, float z)
{
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glPushMatrix();
    glColor4f(0, 0, 0, SHADOW_DARKNESS);
    glTranslatef(x, y, z);
    glBegin(GL_QUADS);
    for (const float *sign : SHADOW_BOX)
        glVertex3f(sign[0] * SHADOW_BOX_HALF, sign[1] * SHADOW_BOX_HALF, sign[2] * SHADOW_BOX_HALF);
    glEnd();
    glPopMatrix();
    glEnable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
}

// Draws the polygons of a prism that are not culled. Where a polygon lies behind what has been
// drawn before, depthFail changes the stencil count.
static void countHiddenPolygons(const Cube *cube, const int face[4], GLenum culled,
                                GLenum depthFail)
{
    glCullFace(culled);
    glStencilFunc(GL_ALWAYS, 0, 0xFF);
    glStencilOp(GL_KEEP, depthFail, GL_KEEP);
    renderShadowVolume(cube, face[0], face[1], face[2], face[3]);
}

static void castFaceShadow(const Cube *cube, const int face[4], Vector eye)
{
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glDepthMask(GL_FALSE);
    glEnable(GL_CULL_FACE);
    glEnable(GL_STENCIL_TEST);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(0, 100);
    countHiddenPolygons(cube, face, GL_FRONT, GL_INCR);
    countHiddenPolygons(cube, face, GL_BACK, GL_DECR);
    glDisable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(0, 0);
    glDisable(GL_CULL_FACE);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthMask(GL_TRUE);
    // Several polygons of the box may cover a pixel. The first one darkens the pixel and sets its
    // count to 0, so that the others do not darken it again.
    glStencilFunc(GL_NOTEQUAL, 0, 0xFF);
    glStencilOp(GL_REPLACE, GL_REPLACE, GL_REPLACE);
    drawShadowBox(eye.x, eye.y, eye.z);
    glDisable(GL_STENCIL_TEST);
}

void renderCubeShadow(const Cube *cube, float x, float y, float z)
{
    for (const int *face : SHADOW_FACES)
        castFaceShadow(cube, face, vectorInit(x, y, z));
}
