// cube.h - the player's cube: a rigid body that carries the score and the size of the player.
// World units, seconds, degrees unless stated otherwise; y up.
#pragma once

#include "util.h"

#include <cstdint>

struct TgaImage;

struct Cube
{
    int32_t score;     // points
    float size;        // edge length
    float targetSize;  // what size eases toward
    float growthRate;  // rate of change of size in the last step, units per second
    float spinLimit;   // radians per second; at this spin and above, the keys add no torque
    float heading;     // direction of travel as findDirection measures it; not wrapped
    TgaImage *image;   // picture on each face; owned
    uint32_t texture;  // OpenGL name of the picture
    float mass;        // grows with size
    float inverseMass; // 1 / the mass at the start; does not change with mass
    double inertia;    // mass * size^2 / 6, the same about every axis
    double inverseInertia;
    Vector position;        // centre
    Quaternion orientation; // body to world
    Vector momentum;
    Vector angularMomentum;
    Vector velocity;        // of the last step
    Vector angularVelocity; // of the last step; radians per second
    Quaternion spin;        // time derivative of orientation in the last step
    Vector force;           // accumulated since the last step
    Vector torque;          // accumulated since the last step
};

constexpr float SMALLEST_SIZE = 50.0f; // below this size the game is over
constexpr float LARGEST_SIZE = 250.0f; // a greater targetSize is reduced to this
constexpr int CUBE_CORNERS = 8;        // numbered 1 to 8; k and k + 4 differ only in x

// Life cycle. initCube loads TexCube.tga from the working directory, reporting on standard error;
// without the picture the cube is drawn untextured. The name of the texture is set only if there is
// an OpenGL context.
void initCube(Cube *cube);
void destroyCube(Cube *cube);
void setInertia(Cube *cube); // computes inertia and inverseInertia from mass and size

// Queries. For a corner number outside 1 to 8 they return the place or the velocity of the centre.
Vector getCornerNoRotation(const Cube *cube, int corner); // in the body frame
Vector getCorner(const Cube *cube, int corner);           // in the world
Vector getCornerVelocity(const Cube *cube, int corner);   // in the world, of the last step
// Whether position lies less than half an edge from the centre along x and z and less than reach
// along y. The offsets are truncated to whole units first.
bool cubeCovers(const Cube *cube, Vector position, double reach);
// Whether the cube crushes a person or a tank at position: cubeCovers with a reach of a whole edge.
bool cubeCrushes(const Cube *cube, Vector position);

// The lower end of the edge that a shadow prism has below the corner.
Vector getShadowEnd(const Cube *cube, int corner);

// Changes
// Steps the body by dt seconds (semi-implicit Euler): gravity, growth, then the forces and torques
// accumulated since the last step. Sets gameOver once the size is below SMALLEST_SIZE.
void updateCube(Cube *cube, float dt);
void applyForce(Cube *cube, Vector force, Vector point); // accumulates a force at a world point
// Penalty forces for one corner below the ground: a spring along the unit normal, damping of the
// approach and friction along the surface. depth is positive.
void handleCollision(Cube *cube, Vector normal, Vector velocity, Vector corner, float depth);

// Drawing
void drawCube(const Cube *cube); // in the body frame, which the caller has set up
// Darkens what lies below the cube, with depth-fail stencil shadow volumes; (x, y, z) is the eye.
// The stencil buffer must be zero and is zero afterwards. Face culling is disabled afterwards.
void renderCubeShadow(const Cube *cube, float x, float y, float z);
// Emits the prism that reaches down from the face with these corners.
void renderShadowVolume(const Cube *cube, int a, int b, int c, int d);
void drawShadowBox(float x, float y, float z); // a translucent black box around a point
