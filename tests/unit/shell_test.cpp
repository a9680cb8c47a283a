#include "world.h"

TEST_F(World, HeldKeysAddTorqueAndTurnTheHeading)
{
    const struct
    {
        SDLKey keys[2];
        float heading, spinX, spinZ, speedX, speedZ;
        Vector torque; // afterwards, in units of size times mass; before, it is (10, 10, 10)
        float newHeading;
    } rows[] = {
        {{SDLK_UP, SDLK_UNKNOWN}, 135, 6, 5, 0, 0, {10, 10, 10}, 135}, // at the spin limit
        {{SDLK_LEFT, SDLK_UNKNOWN}, 120, 0, 0, 0, -101, {260, 10, -423.013f}, 120},
        {{SDLK_RIGHT, SDLK_UNKNOWN}, 90, 0, 0, 100, -100, {10, 10, 10}, 94.5f}, // slow: turns
        {{SDLK_LEFT, SDLK_RIGHT}, 359, 0, 0, 0, 0, {10, 10, 10}, 354.5f},
        {{SDLK_DOWN, SDLK_UP}, 90, 1.5f, -1.5f, 0, 0, {10, 10, 10}, 90}, // spins too slowly
        {{SDLK_DOWN, SDLK_UP}, 90, 1, -1.6f, 0, 0, {-30, -270, 48}, 90},
        {{SDLK_DOWN, SDLK_UNKNOWN}, 90, 1.6f, 1, 0, 0, {-48, -270, -30}, 90},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(testing::Message() << SDL_GetKeyName(row.keys[0]) << " at " << row.heading);
        std::fill_n(held, static_cast<int>(SDLK_LAST), 0);
        held[row.keys[0]] = held[row.keys[1]] = 1;
        timeH = 0.1f;
        cb.heading = row.heading;
        cb.angularVelocity = {row.spinX, 9, row.spinZ};
        cb.velocity = {row.speedX, 999, row.speedZ};
        cb.torque = {1e9f, 1e9f, 1e9f};
        handleKeyDown();
        EXPECT_TRUE(isNear(vectorMultiply(cb.torque, 1e-8f), row.torque, 1e-3));
        EXPECT_NEAR(cb.heading, row.newHeading, 1e-3);
    }
}

TEST_F(World, KeyIPrintsTheDiagnosticBlock)
{
    held[SDLK_i] = 1;
    timeH = 0.2f;
    cb.position = {1.9f, -2.9f, 3e30f};
    cb.velocity = {1, 2, 3};
    cb.force = {4, 5, 6};
    cb.torque = {7, 8, 9};
    cb.angularMomentum = {10, 11, 12};
    testing::internal::CaptureStderr();
    handleKeyDown();
    EXPECT_TRUE(
        isSameText(testing::internal::GetCapturedStderr(),
                   "\n-----------------------\n\nFrame Rate:  5.0\n\nDraw Distance: 5000\n"
                   "\n-----------------------\n\nCube Information:\n\tPosition: (1,-2,2147483647)\n"
                   "\tVelocity: (1,2,3)\n\tForce: (4,5,6)\n\tTorque: (7,8,9)\n"
                   "\tMomentum: (0,0,1000000000)\n\tAngular Momentum: (10,11,12)\n"
                   "\nCamera Information:\n\tPosition: (-200,500,-4000)\n"));
}

// Draws frames one after another. Returns the draw distance after them.
static int drawFrames(int count, int milliseconds)
{
    for (; count > 0; --count)
    {
        fakeTicks += milliseconds;
        drawScreen();
    }
    return VIEW_DISTANCE;
}

TEST_F(World, SlowFramesShortenTheDrawDistanceAndEndTheShadow)
{
    fakeTicks = 1500;
    initAnimation();
    const struct
    {
        int milliseconds; // that the frame takes
        int distance;     // the draw distance after the frame
    } rows[] = {
        {28, 5000}, {16, 5005}, {0, 5010}, // two frames may fall into one millisecond
        {30, 5010}, {39, 5010}, {41, 5005}, {846, 5000},
    };
    for (const auto &row : rows)
    {
        EXPECT_EQ(drawFrames(1, row.milliseconds), row.distance);
        EXPECT_NEAR(timeH * 1000, row.milliseconds, 1e-3);
    }
    drawFrames(15, 125); // eighths of a second add up without rounding
    EXPECT_EQ(SHADOW, 1);
    drawFrames(1, 125);
    EXPECT_EQ(shadowSwitchTime, 2);
    EXPECT_EQ(SHADOW, 0);
    EXPECT_EQ(drawFrames(450, 125), 3000) << "not the shortest distance in play";
    VIEW_DISTANCE = 2990;
    EXPECT_EQ(drawFrames(5, 125), 2990) << "a distance below the shortest one is changed";
    EXPECT_EQ(drawFrames(1, 10), 2995);
    gameOver = 1;
    EXPECT_EQ(drawFrames(5, 125), 4500) << "not the shortest distance after game over";
    EXPECT_EQ(drawFrames(102, 10), 5010);
    EXPECT_EQ(SHADOW, 0) << "the shadow is drawn again";
}
