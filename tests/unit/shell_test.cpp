#include "fixtures.h"

static void frames(int count, int milliseconds)
{
    for (; count > 0; --count)
    {
        fakeTicks += milliseconds;
        drawScreen();
    }
}

TEST_F(World, HeldKeysTurnIntoTorqueAndHeading)
{
    // Two keys, heading, spin and speed about and along x and z; then torque in units of size times
    // mass, and heading. Before, the torque is 10.
    for (const auto &c : table("273 0 90 0 0 0 0 310 10 90 | 273 0 135 -2.5 5 0 0 116.066 10 135 | "
                               "276 0 90 0 0 0 -101 10 -490 90 | 275 0 90 0 4 101 0 10 110 90 | "
                               "276 0 90 0 0 100 -100 10 10 81 | 276 275 359 0 0 0 0 10 10 354.5 | "
                               "274 273 90 1.5 -1.5 0 0 10 10 90 | 274 0 90 0 -1.6 0 0 0 48 90"))
    {
        std::fill_n(held, static_cast<int>(SDLK_LAST), 0);
        held[static_cast<int>(c[0])] = held[static_cast<int>(c[1])] = 1;
        timeH = 0.1f;
        cb.heading = c[2];
        cb.angularVelocity = {c[3], 9, c[4]};
        cb.velocity = {c[5], 999, c[6]};
        cb.torque = {1e9f, 1e9f, 1e9f};
        handleKeyDown();
        expectNear({c[7], c[8], c[9]}, 1e-3, cb.torque.x / 1e8f, cb.torque.z / 1e8f, cb.heading);
    }
    EXPECT_NEAR(cb.torque.y, -270e8, 1e4) << "the brake acts about y too";
}

TEST_F(World, IPrintsTheDiagnosticBlock)
{
    held[SDLK_i] = 1;
    timeH = 0.2f;
    cb.position = {1.9f, -2.9f, 3e30f};
    cb.force = cb.torque = cb.angularMomentum = {4, 5, 6};
    testing::internal::CaptureStderr();
    handleKeyDown();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\n-----------------------\n\nFrame Rate:  5.0\n\nDraw Distance: 5000\n"
              "\n-----------------------\n\nCube Information:\n\tPosition: (1,-2,2147483647)\n"
              "\tVelocity: (0,0,0)\n\tForce: (4,5,6)\n\tTorque: (4,5,6)\n"
              "\tMomentum: (0,0,1000000000)\n\tAngular Momentum: (4,5,6)\n"
              "\nCamera Information:\n\tPosition: (-200,500,-4000)\n");
}

TEST_F(World, CameraEasesTowardsAPlaceBehindTheCube)
{
    // Size, game over and heading; then the goal's x and z.
    for (const auto &c : table("200 0 90 0 -4350 | 250 1 180 1000 -4000 | 100 0 0 -300 -4000"))
    {
        cb.size = c[0];
        gameOver = static_cast<int>(c[1]);
        cb.heading = c[2];
        calcTargetView(&cam, &cb);
        expectNear({c[3], 600, c[4]}, 1e-3, cam.target);
    }
    cam.position = {700, 600, -4000};
    updateCamera(&cam, 0.02f);
    expectNear({690, 600, -4000, -500, 0, 0}, 1e-3, cam.position, cam.velocity);
}

TEST_F(World, DrawDistanceAndShadowFollowTheFrameTime)
{
    fakeTicks = 1500;
    initAnimation();
    // Length of a step in milliseconds and the draw distance after it
    for (const auto &c :
         table("28 5000 | 16 5005 | 0 5010 | 30 5010 | 39 5010 | 41 5005 | 846 5000"))
    {
        frames(1, static_cast<int>(c[0]));
        expectNear({c[0] / 1000, c[1]}, 1e-6, timeH, VIEW_DISTANCE);
    }
    frames(15, 125); // an eighth of a second adds up exactly
    EXPECT_EQ(SHADOW, 1);
    frames(1, 125);
    expectNear({2, 0}, 0, shadowSwitchTime, SHADOW);
    frames(450, 125);
    EXPECT_EQ(VIEW_DISTANCE, 3000) << "the floor in play";
    gameOver = 1;
    frames(5, 125);
    EXPECT_EQ(VIEW_DISTANCE, 4500) << "the floor after game over";
    frames(102, 10);
    expectNear({5010, 0}, 0, VIEW_DISTANCE, SHADOW);
}
