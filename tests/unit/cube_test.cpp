#include "fixtures.h"

constexpr float M = 1e6f; // mass of the cube at the start

TEST_F(World, CubeFallsAndRollsOnUnderTheForcesOfOneStep)
{
    updateCube(&cb, 0.02f);
    expectNear({0, 1999.92, -3980, 0, -4, 1000, 90, 4}, 1e-3, cb.position, cb.velocity, cb.heading,
               cb.spinLimit);
    // Speed along x and z, and the heading
    for (const auto &s : table("149 149.9 33 | 150 0 0 | -150 0 180 | 0 -151 270 | 0 1000 90"))
    {
        cb.momentum = {s[0] * M, 0, s[1] * M};
        cb.heading = 33;
        updateCube(&cb, 0);
        expectNear({s[2], 1999.92, -3980}, 1e-3, cb.heading, cb.position.y, cb.position.z);
    }
    cb.angularMomentum.y = cb.torque.y = static_cast<float>(cb.inertia);
    applyForce(&cb, {2e8f, 0, 0}, cb.position);
    updateCube(&cb, 1);
    expectNear({200, -200, 1000, 0, 2, 0, 0, 0, 0, 0, 0, 0}, 1e-3, cb.velocity, cb.angularVelocity,
               cb.force, cb.torque);
    expectNear({0.70710678, 0, 0.70710678}, 1e-6, cb.orientation.w, cb.orientation.x,
               cb.orientation.y);
}

TEST_F(World, CubeGrowsTowardsItsTargetUntilItIsTooSmallToPlay)
{
    // Size and target; then size, target, mass gained and game over after a step of 0.1 s.
    for (const auto &s : table("100 110 103 110 15 0 | 100 260 145 250 225 0 | 60 40 54 40 -30 0 | "
                               "50 50 50 50 0 0 | 49.999 90 34.9993 0 0 1"))
    {
        Cube cube = cb;
        cube.size = s[0];
        cube.targetSize = s[1];
        cube.force.x = 1e7f;
        updateCube(&cube, 0.1f);
        const double inertia = s[4] != 0 ? cube.mass * s[2] * s[2] / 6.0 : cb.inertia;
        expectNear(
            {s[2], s[3], s[4], s[5], 6 - s[2] / 50, 1, 1, s[5] * 20 - 20, 1000 - s[5] * 1000}, 1e-3,
            cube.size, cube.targetSize, cube.mass - M, gameOver, cube.spinLimit,
            cube.inverseInertia * inertia, cube.velocity);
    }
}

TEST_F(World, CornersAreNumberedAndTurnWithTheCube)
{
    const float corners[10][3] = {{},          {1, -1, 1}, {1, 1, 1},   {1, 1, -1},   {1, -1, -1},
                                  {-1, -1, 1}, {-1, 1, 1}, {-1, 1, -1}, {-1, -1, -1}, {}};
    cb.position = {0, 0, 0};
    cb.orientation = {0.70710678f, 0, 0.70710678f, 0}; // +x towards -z
    cb.velocity = {1, 2, 3};
    cb.angularVelocity = {0, 2, 0};
    for (int k = 0; k < 10; ++k)
    {
        const float x = corners[k][2] * 50, y = corners[k][1] * 50, z = corners[k][0] * -50;
        expectNear({x, y, z, 1 + 2 * z, 2, 3 - 2 * x}, 1e-4, getCorner(&cb, k),
                   getCornerVelocity(&cb, k));
    }
}

TEST_F(World, OnlyARecordAndTheOneBeforeItPushTheCubeOut)
{
    cb.position = {0, 50, 0};
    TERRAIN_DEFORMING = 0;
    // Clearances of the lower corners 1, 4, 5 and 8, then the depths at which they are pushed.
    for (const auto &c : table("0 0 0 0 0 0 0 0 | -5 -5 9 9 5 0 0 0 | -2 -5 9 9 2 5 0 0 | -5 -2 -4 "
                               "9 5 0 0 0 | 3 -4 9 9 0 4 0 0 | -1 -2 9 -3 0 2 0 3"))
    {
        cb.force = cb.torque = {0, 0, 0};
        for (int k = 0; k < 4; ++k)
            ter.map[k < 2 ? 107 : 103][k % 2 ? 103 : 107] = -c[k];
        collideCubeTerrain();
        const float x = -c[4] + c[5] - c[6] + c[7], y = c[4] + c[5] + c[6] + c[7],
                    z = c[4] + c[5] - c[6] - c[7];
        expectNear({0, 12 * y, 0, 600 * x, 0, 600 * z}, 1e-2, vectorMultiply(cb.force, 1 / M),
                   vectorMultiply(cb.torque, 1 / M));
    }
}

TEST_F(World, ContactDampsTheApproachAndTheSlideAndDentsTheGround)
{
    // Velocity and depth, then the force in units of the mass.
    for (const auto &c :
         table("0 0 0 10 0 120 0 | 60 0 -80 1 -360 12 480 | 0 10 0 2 0 22 0 | 0 -10 0 2 0 106 0"))
    {
        cb.force = {0, 0, 0};
        handleCollision(&cb, {0, 1, 0}, {c[0], c[1], c[2]}, cb.position, c[3]);
        expectNear({c[4], c[5], c[6]}, 1e-4, vectorMultiply(cb.force, 1 / M));
    }
    cb.size = 50; // corners two samples apart: the dent of the first clears the others
    cb.position = {0, 22, 0};
    cb.velocity = {0, -1000, 0};
    cb.force = {0, 0, 0};
    collideCubeTerrain(); // 12 * 3 of the spring, 8 * 1000 and 0.1 * 1000 * 3 of the damping
    expectNear({8336, -8, -8, 0}, 1e-2, cb.force.y / M, ter.map[104][104], ter.map[108][108],
               ter.map[103][106]);
}
