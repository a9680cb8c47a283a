#include "world.h"

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

TEST_F(World, EachEdgeSetsTheTargetHeadingOfTanksBeyondIt)
{
    const struct
    {
        float x, z, targetHeading;
    } rows[] = {
        {625, 625, 55}, {-626, 0, 0},    {626, 0, 180},
        {0, 626, 270},  {626, -626, 90}, // the z rule wins in a corner
    };
    for (const auto &row : rows)
    {
        Tank tank = tankAt(0, {row.x, 0, row.z});
        tank.targetHeading = 55;
        updateTankPosition(&tank, 0, 210, 25);
        EXPECT_EQ(tank.targetHeading, row.targetHeading) << row.x << ", " << row.z;
    }
}

TEST_F(World, TankApproachesItsTargetHeadingAndSpeedAndThenDrivesAhead)
{
    Tank tank = tankAt(0, {10, 20, 30});
    tank.heading = 30;
    tank.targetHeading = 90;
    tank.targetSpeed = 40;
    tank.wanderDistance = 100;
    updateTankPosition(&tank, 0.1f, 210, 25);
    EXPECT_NEAR(tank.turnRate, 60, 1e-3);
    EXPECT_NEAR(tank.heading, 36, 1e-3);
    EXPECT_NEAR(tank.acceleration, -90, 1e-3);
    EXPECT_NEAR(tank.speed, 91, 1e-3);
    EXPECT_TRUE(isNear(tank.position, {10 + 9.1f * 0.809017f, 20, 30 - 9.1f * 0.587785f}, 1e-3));
    EXPECT_EQ(tank.wanderDistance, 90) << "90.9 is cut to a whole unit";
}

TEST_F(World, TankThatDoesNotFightChoosesANewCourseAtTheEndOfTheOldOne)
{
    const struct
    {
        int wanderDistance;
        float cubeX;
        int isOver;
        bool choosesCourse;
    } rows[] = {{1, 500, 0, false}, {0, 500, 0, true}, {-9, 100, 1, true}};
    srand(9);
    const int distance = rand() % 2000 + 500;
    const float heading = static_cast<float>(rand() % 360 - 180);
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.wanderDistance);
        Tank tank = tankAt(0, {0, 0, 0});
        tank.wanderDistance = row.wanderDistance;
        tank.targetSpeed = 7;
        tank.targetHeading = 555;
        cb.position = {row.cubeX, 0, 0};
        gameOver = row.isOver;
        srand(9);
        updateTankAI(&tank, &cb, shotLst, 9);
        EXPECT_EQ(tank.wanderDistance, row.choosesCourse ? distance : row.wanderDistance);
        EXPECT_EQ(tank.targetHeading, row.choosesCourse ? heading : 555);
        EXPECT_EQ(tank.targetSpeed, row.choosesCourse ? 100 : 7);
        EXPECT_EQ(shotLst->head, nullptr);
    }
}

TEST_F(World, TankInRangeStopsAndFacesTheCubeAndFiresEveryTwoSeconds)
{
    cb.position = {10, 300, 30};
    Tank tank = tankAt(0, {309, 20, -370});
    for (const float time : {2.0f, 2.01f, 4.0f}) // only 2.01 is more than 2 s after the last shot
        updateTankAI(&tank, &cb, shotLst, time);
    ASSERT_EQ(idsFrom(shotLst->head), Ids({0}));
    EXPECT_EQ(tank.targetSpeed, 0);
    EXPECT_NEAR(tank.targetHeading, 180 - 306.7777, 1e-3);
    EXPECT_TRUE(isNear(shotLst->head->position, {319, 53, -370}, 0));
    EXPECT_TRUE(isNear(shotLst->head->velocity, {-299, 80, 400}, 0));
    EXPECT_EQ(shotLst->head->heading, 233);
}

TEST_F(World, CrushedTankMakesTheCubeGrowAndThrowsItUpAndLeavesACrater)
{
    cb.position = {40, 90, -30};
    EXPECT_EQ(checkTankCollision(tankAt(0, {-10, 0, -30}), &cb, &ter), 0)
        << "at exactly half an edge from the cube";
    EXPECT_EQ(cb.score, 0);
    EXPECT_EQ(checkTankCollision(tankAt(0, {52, 0, -38}), &cb, &ter), 1);
    EXPECT_EQ(cb.targetSize, 110);
    EXPECT_EQ(cb.score, 50);
    EXPECT_TRUE(isNear(vectorMultiply(cb.force, 1 / cb.mass), {0, 3000, 0}, 1e-2));
    EXPECT_TRUE(isNear(vectorMultiply(cb.torque, 1 / cb.mass), {8 * 3000, 0, 12 * 3000}, 1e-1));
    EXPECT_EQ(ter.map[107][93], -10);
    EXPECT_EQ(ter.map[109][93], -5);
    EXPECT_EQ(ter.map[110][93], 0);
}

TEST_F(World, CrushedTanksLeaveTheListAndTheOthersDriveOn)
{
    cb.position = {0, 0, 0};
    addTank(tankLst, tankAt(1, {20, 0, 0}));
    addTank(tankLst, tankAt(2, {600, 0, 600}));
    addTank(tankLst, tankAt(3, {0, 0, 20}));
    addTank(tankLst, tankAt(4, {0, 0, -20}));
    updateTank(tankLst, &cb, 0.1f, &ter, shotLst, 1);
    ASSERT_EQ(idsFrom(tankLst->head), Ids({2}));
    EXPECT_TRUE(isNear(tankLst->head->tank.position, {610, 0, 600}, 1e-3));
    EXPECT_EQ(cb.score, 150);
}
