#include "fixtures.h"

constexpr float M = 1e6f; // mass of the cube at the start

TEST_F(World, CubeStartsAboveTheEdgeOfTheLandFliesTowardsItsMiddleAndFalls)
{
    EXPECT_NEAR(cb.inertia, 1e10 / 6, 1);
    for (int corner : {0, CUBE_CORNERS + 1}) // there is none
        EXPECT_TRUE(isNear(getCorner(&cb, corner), cb.position, 0));
    updateCube(&cb, 0.02f);
    EXPECT_TRUE(isNear(cb.position, {0, 1999.92f, -3980}, 1e-3));
    EXPECT_TRUE(isNear(cb.velocity, {0, -4, 1000}, 1e-3));
    EXPECT_TRUE(isNear(cb.angularVelocity, {0, 0, 0}, 0));
}

TEST_F(World, CubeGrowsTowardsItsTargetUntilItIsTooSmallToPlay)
{
    const struct
    {
        float size, target; // before a step of 0.1 s
        float newSize, newTarget, gainedMass, speed;
        int over;
    } rows[] = {
        {100, 260, 145, 250, 225, 1000, 0}, // no target above 250
        {60, 40, 54, 40, -30, 1000, 0},
        {50, 50, 50, 50, 0, 1000, 0},
        {49.999f, 90, 34.9993f, 0, 0, 0, 1}, // and it is stopped
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.size);
        Cube cube = cb;
        cube.size = row.size;
        cube.targetSize = row.target;
        updateCube(&cube, 0.1f);
        EXPECT_NEAR(cube.size, row.newSize, 1e-3);
        EXPECT_EQ(cube.targetSize, row.newTarget);
        EXPECT_NEAR(cube.mass - M, row.gainedMass, 1e-3);
        EXPECT_NEAR(cube.velocity.z, row.speed, 1e-3);
        EXPECT_EQ(gameOver, row.over);
    }
}

TEST_F(World, CubeCoversLessThanHalfItsEdgeAndCrushesAWholeEdgeUpAndDown)
{
    const struct
    {
        Vector off; // from the body to the cube's centre, cut to whole units
        int covers, crushes;
    } rows[] = {
        {{49.9f, 20, -49.9f}, 1, 1}, {{-50.7f, 0, 0}, 0, 0}, // it is 50
        {{0, 0, 50}, 0, 0},          {{0, 0, -50.2f}, 0, 0}, {{0, -49.9f, 0}, 1, 1},
        {{30, -99.9f, 0}, 0, 1},     {{0, 100.5f, 0}, 0, 0},
    };
    cb.position = {0, 0, 0};
    for (const auto &row : rows)
    {
        const Vector body = vectorMultiply(row.off, -1);
        EXPECT_EQ(cubeCovers(&cb, body, 50), row.covers) << row.off;
        EXPECT_EQ(cubeCrushes(&cb, body), row.crushes) << row.off;
    }
}
