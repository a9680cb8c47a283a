#include "world.h"

constexpr float M = 1e6f; // mass of the cube at the start

static Vector perMass(Vector v)
{
    return vectorMultiply(v, 1 / M);
}

TEST_F(World, CubeStartsHighUpAndFliesAlongTheZAxis)
{
    EXPECT_NEAR(cb.inertia, 1e10 / 6, 1);
    updateCube(&cb, 0.02f);
    EXPECT_TRUE(isNear(cb.position, {0, 1999.92f, -3980}, 1e-3));
    EXPECT_TRUE(isNear(cb.velocity, {0, -4, 1000}, 1e-3));
    EXPECT_TRUE(isNear(cb.angularVelocity, {0, 0, 0}, 0));
}

TEST_F(World, AccumulatedForcesMoveAndTurnTheCubeForOneStep)
{
    const float inertia = static_cast<float>(cb.inertia);
    cb.orientation = {0.70710678f, 0.70710678f, 0, 0}; // a quarter turn about x
    cb.mass = 2 * M; // as after growth; velocity is still momentum over the mass at the start
    cb.momentum = {0, 0, 0};
    applyForce(&cb, {2 * M, 3 * M, 4 * M}, vectorAdd(cb.position, {5, -10, 20}));
    EXPECT_TRUE(isNear(perMass(cb.torque), {-100, 20, 35}, 1e-3));
    cb.torque = {20 * inertia, 40 * inertia, 60 * inertia};
    updateCube(&cb, 0.1f);
    EXPECT_TRUE(isNear(cb.velocity, {0.2f, -39.7f, 0.4f}, 1e-4));
    EXPECT_TRUE(isNear(cb.position, {0.02f, 1996.03f, -3999.96f}, 1e-3));
    EXPECT_TRUE(isNear(cb.angularVelocity, {2, 4, 6}, 1e-4));
    // The step adds (0, 0.1, 0.2, 0.3) times the old orientation to the orientation. The sum has
    // the squared length 1.14 and is normalized. Times the root of 2 * 1.14, its components are
    // decimal numbers.
    const Quaternion q = quaternionMultiplyFloat(cb.orientation, std::sqrt(2.28f));
    EXPECT_NEAR(q.w, 0.9, 1e-5);
    EXPECT_TRUE(isNear({q.x, q.y, q.z}, {1.1f, 0.5f, 0.1f}, 1e-5));
    EXPECT_TRUE(isNear(cb.force, {0, 0, 0}, 0) && isNear(cb.torque, {0, 0, 0}, 0));
}

TEST_F(World, SizeApproachesItsTargetAndTheGameIsOverBelow50)
{
    const struct
    {
        float size, target; // before a step of 0.1 s
        float newSize, newTarget, gainedMass;
        int isOver; // if 1, the step also stops the cube
    } rows[] = {
        {100, 260, 145, 250, 225, 0}, // a target above 250 becomes 250
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
        EXPECT_EQ(cube.velocity.z == 0, row.isOver);
        EXPECT_EQ(gameOver, row.isOver);
        EXPECT_NEAR(cube.spinLimit, 6 - row.newSize / 50, 1e-5);
    }
}

TEST_F(World, CornersMoveAndTurnWithTheCube)
{
    const Vector signs[] = {{},          {1, -1, 1}, {1, 1, 1},   {1, 1, -1},   {1, -1, -1},
                            {-1, -1, 1}, {-1, 1, 1}, {-1, 1, -1}, {-1, -1, -1}, {}};
    cb.position = {1000, 2000, 3000};
    cb.orientation = {0.5f, 0.5f, 0.5f, 0.5f}; // x turns to y, y to z, z to x
    cb.velocity = {100, 200, 300};
    cb.angularVelocity = {2, 3, 5};
    for (int corner = 0; corner <= 9; ++corner)
    {
        SCOPED_TRACE(corner);
        const float x = 50 * signs[corner].z, y = 50 * signs[corner].x, z = 50 * signs[corner].y;
        EXPECT_TRUE(isNear(getCorner(&cb, corner), {1000 + x, 2000 + y, 3000 + z}, 1e-3));
        EXPECT_TRUE(isNear(getCornerVelocity(&cb, corner),
                           {100 + 3 * z - 5 * y, 200 + 5 * x - 2 * z, 300 + 2 * y - 3 * x}, 1e-2));
    }
}

