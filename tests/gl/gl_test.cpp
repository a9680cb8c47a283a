// What is drawn, seen on a real OpenGL context: pixels, transformed vertices and the state left.
#include "scene.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <functional>

// Side * side samples, 150 units high and rising by slope * 600 / 256 units a sample along x.
static void build(int side, int slope = 0)
{
    writeImage("Map.tga", side, 1, [&](int, int x) { return Rgb{uint8_t(64 + slope * x)}; });
    writeImage("MapTex.tga", side, 4, [](int, int) { return Rgb{128, 255, 64}; });
    ASSERT_TRUE(initTerrain(&ter) && makeList(peopleLst, 0, side, side, 25));
    ASSERT_TRUE(makeTankList(tankLst, 1));
}

static Vector off(Vector from, Vector along, float distance)
{
    return vectorAdd(from, vectorMultiply(along, distance));
}

static void lookFrom(Vector eye, Vector at, Vector up = {0, 1, 0}) // with a clear screen
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glLoadIdentity();
    gluLookAt(eye.x, eye.y, eye.z, at.x, at.y, at.z, up.x, up.y, up.z);
}

static Rgb seen(const Picture &picture, Vector world)
{
    GLdouble model[16], projection[16], x, y, z;
    const GLint viewport[] = {0, 0, WIDTH, HEIGHT};
    glGetDoublev(GL_MODELVIEW_MATRIX, model);
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    gluProject(world.x, world.y, world.z, model, projection, viewport, &x, &y, &z);
    return picture.at(int(y) * WIDTH + int(x));
}

static bool isNear(Rgb a, Rgb b) // within 8 of 255
{
    return abs(a[0] - b[0]) <= 8 && abs(a[1] - b[1]) <= 8 && abs(a[2] - b[2]) <= 8;
}

// The test picture around centre, with s and t its half axes.
static void expectCorners(Vector centre, Vector s, Vector t)
{
    for (int corner = 0; corner < 4; ++corner)
    {
        const Vector row = off(centre, t, corner % 2 ? 1.0f : -1.0f);
        EXPECT_PRED2(isNear, seen(look(), off(row, s, corner / 2 ? 1.0f : -1.0f)),
                     CORNERS[corner / 2][corner % 2]);
    }
}

// The corners of all triangles that are drawn and not culled, for an eye at the origin that looks
// along -z. Leaves that view's projection behind.
static std::vector<Vector> verticesOf(std::function<void()> draw)
{
    constexpr float REACH = 8192;
    std::vector<float> buffer(1 << 18);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-REACH, REACH, -REACH, REACH, -REACH, REACH);
    glMatrixMode(GL_MODELVIEW);
    glFeedbackBuffer(1 << 18, GL_3D, buffer.data());
    glRenderMode(GL_FEEDBACK);
    draw();
    const int size = glRenderMode(GL_RENDER);
    std::vector<Vector> vertices;
    for (int i = 0; i < size; i += 11) // a token, the count 3, three times x, y, z
        for (const float *v = &buffer[i + 2]; v < &buffer[i] + 11; v += 3)
            vertices.push_back({(v[0] / WIDTH * 2 - 1) * REACH, (v[1] / HEIGHT * 2 - 1) * REACH,
                                (1 - v[2] * 2) * REACH});
    return vertices;
}

// The mean of some vertices; of the two triangles of a quad it is the quad's centre.
static Vector middle(const std::vector<Vector> &vertices, size_t first, size_t count)
{
    Vector sum = {0, 0, 0};
    for (size_t i = first; i < first + count; ++i)
        sum = off(sum, vertices.at(i), 1.0f / count);
    return sum;
}

static bool isAt(Vector a, Vector b) // within 0.1 units
{
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z) < 0.1;
}

