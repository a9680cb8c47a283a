#include "fixtures.h"

static Tank tankAt(int id, Vector position)
{
    return {id, 20, position, 100, 100, 0, 0, 0, 0, 10, 0};
}

TEST_F(World, TanksAreRemovedByTheirNumber)
{
    EXPECT_EQ(makeTankList(nullptr, 9), 0);
    for (int id : {1, 2, 3})
        addTank(tankLst, tankAt(id, {}));
    expectRemovals(tankLst->head, [](int id) { return removeTank(tankLst, tankAt(id, {})); });
}

TEST_F(World, TanksTurnAtTheEdges)
{
    const struct
    {
        float x, z, targetHeading;
    } rows[] = {
        {625, 625, 55}, {-626, 0, 0},    {626, 0, 180},
        {0, 626, 270},  {626, -626, 90}, // in a corner z rules
    };
    for (const auto &row : rows)
    {
        Tank tank = tankAt(0, {row.x, 0, row.z});
        tank.targetHeading = 55;
        updateTankPosition(&tank, 0, 210, 25);
        EXPECT_EQ(tank.targetHeading, row.targetHeading) << row.x << ", " << row.z;
    }
}

TEST_F(World, TanksWithinRangeStopFaceTheCubeAndFireEveryTwoSeconds)
{
    cb.position = {10, 300, 30};
    Tank tank = tankAt(0, {309, 20, -370});
    for (const float time : {2.0f, 2.01f, 4.0f}) // not yet more than two, and again
        updateTankAI(&tank, &cb, shotLst, time);
    ASSERT_EQ(idsFrom(shotLst->head), Ids({0}));
    EXPECT_EQ(tank.targetSpeed, 0);
    EXPECT_NEAR(tank.targetHeading, 180 - 306.7777, 1e-3);
    EXPECT_TRUE(isNear(shotLst->head->position, {319, 53, -370}, 0));
    EXPECT_TRUE(isNear(shotLst->head->velocity, {-299, 80, 400}, 0));
    EXPECT_EQ(shotLst->head->heading, 233);
}
