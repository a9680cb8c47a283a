// A frame does not send to OpenGL what is out of view. This test compares the pixels of such a
// frame with those of a frame that sends everything.
#include "animate.h"
#include "scene.h"
#include "view.h"

namespace
{
Rgb groundColour(int x, int z)
{
    return {uint8_t(60 + x % 90), uint8_t(120 + z % 80), uint8_t(x * 3 + z)};
}

// As many people and tanks as in the game, on hills that look different in every direction.
struct WholeWorld : Scene
{
    void SetUp() override
    {
        Scene::SetUp();
        const auto level = [](int x, int z)
        { return int(110 + 70 * std::sin(x / 17.0) + 60 * std::cos(z / 29.0 + x / 90.0)); };
        srand(1);
        build(500, level, groundColour, 20000, 1500);
        randomTankPlacement(tankLst, 500, 500, 25);
        for (TankNode *node = tankLst->head; node; node = node->next)
            node->tank.lastShotTime = 1e9f; // no tank fires: a shot that lands changes the land
        VIEW_DISTANCE = 40000;
        animate(&cb, peopleLst, tankLst, &cam, &ter, shotLst); // later steps take no time
        initCube(&cb);
        cb.orientation = normalize({0.9f, 0.3f, -0.2f, 0.1f});
        for (float x = -900; x < 6000; x += 230)
            deformTerrain(&ter, {x, 0, 700 - x * 0.3f}, 10, DEFORM_CRATER);
        addShot(shotLst, {0, {10, 700, 20}, {0, 0, 0}, 40, nullptr});
    }
};

struct Place
{
    const char *name;
    Vector cube; // y is above the ground
    Vector eye;  // relative to the cube
    int distance;
    bool over;
};
} // namespace

constexpr Place PLACES[] = {
    {"behind on the ground", {130, 50, -420}, {20, 240, -310}, 5000, false},
    {"along -z", {-2100, 50, 800}, {0, 150, 330}, 2500, false},
    {"from below the cube", {700, 400, -1500}, {140, -330, 60}, 5000, false},
    {"steeply down", {40, 60, 70}, {9, 1500, -4}, 6000, false},
    {"straight down", {0, 50, 0}, {0, 900, 0}, 5000, false},
    {"straight up", {300, 1500, 600}, {0, -1300, 0}, 5000, false},
    {"at the lower rim", {-6100, 50, -6050}, {290, 260, 170}, 5000, false},
    {"at the upper rim", {6150, 80, 5900}, {-200, 300, -240}, 14000, false},
    {"off the land, looking back", {6900, 700, -300}, {800, 200, 90}, 14000, false},
    {"from a corner of the land", {-5800, 900, -5700}, {-400, 500, -330}, 14000, false},
    {"circling after game over", {500, 10, 900}, {-640, 1100, 770}, 4500, true},
    {"over craters", {1500, 90, 240}, {-320, 260, -60}, 5000, false},
};

static void drawFrom(const Place &place)
{
    const float ground = getHeightAt(&ter, place.cube.x, place.cube.z);
    cb.position = vectorAdd(place.cube, {0, ground, 0});
    cb.momentum = cb.force = {0, 0, 0};
    cam.position = vectorAdd(cb.position, place.eye);
    VIEW_DISTANCE = place.distance;
    gameOver = place.over;
    SHADOW = 1;
    drawScreen();
    VIEW_DISTANCE = place.distance; // the frame has changed it
}

// Draws the last frame again. This time everything in range is sent, the alpha test is on, and the
// drawing of the shadow is not limited to a part of the screen.
static void drawAllInRange()
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glPushMatrix();
    const Eye eye = eyeOnCube();
    lookFrom(&eye);
    drawSkyBox();
    drawTerrain(&ter, cb.position.x, cb.position.z, static_cast<float>(VIEW_DISTANCE));
    drawHorde(peopleLst, &cb);
    drawTanks(tankLst, &cb, &ter);
    renderCubeShadow(&cb, cam.position.x, cam.position.y, cam.position.z);
    placeAndDrawCube();
    drawShots(shotLst, &ter);
    glColor3f(0, 0, 0);
    displayScore();
    displaySize();
    if (gameOver)
        displayGameOver();
    glPopMatrix();
}

TEST_F(WholeWorld, LeavingOutWhatIsOutOfViewChangesNoPixel)
{
    for (const Place &place : PLACES)
    {
        drawFrom(place);
        EXPECT_EQ(screenArea(&cb.position, 1, 800, 400).width, 800)
            << "the frame does not clear the view that it has set";
        const Picture drawn = look();
        ASSERT_TRUE(glIsEnabled(GL_ALPHA_TEST));
        drawAllInRange();
        EXPECT_TRUE(drawn == look()) << place.name;
    }
}