TEST_F(Scene, EachFaceOfTheCubeShowsThePictureTheRightWayRoundFromOutsideOnly)
{
    const std::pair<Vector, Vector> faces[] = {{{0, 0, 1}, {0, 1, 0}},  {{-1, 0, 0}, {0, 1, 0}},
                                               {{0, 0, -1}, {0, 1, 0}}, {{1, 0, 0}, {0, 1, 0}},
                                               {{0, 1, 0}, {0, 0, -1}}, {{0, -1, 0}, {-1, 0, 0}}};
    glDisable(GL_LIGHTING);
    for (const auto &[out, t] : faces)
    {
        lookFrom(vectorMultiply(out, 300), {0, 0, 0}, t);
        drawCube(&cb);
        const Vector s = vectorCrossProduct(t, out);
        expectCorners(vectorMultiply(out, 50), vectorMultiply(s, 30), vectorMultiply(t, 30));
        lookFrom(vectorMultiply(out, 20), {0, 0, 0}, t);
        drawCube(&cb);
        EXPECT_EQ(look(), Picture(WIDTH * HEIGHT, BLACK)) << "from inside";
    }
}

TEST_F(Scene, PeopleInViewStandAUnitAboveTheGroundTurnedByTheirDirectionAndBlack)
{
    build(60);
    VIEW_DISTANCE = 500;
    addPerson(peopleLst, {0, {300, 50, -200}, {0, 0, 0}, 0, nullptr, 0, nullptr, 0});
    addPerson(peopleLst, {1, {2000, 50, -200}, {0, 0, 0}, 0, nullptr, 0, nullptr, 0}); // too far
    lookFrom({300, 60, -140}, {300, 60, -200});
    drawSkyBox(); // leaves replacing on
    glBindTexture(GL_TEXTURE_2D, skyBoxTexName);
    drawHorde(peopleLst, &cb);
    EXPECT_PRED2(isNear, seen(look(), {301, 60, -200}), BLACK);
    glLoadIdentity();
    for (const auto &[direction, x, z] : {std::array{0, 1, 0}, {90, 0, -1}, {180, -1, 0}})
    {
        (*peopleLst->buckets[175 * BUCKET_COUNT + 91])->person.direction = float(direction);
        const std::vector<Vector> drawn = verticesOf([] { drawHorde(peopleLst, &cb); });
        ASSERT_EQ(drawn.size(), 6 * 6u) << "from both sides";
        EXPECT_PRED2(isAt, middle(drawn, 0, 36), (Vector{300.0f + x, 59.667f, -200.0f + z}));
        EXPECT_PRED2(isAt, middle(drawn, 0, 6), (Vector{300.0f - 3 * x, 63, -200.0f - 3 * z}));
    }
}

TEST_F(Scene, PictureBoardShowsItsFrontAheadAndItsBackBehindAndAddsNothingWhereItIsKeyed)
{
    TRANSPARENCY = 1;
    build(60);
    addPerson(peopleLst, {}); // faces -z
    lookFrom({0, 10, -60}, {0, 10, 0});
    drawHorde(peopleLst, &cb);
    expectCorners({0, 11, 0}, {-5, 0, 0}, {0, 5, 0});
    glClearColor(0.2f, 0.2f, 0.2f, 1);
    lookFrom({0, 10, 60}, {0, 10, 0});
    drawHorde(peopleLst, &cb);
    EXPECT_PRED2(isNear, seen(look(), {-5, 11, 0}), WHITE);
    EXPECT_PRED2(isNear, seen(look(), {5, 11, 0}), (Rgb{51, 51, 51}));
}

TEST_F(Scene, TankStandsTiltedOnTheGroundHullFiveDegreesOnTurretOnTheCube)
{
    cb.position = {-400, 300, 300};
    for (int slope : {3, 0})
    {
        deleteTerrain(&ter);
        build(60, slope);
        Tank &tank = tankLst->head->tank;
        tank.position = {100, 5000, -50};
        tank.heading = 30;
        glDisable(GL_CULL_FACE);
        const auto drawn = verticesOf([] { drawTanks(tankLst, &cb, &ter); });
        ASSERT_EQ(drawn.size(), 24 * 6u); // in quads of two triangles
        const Vector up = normal(drawn[72], drawn[73], drawn[74]);
        EXPECT_GT(vectorDotProduct(up, ter.normals[34][28]), 0.9999);
        EXPECT_FLOAT_EQ(tank.position.y, getHeightAt(&ter, 100, -50));
        if (slope != 0)
            continue;
        EXPECT_PRED2(isAt, middle(drawn, 60, 6), (Vector{114.745f, 166, -60.324f})) << "35 degrees";
        const Vector muzzle = middle(drawn, 132, 6);
        EXPECT_NEAR(findDirection(tank.position, muzzle), findDirection({100, 0, -50}, cb.position),
                    5.1);
    }
}

