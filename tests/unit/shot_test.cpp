#include "fixtures.h"

static std::string ids()
{
    std::string text;
    for (const Shot *shot = shotLst->head; shot; shot = shot->next)
        text += std::to_string(shot->id);
    return text;
}

TEST_F(World, ShotsAreRemovedByTheirNumber)
{
    for (int i = 0; i < 4; ++i)
        addShot(shotLst, {99, {}, {}, 0, nullptr});
    std::string left;
    for (int id : {9, 3, 1, 0, 0, 2})
    {
        left += removeShot(shotLst, {id, {}, {}, 0, nullptr}) ? " 1:" : " 0:";
        left += ids();
    }
    EXPECT_EQ(left, " 0:3210 1:210 1:20 1:2 0:2 1:");
    addShot(shotLst, {});
    EXPECT_EQ(ids(), "4") << "a number is never used again";
}

TEST_F(World, ShotsFlyAndLeaveACraterWhereTheySink)
{
    for (const Vector &start : {Vector{0, 0, 0}, Vector{500, -6, 0}, Vector{9999, -7, 0}})
        addShot(shotLst, {0, start, {100, 80, 0}, 0, nullptr});
    updateShot(shotLst, &cb, 0.1f);
    const Shot *first = shotLst->head->next->next;
    expectNear({20, 6, 0, 100, 60, 0}, 1e-4, first->position, first->velocity);
    shotLst->head->next->position.y = 0; // exactly on the ground it flies on
    drawShots(shotLst, &ter);
    EXPECT_EQ(ids(), "10");
    expectNear({-8, -3, 0}, 1e-5, ter.map[209][105], ter.map[208][104], ter.map[126][105]);
}

TEST_F(World, ShotsThatHitShrinkTheCubeAndPushItAlongTheirFlight)
{
    cb.position = {0, 0, 0};
    for (const auto &c : table("49.9 0 0 1 | 50.5 0 0 0 | 0 -50.5 0 0 | 0 50.9 0 0 | 0 20 -49.9 1"))
    {
        Cube cube = cb;
        const Shot shot = {0, {c[0], c[1], c[2]}, {30, 0, -40}, 0, nullptr};
        expectNear({c[3]}, 0, checkShotCollision(&shot, &cube));
        expectNear({100 - 7.5 * c[3], 1650 * c[3], 0, -2200 * c[3], -2200 * c[3] * c[1]}, 0.1,
                   cube.targetSize, vectorMultiply(cube.force, 1e-6f), cube.torque.x / 1e6f);
    }
}
