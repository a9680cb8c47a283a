#include "fixtures.h"

TEST_F(World, ShotsAreRemovedByTheirNumberWhichIsNeverUsedAgain)
{
    shotLst->nextId = 1;
    for (int i = 0; i < 3; ++i)
        addShot(shotLst, {99, {}, {}, 0, nullptr});
    expectRemovals(shotLst->head, [](int id) { return removeShot(shotLst, {id, {}, {}, 0, {}}); });
    addShot(shotLst, {});
    EXPECT_EQ(idsFrom(shotLst->head), Ids({4}));
}

TEST_F(World, ShotsFlyTwiceAsFastAlongTheGroundAndLeaveACraterWhereTheySink)
{
    for (const Vector &start : {Vector{0, 0, 0}, Vector{500, -6, 0}, Vector{2400, -7, 0}})
        addShot(shotLst, {0, start, {100, 80, -30}, 0, nullptr});
    updateShot(shotLst, &cb, 0.1f);
    const Shot *first = shotLst->head->next->next;
    EXPECT_TRUE(isNear(first->position, {20, 6, -6}, 1e-4));
    EXPECT_TRUE(isNear(first->velocity, {100, 60, -30}, 1e-4));
    shotLst->head->next->position.y = 0; // exactly on the ground it flies on
    landShots(shotLst, &ter);
    EXPECT_EQ(idsFrom(shotLst->head), Ids({1, 0}));
    EXPECT_EQ(ter.map[202][95], -8);
    EXPECT_EQ(ter.map[201][94], -3);
    EXPECT_EQ(ter.map[126][95], 0);
    EXPECT_EQ(ter.displayLists[7][3], DIRTY_LIST) << "the crater is to be drawn";
}