static void expectState(GLenum name, const std::vector<float> &values)
{
    float actual[16] = {};
    glGetFloatv(name, actual);
    for (size_t i = 0; i < values.size(); ++i)
        EXPECT_NEAR(actual[i], values[i], 1e-4) << std::hex << name;
}

TEST_F(Scene, BlockDrawsTwentySixCellsByTwentyFiveAsFarAsTheGridReachesAndOnlyFromAbove)
{
    build(50, 2);
    const std::array<int, 4> cases[] = {{0, 0, 26, 25}, {1, 0, 24, 25}, {0, 1, 26, 24}};
    for (const auto &[bx, bz, cellsX, cellsZ] : cases)
    {
        const uint32_t list = ter.displayLists[bx][bz];
        const auto from = [&](float tilt) { glRotatef(tilt, 1, 0, 0), glCallList(list); };
        EXPECT_TRUE(verticesOf([&] { from(-90); }).empty());
        const std::vector<Vector> drawn = verticesOf([&] { from(180); }); // heights toward the eye
        EXPECT_EQ(drawn.size(), cellsX * cellsZ * 6u);
        glLoadIdentity();
        for (const Vector v : drawn)
        {
            const long i = std::lround((v.x + 625) / 25), j = std::lround((625 - v.y) / 25);
            ASSERT_EQ(std::clamp<long>(i, bx * 25, bx * 25 + cellsX), i);
            ASSERT_EQ(std::clamp<long>(j, bz * 25, bz * 25 + cellsZ), j);
            ASSERT_NEAR(v.z, ter.map[i][j], 0.01);
        }
    }
}

TEST_F(Scene, DentShowsInTheFrameThatPressesIt)
{
    build(128);
    for (float x = -800; x < 800; x += 200)
    {
        cb.position = {x, 195, 0}; // 5 units into the ground at 500 units/s: 4 units deep
        cb.momentum = {0, -5e8f, 0};
        drawScreen();
        const uint32_t list = ter.displayLists[worldToTerrainX(&ter, x + 50) / 25][2];
        const auto drawn = verticesOf([&] { glDisable(GL_CULL_FACE), glCallList(list); });
        const auto dented = [&](Vector v) { return isAt(v, {x + 50, 146, 50}); };
        EXPECT_TRUE(std::any_of(drawn.begin(), drawn.end(), dented)) << x;
    }
}

TEST_F(Scene, ShadowDarkensWhatLiesUnderTheCubeToSevenTenthsAndClearsTheStencil)
{
    build(60);
    for (int stale = 0; stale < 2; ++stale) // what the stencil holds darkens everything once
    {
        cb.position = {0, stale ? 450.0f : 240.0f, 0};
        glClearStencil(stale * 3);
        glClear(GL_STENCIL_BUFFER_BIT);
        lookFrom({400, 900, 400}, {0, 150, 0});
        drawTerrain(&ter, 0, 0, 5000);
        const Picture before = look();
        renderCubeShadow(&cb, 400, 900, 400);
        const Picture after = look();
        for (int i = 0; i < 51 * 51; ++i)
        {
            const Vector at = {float(i / 51 * 8 - 200), 150, float(i % 51 * 8 - 200)};
            const float away = std::max(std::fabs(at.x), std::fabs(at.z));
            Rgb colour = seen(before, at);
            for (uint8_t &c : colour)
                c = uint8_t(c * (away < 50 ? 0.7 : 1) * (stale ? 0.7 : 1));
            ASSERT_TRUE(isNear(seen(after, at), colour) || std::fabs(away - 50) < 3) << i;
        }
        std::vector<uint8_t> stencil(WIDTH * HEIGHT);
        glReadPixels(0, 0, WIDTH, HEIGHT, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, stencil.data());
        EXPECT_EQ(std::count(stencil.begin(), stencil.end(), 0), WIDTH * HEIGHT);
    }
}