TEST_F(World, CubeCrushesWithinHalfItsEdgeAlongXAndZAndAWholeEdgeAlongY)
{
    const struct
    {
        Vector offset; // from the target to the centre of the cube; the game drops its fraction
        int isCovered, isCrushed;
    } rows[] = {
        {{49.9f, 20, -49.9f}, 1, 1}, {{-50.7f, 0, 0}, 0, 0}, // becomes -50
        {{0, 0, 50}, 0, 0},          {{0, 0, -50.2f}, 0, 0}, {{0, -49.9f, 0}, 1, 1},
        {{30, -99.9f, 0}, 0, 1},     {{0, 100.5f, 0}, 0, 0},
    };
    cb.position = {0, 0, 0};
    for (const auto &row : rows)
    {
        const Vector target = vectorMultiply(row.offset, -1);
        EXPECT_EQ(cubeCovers(&cb, target, 50), row.isCovered) << row.offset;
        EXPECT_EQ(cubeCrushes(&cb, target), row.isCrushed) << row.offset;
    }
}

// Corners at x = 50 rise with 50 units/s, corners at x = -50 fall with 250 units/s.
static void spinIntoTheGround()
{
    cb.position = {0, 47, 0};
    cb.velocity = {0, -100, 0};
    cb.angularVelocity = {0, 0, 3};
    collideCubeTerrain();
}

TEST_F(World, FallingCornersDentTheGroundAndTheFirstOfTheDeepestCornersIsPushed)
{
    spinIntoTheGround();
    for (int z : {93, 97})
    {
        EXPECT_FLOAT_EQ(ter.map[103][z], -2) << "250 units/s times 0.02 times 0.4";
        EXPECT_EQ(ter.map[107][z], 0);
    }
    // Four corners are equally deep. The game takes the first of them, corner 1, as the deepest and
    // pushes no other. Friction pushes it along the ground. The spring minus its damping pushes it
    // up.
    EXPECT_TRUE(isNear(perMass(cb.force), {-6 * 150, 12 * 3 - 0.1f * 50 * 3, 0}, 1e-2));
}

TEST_F(World, GroundKeepsItsShapeButStillPushesWhenDeformingIsOff)
{
    TERRAIN_DEFORMING = 0;
    spinIntoTheGround();
    for (int x = 0; x < 210; ++x)
        EXPECT_EQ(std::count(ter.map[x], ter.map[x] + 190, 0.0f), 190) << x;
    EXPECT_GT(cb.force.y, 0);
}

TEST_F(World, GroundPushesTheDeepestCornerAndTheDeepestWithALowerNumber)
{
    const struct
    {
        float turnX, turnZ; // radians about x and about z
        float height;       // of the centre of the cube
        Ids depths; // rough depths of corners 1, 4, 5 and 8 in the ground; negative: above it
        Ids pushed; // numbers of corners
    } rows[] = {
        {-0.02f, 0.06f, 45, {1, 3, 7, 9}, {8, 5}}, {-0.02f, -0.06f, 45, {7, 9, 1, 3}, {4, 1}},
        {0.02f, 0.06f, 45, {3, 1, 9, 7}, {5, 1}}, // corner 4 is not as deep as corner 1
        {0.02f, -0.06f, 45, {9, 7, 3, 1}, {1}},   // corner 1 is looked at first
        {-0.02f, 0.06f, 53, {-7, -5, -1, 1}, {8}},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.depths));
        cb.position = {5, row.height, 9};
        cb.orientation = normalize({1, row.turnX / 2, 0, row.turnZ / 2});
        cb.velocity = {30, -20, 10}; // too slow for dents
        cb.angularVelocity = {0.1f, 0.2f, 0.3f};
        cb.force = cb.torque = {0, 0, 0};
        Cube expected = cb;
        for (int corner : row.pushed)
        {
            const Vector point = getCorner(&cb, corner);
            handleCollision(&expected, {0, 1, 0}, getCornerVelocity(&cb, corner), point, -point.y);
        }
        collideCubeTerrain();
        EXPECT_TRUE(isNear(perMass(cb.force), perMass(expected.force), 1e-2));
        EXPECT_TRUE(isNear(perMass(cb.torque), perMass(expected.torque), 1));
    }
}
