#include "fixtures.h"

constexpr float M = 1e6f; // mass of the cube at the start

static Vector perMass(Vector v)
{
    return vectorMultiply(v, 1 / M);
}

TEST_F(World, CubeStartsAboveTheEdgeOfTheLandFliesTowardsItsMiddleAndFalls)
{
    EXPECT_NEAR(cb.inertia, 1e10 / 6, 1);
    updateCube(&cb, 0.02f);
    EXPECT_TRUE(isNear(cb.position, {0, 1999.92f, -3980}, 1e-3));
    EXPECT_TRUE(isNear(cb.velocity, {0, -4, 1000}, 1e-3));
    EXPECT_TRUE(isNear(cb.angularVelocity, {0, 0, 0}, 0));
}

TEST_F(World, ForcesMoveAndTurnTheCubeInTheNextStepAndAreSpent)
{
    const float inertia = static_cast<float>(cb.inertia);
    cb.orientation = {0.70710678f, 0.70710678f, 0, 0}; // a quarter about x
    cb.mass = 2 * M;                                   // grown; its momentum moves it as before
    cb.momentum = {0, 0, 0};
    applyForce(&cb, {2 * M, 3 * M, 4 * M}, vectorAdd(cb.position, {5, -10, 20}));
    EXPECT_TRUE(isNear(perMass(cb.torque), {-100, 20, 35}, 1e-3));
    cb.torque = {20 * inertia, 40 * inertia, 60 * inertia};
    updateCube(&cb, 0.1f);
    EXPECT_TRUE(isNear(cb.velocity, {0.2f, -39.7f, 0.4f}, 1e-4));
    EXPECT_TRUE(isNear(cb.position, {0.02f, 1996.03f, -3999.96f}, 1e-3));
    EXPECT_TRUE(isNear(cb.angularVelocity, {2, 4, 6}, 1e-4));
    // Half a step of the spin is (0.1, 0.2, 0.3); times the orientation, and brought to length 1.
    const Quaternion q = quaternionMultiplyFloat(cb.orientation, std::sqrt(2.28f));
    EXPECT_NEAR(q.w, 0.9, 1e-5);
    EXPECT_TRUE(isNear({q.x, q.y, q.z}, {1.1f, 0.5f, 0.1f}, 1e-5));
    EXPECT_TRUE(isNear(cb.force, {0, 0, 0}, 0) && isNear(cb.torque, {0, 0, 0}, 0));
}

TEST_F(World, CubeGrowsTowardsItsTargetUntilItIsTooSmallToPlay)
{
    const struct
    {
        float size, target; // before a step of 0.1 s
        float newSize, newTarget, gainedMass;
        int over; // and it is stopped
    } rows[] = {
        {100, 260, 145, 250, 225, 0}, // no target above 250
        {60, 40, 54, 40, -30, 0},
        {50, 50, 50, 50, 0, 0},
        {49.999f, 90, 34.9993f, 0, 0, 1},
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
        EXPECT_EQ(cube.velocity.z == 0, row.over);
        EXPECT_EQ(gameOver, row.over);
        EXPECT_NEAR(cube.spinLimit, 6 - row.newSize / 50, 1e-5);
    }
}

TEST_F(World, CornersAreNumberedAndTurnWithTheCube)
{
    const Vector signs[] = {{},          {1, -1, 1}, {1, 1, 1},   {1, 1, -1},   {1, -1, -1},
                            {-1, -1, 1}, {-1, 1, 1}, {-1, 1, -1}, {-1, -1, -1}, {}};
    cb.position = {1000, 2000, 3000};
    cb.orientation = {0.5f, 0.5f, 0.5f, 0.5f}; // x turns to y, y to z, z to x
    cb.velocity = {100, 200, 300};
    cb.angularVelocity = {2, 3, 5};
    for (int corner = 0; corner <= 9; ++corner)
    {
        const float x = 50 * signs[corner].z, y = 50 * signs[corner].x, z = 50 * signs[corner].y;
        EXPECT_TRUE(isNear(getCorner(&cb, corner), {1000 + x, 2000 + y, 3000 + z}, 1e-3));
        EXPECT_TRUE(isNear(getCornerVelocity(&cb, corner),
                           {100 + 3 * z - 5 * y, 200 + 5 * x - 2 * z, 300 + 2 * y - 3 * x}, 1e-2));
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

TEST_F(World, SpinningCubeDentsTheGroundWhereItsCornersFallAndIsHeldWhereTheyRise)
{
    cb.position = {0, 47, 0};
    cb.velocity = {0, -100, 0};
    cb.angularVelocity = {0, 0, 3}; // 150 units/s up at x = 50, down at x = -50
    collideCubeTerrain();
    for (int z : {93, 97})
    {
        EXPECT_FLOAT_EQ(ter.map[103][z], -2) << "250 units/s times 0.02 times 0.4";
        EXPECT_EQ(ter.map[107][z], 0);
    }
    // Corner 1 is pushed: the spring, less the damping, and the friction of its foot.
    EXPECT_TRUE(isNear(perMass(cb.force), {-6 * 150, 12 * 3 - 0.1f * 50 * 3, 0}, 1e-2));
}