TEST_F(Scene, ShotIsDrawnAlongItsHeading)
{
    build(60);
    addShot(shotLst, {0, {10, 300, 20}, {0, 0, 0}, 90, nullptr});
    for (const Vector v : verticesOf([] { drawShots(shotLst, &ter); }))
        EXPECT_TRUE(isAt(v, {10, 300, 56}) || std::fabs(v.z - 8) < 0.1) << "tail, or head at -z";
}

TEST_F(Scene, SkyIsAllAroundTheEyeTheRightWayRoundAndBehindEverything)
{
    cam.position = {1000, 300, -500};
    for (const Vector ahead : {Vector{0, 0, 1}, {1, 0, 0}, {0, 0, -1}, {-1, 0, 0}, {0, 1, 0}})
    {
        const Vector up = ahead.y == 0 ? Vector{0, 1, 0} : Vector{0, 0, 1};
        const Vector right = vectorCrossProduct(ahead, up), wall = off(cam.position, ahead, 100);
        lookFrom(cam.position, wall, up);
        drawSkyBox();
        const Picture picture = look();
        EXPECT_EQ(std::count(picture.begin(), picture.end(), BLACK), 0) << "a hole";
        float depth;
        glReadPixels(500, 400, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        EXPECT_EQ(depth, 1);
        if (ahead.y == 0) // its middle is 15 units above the eye
            expectCorners(off(wall, up, 15), vectorMultiply(right, 40), {0, 40, 0});
    }
    glGenTextures(1, &skyBoxTexName); // as without its picture
    glColor3f(1, 1, 1);
    drawSkyBox();
    EXPECT_EQ(look(), Picture(WIDTH * HEIGHT, WHITE));
}

// Dots of another colour along an edge of the box would be a line to the player.
TEST_F(Scene, NoLineShowsWhereFacesOfTheSkyMeet)
{
    std::filesystem::copy_file(DATA "/TexSkyBox.tga", "TexSkyBox.tga",
                               std::filesystem::copy_options::overwrite_existing);
    tgaDestroy(skyBoxImage);
    initSkyBoxTexture();
    cam.position = {0, -15, 0}; // the middle of the box is the origin
    for (const auto &[x, z] : {std::pair{1, 1}, {1, -1}, {-1, -1}, {-1, 1}})
    {
        const Vector top = {100.0f * x, 100, 100.0f * z};
        lookFrom(cam.position, off(top, {0, 1, 0}, -20), {0.1f, 1, 0.05f}); // at a slant
        drawSkyBox();
        const Picture picture = look();
        const struct
        {
            const char *edge;
            Vector along, across;
        } edges[] = {{"corner", {0, -1, 0}, {0.7f * z, 0, -0.7f * x}},
                     {"top along x", {-1.0f * x, 0, 0}, {0, 1, 0}},
                     {"top along z", {0, 0, -1.0f * z}, {0, 1, 0}}};
        for (const auto &[edge, along, across] : edges)
            for (int i = 0; i < 600; ++i)
            {
                const Vector at = off(top, along, 5 + 0.1f * i);
                const Rgb pixel = seen(picture, at);
                for (float side : {-1.5f, 1.5f})
                    ASSERT_PRED2(isNear, pixel, seen(picture, off(at, across, side)))
                        << edge << ", " << i;
            }
    }
}

TEST_F(Scene, TextsStartAtTheirAnchorsAndRunRightOverEverythingUnlessBehindTheEye)
{
    glClearColor(1, 1, 1, 1);
    glClearDepth(0); // the scene hides everything
    const std::pair<void (*)(), int> texts[] = {
        {displayScore, 654}, {displaySize, 584}, {displayGameOver, 384}};
    for (const auto &[display, row] : texts)
    {
        glColor3f(0, 0, 0);
        lookFrom({0, 0, 665.1f}, {0, 0, 0}); // a pixel a unit
        display();
        Picture picture = look();
        EXPECT_GT(std::count(picture.begin(), picture.end(), BLACK), 200);
        for (int y = row - 6; y < row + 20; ++y)
            std::fill_n(&picture[y * WIDTH + 512], 250, WHITE);
        EXPECT_EQ(picture, Picture(WIDTH * HEIGHT, WHITE));
        lookFrom({0, 0, 800}, {0, 0, 1600});
        display();
        EXPECT_EQ(look(), picture);
    }
}

TEST_F(Scene, SetupAndFrameLeaveTheirState)
{
    expectState(GL_FOG_START, {1500});
    expectState(GL_FOG_COLOR, {0.152941f, 0.658824f, 0.866667f, 1});
    expectState(GL_BLEND_DST, {GL_ONE_MINUS_SRC_ALPHA});
    expectState(GL_UNPACK_ALIGNMENT, {1}); // rows of odd widths are packed
    expectState(GL_PROJECTION_MATRIX, {1.299038f, 0, 0, 0, 0, 1.732051f, 0, 0, 0, 0, -1.0008f, -1});
    build(60);
    for (int flag = 0; flag < 2; ++flag)
    {
        SHADOW = WIRE_FRAME = flag;
        drawScreen();
        expectState(GL_STENCIL_FUNC, {float(flag ? GL_NOTEQUAL : GL_ALWAYS)});
        expectState(GL_POLYGON_MODE, {float(flag ? GL_LINE : GL_FILL)});
        expectState(GL_TEXTURE_BINDING_2D, {0});
        for (GLenum on : {GL_LIGHTING, GL_FOG, GL_DEPTH_TEST, GL_CULL_FACE, GL_TEXTURE_2D})
            EXPECT_TRUE(glIsEnabled(on)) << std::hex << on;
    }
    renderCubeShadow(&cb, 0, 0, 0);
    for (GLenum disabled : {GL_STENCIL_TEST, GL_CULL_FACE, GL_POLYGON_OFFSET_FILL})
        EXPECT_FALSE(glIsEnabled(disabled)) << std::hex << disabled;
}

TEST_F(Scene, CameraCirclesTheCubeAndKeepsItInViewAtTheShortestDrawDistance)
{
    build(256);
    cam = {{}, {0, 1750, -1000}, {}, 25, 0}; // as high as over the highest land
    cb.size = 49;                            // the game is over
    for (int frame = 0; frame < 20; ++frame)
    {
        const float direction = findDirection(cb.position, cam.position);
        VIEW_DISTANCE = 4500;
        fakeTicks += 200;
        drawScreen();
        const float turn = direction - findDirection(cb.position, cam.position);
        EXPECT_NEAR(cam.target.y, 150 + 1000, 0.1);
        expectState(GL_CURRENT_RASTER_POSITION_VALID, {1}); // of the text at the cube
        EXPECT_TRUE(frame < 3 || std::fabs(std::remainder(turn - 4, 360)) < 0.5) << turn;
    }
}

TEST_F(Scene, ScreenGrabReadsBackAsItWasSeen)
{
    lookFrom({0, 0, 200}, {0, 0, 0});
    drawCube(&cb);
    ASSERT_EQ(tgaGrabScreenSeries("grab", 0, 0, WIDTH, HEIGHT), TGA_OK);
    TgaImage *grab = tgaLoad("grab0.tga");
    std::vector<uint8_t> pixels(WIDTH * HEIGHT * 4);
    glReadPixels(0, 0, WIDTH, HEIGHT, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    EXPECT_TRUE(std::equal(pixels.begin(), pixels.end(), grab->imageData));
    tgaDestroy(grab);
}
