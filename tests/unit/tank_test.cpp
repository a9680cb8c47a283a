#include "fixtures.h"

static Tank tankAt(int id, Vector position, float speed = 100)
{
    return {id, 20, position, speed, speed, 0, 0, 0, 0, 10, 0};
}

TEST_F(World, TanksAreRemovedByTheirNumber)
{
    EXPECT_EQ(makeTankList(nullptr, 9), 0);
    for (int id : {1, 2, 3})
        addTank(tankLst, tankAt(id, {}));
    expectRemovals(tankLst->head, [](int id) { return removeTank(tankLst, tankAt(id, {})); });
}

TEST_F(World, TanksEaseTowardsTheirGoalsDriveAlongTheirHeadingAndMindTheEdges)
{
    const struct
    {
        float x, z, heading, targetHeading, speed, targetSpeed;
        Vector way; // of an eighth of a second
        float newHeading, newSpeed, newTarget;
    } rows[] = {
        {3, 5, 30, 30, 100, 100, {10.8253f, 0, -6.25f}, 30, 100, 30},
        {0, 0, 28.125f, 40.125f, 100, 36, {9.2015f, 0, -5.3125f}, 30, 85, 40.125f},
        {625, 625, 0, 0, 100, 100, {12.5f, 0, 0}, 0, 100, 0},
        {-626, 0, 180, 180, 100, 100, {-12.5f, 0, 0}, 180, 100, 0},
        {626, 0, 270, 270, 100, 100, {0, 0, 12.5f}, 270, 100, 180},
        {0, 626, 0, 0, 100, 100, {12.5f, 0, 0}, 0, 100, 270},
        {626, -626, 0, 0, 100, 100, {12.5f, 0, 0}, 0, 100, 90}, // in a corner z rules
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.x << ", " << row.z);
        Tank tank = tankAt(0, {row.x, 0, row.z}, row.speed);
        tank.heading = row.heading;
        tank.targetHeading = row.targetHeading;
        tank.targetSpeed = row.targetSpeed;
        updateTankPosition(&tank, 0.125f, 210, 25);
        EXPECT_TRUE(isNear(tank.position, vectorAdd({row.x, 0, row.z}, row.way), 1e-3));
        EXPECT_NEAR(tank.heading, row.newHeading, 1e-4);
        EXPECT_NEAR(tank.speed, row.newSpeed, 1e-4);
        EXPECT_EQ(tank.targetHeading, row.newTarget);
        EXPECT_EQ(tank.wanderDistance, static_cast<int>(20 - row.newSpeed / 8));
    }
}

TEST_F(World, TanksWithinRangeStopFaceTheCubeAndFireEveryTwoSeconds)
{
    const struct
    {
        float time; // seconds since start-up
        int over, shots;
    } rows[] = {
        {2, 0, 0}, // not yet more than two
        {2.01f, 0, 1}, {4, 0, 1}, {4.02f, 0, 2}, {9, 1, 2},
    };
    cb.position = {10, 300, 30};
    Tank tank = tankAt(0, {309, 20, -370});
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.time);
        gameOver = row.over;
        updateTankAI(&tank, &cb, shotLst, row.time);
        EXPECT_EQ(shotLst->nextId, row.shots);
        EXPECT_EQ(tank.targetSpeed, row.over ? 100 : 0);
        EXPECT_EQ(tank.wanderDistance == -1, row.over == 0);
        EXPECT_TRUE(row.over || std::fabs(tank.targetHeading - (180 - 306.7777)) < 1e-3);
    }
    EXPECT_TRUE(isNear(shotLst->head->position, {319, 53, -370}, 0));
    EXPECT_TRUE(isNear(shotLst->head->velocity, {-299, 80, 400}, 0));
    EXPECT_EQ(shotLst->head->heading, 233);
}

TEST_F(World, CrushedTanksScoreBlowACraterKickTheCubeAndTheNextOneStillMoves)
{
    addTank(tankLst, tankAt(1, {900, 0, 0}));
    addTank(tankLst, tankAt(2, {20, 0, -25}, 0));
    cb.position = {0, 99.9f, 0};
    updateTank(tankLst, &cb, 0.125f, &ter, shotLst, 1);
    EXPECT_EQ(cb.score, 50);
    EXPECT_EQ(cb.targetSize, 110);
    EXPECT_TRUE(isNear(vectorMultiply(cb.force, 1e-6f), {0, 3000, 0}, 1e-2));
    EXPECT_TRUE(isNear(vectorMultiply(cb.torque, 1e-6f), {75000, 0, 60000}, 1));
    EXPECT_EQ(ter.map[106][94], -10);
    EXPECT_EQ(ter.map[106][95], -7.5);
    ASSERT_EQ(idsFrom(tankLst->head), Ids({1}));
    EXPECT_EQ(tankLst->head->tank.position.x, 912.5);
}
