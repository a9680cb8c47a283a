#include "world.h"

TEST_F(World, ShotsAreRemovedByTheirNumberWhichIsNeverUsedAgain)
{
    shotLst->nextId = 1;
    for (int i = 0; i < 3; ++i)
        addShot(shotLst, {99, {}, {}, 0, nullptr});
    expectRemovals(shotLst->head, [](int id) { return removeShot(shotLst, {id, {}, {}, 0, {}}); });
    addShot(shotLst, {});
    EXPECT_EQ(idsFrom(shotLst->head), Ids({4}));
}

TEST_F(World, ShotsMoveByTwiceTheirHorizontalVelocityAndMakeACraterOnceBelowTheGround)
{
    for (const Vector &start : {Vector{0, 0, 0}, Vector{500, -6, 0}, Vector{2400, -7, 0}})
        addShot(shotLst, {0, start, {100, 80, -30}, 0, nullptr});
    updateShot(shotLst, &cb, 0.1f);
    ASSERT_EQ(idsFrom(shotLst->head), Ids({2, 1, 0}));
    const Shot *first = shotLst->head->next->next;
    EXPECT_TRUE(isNear(first->position, {20, 6, -6}, 1e-4));
    EXPECT_TRUE(isNear(first->velocity, {100, 60, -30}, 1e-4));
    shotLst->head->next->position.y = 0; // a shot exactly on the ground flies on
    landShots(shotLst, &ter);
    EXPECT_EQ(idsFrom(shotLst->head), Ids({1, 0}));
    EXPECT_EQ(ter.map[202][95], -8);
    EXPECT_EQ(ter.map[201][94], -3);
    EXPECT_EQ(ter.map[126][95], 0);
    EXPECT_EQ(ter.displayLists[7][3], DIRTY_LIST)
        << "the block with the crater is not marked for compiling";
}

TEST_F(World, CubeHitByAShotShrinksAndIsPushedAndSpun)
{
    const struct
    {
        const char *where;
        Vector offset; // from the centre of the cube
        int strikes;
        Vector torque; // divided by the mass of the cube
    } rows[] = {
        {"at the centre", {0, 0, 0}, 1, {0, 0, 0}},
        {"off the centre", {10, 20, -30}, 1, {-66000, -49500, -55000}},
        {"just outside", {10, 50, -30}, 0, {}},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.where);
        Cube cube = cb;
        const Shot shot = {0, vectorAdd(cube.position, row.offset), {30, -40, 0}, 0, nullptr};
        EXPECT_EQ(checkShotCollision(&shot, &cube), row.strikes);
        EXPECT_EQ(cube.targetSize, row.strikes ? 92.5f : 100);
        const Vector push = row.strikes ? Vector{1650, -2200, 0} : Vector{0, 0, 0}; // length 2750
        EXPECT_TRUE(isNear(vectorMultiply(cube.force, 1 / cube.mass), push, 1e-2));
        EXPECT_TRUE(isNear(vectorMultiply(cube.torque, 1 / cube.mass), row.torque, 1e-1));
    }
}

TEST_F(World, ShotThatHitsTheCubeLeavesTheListAndTheOthersFlyOn)
{
    for (float x : {300.0f, 0.0f, 600.0f})
        addShot(shotLst, {0, {x, 30, 0}, {100, 0, 0}, 0, nullptr});
    cb.position = {0, 0, 0};
    updateShot(shotLst, &cb, 0.1f);
    ASSERT_EQ(idsFrom(shotLst->head), Ids({2, 0}));
    EXPECT_EQ(shotLst->head->position.x, 620);
    EXPECT_EQ(shotLst->head->next->position.x, 320);
}
