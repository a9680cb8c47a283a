#include "fixtures.h"

static Tank tankAt(int id, Vector position, float speed = 100)
{
    return {id, 20, position, speed, speed, 0, 0, 0, 0, 10, 0};
}

TEST_F(World, TanksAreScatteredFromTheLastMadeToTheFirst)
{
    writeFile("TexTank.tga", tga(2, 1, 1, 24, {9, 9, 9}));
    expectNear({0, 1}, 0, makeTankList(nullptr, 9), makeTankList(tankLst, 1500));
    srand(5);
    randomTankPlacement(tankLst, 512, 400, 25);
    srand(5);
    int id = 1500;
    for (const TankNode *node = tankLst->head; node; node = node->next)
    {
        const double x = rand() % 12800 - 7680, z = rand() % 10000 - 6000, goal = rand() % 360;
        expectNear({--id * 1.0, x, 50, z, goal}, 1e-3, node->tank.id, node->tank.position,
                   node->tank.targetHeading);
    }
    EXPECT_EQ(id, 0);
    for (int gone : {1499, 700, 0, 700})
        EXPECT_EQ(removeTank(tankLst, tankAt(gone, {})), gone != 700 || id++ == 0);
}

TEST_F(World, TanksEaseTowardsTheirGoalsAndDriveAlongTheirHeading)
{
    Tank tank = tankAt(0, {0, 0, 0});
    tank.targetHeading = 100;
    tank.targetSpeed = 0;
    updateTankPosition(&tank, 0.02f, 210, 25);
    expectNear({0.4, 99.4}, 1e-5, tank.heading, tank.speed);
    // x, z and heading; then the way in an eighth of a second and the goal set at the edges
    for (const auto &d : table("625 625 0 12.5 0 0 | 0 0 90 0 -12.5 90 | -626 0 180 -12.5 0 0 | "
                               "626 0 270 0 12.5 180 | 0 626 0 12.5 0 270 | 626 -626 0 12.5 0 90"))
    {
        tank = tankAt(0, {d[0], 0, d[1]});
        tank.heading = tank.targetHeading = d[2];
        updateTankPosition(&tank, 0.125f, 210, 25);
        expectNear({d[0] + d[3], 0, d[1] + d[4], d[5], 7}, 1e-4, tank.position, tank.targetHeading,
                   tank.wanderDistance);
    }
}

TEST_F(World, TanksWithinRangeStopFaceTheCubeAndFire)
{
    cb.position = {0, 300, 0};
    Tank tank = tankAt(0, {300, 20, -400}); // 500 units off: out of range
    tank.wanderDistance = 0;
    srand(3);
    updateTankAI(&tank, &cb, shotLst, 9);
    srand(3);
    const double leg = rand() % 2000 + 500, goal = rand() % 360 - 180;
    expectNear({leg, goal}, 0, tank.wanderDistance, tank.targetHeading);
    tank.position.x = 299;
    for (const auto &[time, shots] :
         std::vector<std::pair<float, int>>{{2, 0}, {2.01f, 1}, {4, 1}, {4.02f, 2}})
    {
        updateTankAI(&tank, &cb, shotLst, time);
        EXPECT_EQ(shotLst->nextId, shots) << time;
    }
    const Shot *shot = shotLst->head;
    expectNear({0, -1, 180 - 306.7777}, 1e-3, tank.targetSpeed, tank.wanderDistance,
               tank.targetHeading);
    expectNear({309, 53, -400, -299, 80, 400, 233}, 0, shot->position, shot->velocity,
               shot->heading);
    gameOver = 1;
    updateTankAI(&tank, &cb, shotLst, 99);
    expectNear({100, 2}, 0, tank.targetSpeed, shotLst->nextId);
}

TEST_F(World, CrushedTanksScoreAndTheNextOneStillMoves)
{
    addTank(tankLst, tankAt(1, {900, 0, 0}));
    addTank(tankLst, tankAt(2, {20, 0, 0}, 0));
    cb.position = {0, 99.9f, 0};
    updateTank(tankLst, &cb, 0.125f, &ter, shotLst, 1);
    const Tank &left = tankLst->head->tank;
    expectNear({50, 110, 3e9, 6, -10, 1, 912.5}, 1e-2, cb.score, cb.targetSize, cb.force.y,
               cb.torque.z / 1e10f, ter.map[106][105], left.id, left.position.x);
}
