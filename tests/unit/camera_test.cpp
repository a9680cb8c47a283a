#include "world.h"

TEST_F(World, GoalOfTheEyeIsBehindTheCubeAndFartherFromALargerCube)
{
    const struct
    {
        float size;
        int isOver;
        float distance;
    } rows[] = {{60, 0, 300}, {100, 0, 300}, {101, 0, 300.5f}, {250, 0, 375}, {250, 1, 1000}};
    cb.position = {70, 80, 90};
    cb.heading = 120; // cosine -0.5, sine 0.866
    for (const auto &row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.size << " units, game over: " << row.isOver);
        cb.size = row.size;
        gameOver = row.isOver;
        calcTargetView(&cam, &cb);
        EXPECT_EQ(cam.followDistance, row.distance);
        const Vector goal = {70 + row.distance * 0.5f, 600, 90 - row.distance * 0.8660254f};
        EXPECT_TRUE(isNear(cam.target, goal, 1e-3));
    }
}

TEST_F(World, EyeMovesAShareOfTheWayToItsGoalInEachStep)
{
    cam.position = {0, 100, -200};
    cam.target = {100, 300, 400};
    updateCamera(&cam, 0.1f); // the share, 25 * 0.1^2, is a quarter
    EXPECT_TRUE(isNear(cam.position, {25, 150, -50}, 1e-3));
    EXPECT_TRUE(isNear(cam.velocity, {250, 500, 1500}, 1e-2));
}

TEST_F(World, FrameRaisesTheGoalOfTheEyeAboveTheGroundUnderTheEye)
{
    for (int x = 0; x < 100; ++x) // a plateau where x is at most -150
        std::fill_n(ter.map[x], 190, 40.0f);
    cb.position = {300, 500, 0};
    cam.position = {-200, 500, 0};
    drawScreen();
    EXPECT_EQ(cam.target.y, 40 + 300);
}
