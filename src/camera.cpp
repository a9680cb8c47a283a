#include "camera.h"

#include "cube.h"
#include "main.h"

#include <cmath>

constexpr float CLOSEST_FOLLOW = 300.0f;    // distance to a cube of size 100 or less
constexpr float GAME_OVER_FOLLOW = 1000.0f; // distance at which the eye circles the cube

void initCamera(Camera *camera)
{
    camera->target = vectorInit(400, 600, 400);
    camera->position = vectorInit(-200, 500, -4000);
    camera->velocity = vectorInit(0, 0, 0);
    camera->stiffness = 25;
    camera->followDistance = 0;
}

static float distanceBehind(const Cube *cube)
{
    if (gameOver == 1)
        return GAME_OVER_FOLLOW;
    if (cube->size > 100)
        return static_cast<float>(cube->size * 0.5 + 250.0);
    return CLOSEST_FOLLOW;
}

void calcTargetView(Camera *camera, const Cube *cube)
{
    camera->followDistance = distanceBehind(cube);
    const double angle = decToRad(cube->heading);
    const double distance = camera->followDistance;
    camera->target.x = static_cast<float>(cube->position.x - std::cos(angle) * distance);
    camera->target.z = static_cast<float>(cube->position.z - std::sin(angle) * distance);
}

static float easingSpeed(float stiffness, float h, float from, float to)
{
    return static_cast<float>(static_cast<double>(stiffness) * h *
                              (static_cast<double>(to) - from));
}

void updateCamera(Camera *camera, float h)
{
    const Vector from = camera->position, to = camera->target;
    camera->velocity = vectorInit(easingSpeed(camera->stiffness, h, from.x, to.x),
                                  easingSpeed(camera->stiffness, h, from.y, to.y),
                                  easingSpeed(camera->stiffness, h, from.z, to.z));
    camera->position.x = static_cast<float>(from.x + static_cast<double>(camera->velocity.x) * h);
    camera->position.y = static_cast<float>(from.y + static_cast<double>(camera->velocity.y) * h);
    camera->position.z = static_cast<float>(from.z + static_cast<double>(camera->velocity.z) * h);
}
