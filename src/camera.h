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
    float followDistance; // behind the cube in the ground plane, and above the ground under the eye
};

void initCamera(Camera *camera);
// Sets followDistance and the x and z of target; its y, above the ground, is set by the frame.
void calcTargetView(Camera *camera, const Cube *cube);
// Moves the eye by the share stiffness h^2 of what is left of its way; not frame-rate independent.
void updateCamera(Camera *camera, float h);
