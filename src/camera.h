// camera.h - the follow camera: it eases toward a place behind the cube. World units and seconds.
#pragma once

#include "util.h"

struct Cube;

struct Camera
{
    Vector target;        // the point that the eye eases toward
    Vector position;      // the eye
    Vector velocity;      // of the last easing step
    float stiffness;      // easing gain, 1/s^2
    float followDistance; // from the cube to target along x and z; also the height of target above
                          // the ground below the eye
};

void initCamera(Camera *camera);
// Sets followDistance and the x and z of target. drawScreen sets the y of target.
void calcTargetView(Camera *camera, const Cube *cube);
// Moves the eye toward target: the step is stiffness * h^2 times the remaining way. The motion
// therefore depends on the frame rate.
void updateCamera(Camera *camera, float h);
