// The sky alone, a person alone and close to the eye, and a saved picture of the screen.
#include "scene.h"

TEST_F(Scene, SetupClearsTheStencilBuffer)
{
    glClearStencil(1);
    glClear(GL_STENCIL_BUFFER_BIT);
    glClearStencil(0);
    tgaDestroy(skyBoxImage); // which setupOpengl loads again
    setupOpengl(WIDTH, HEIGHT);
    uint8_t stencil = 1;
    glReadPixels(500, 400, 1, 1, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, &stencil);
    EXPECT_EQ(stencil, 0);
}

TEST_F(Scene, SkyIsUprightAroundTheEyeAndBehindEverything)
{
    cam.position = {1000, 300, -500};
    for (const Vector ahead : {Vector{0, 0, 1}, {1, 0, 0}, {0, 0, -1}, {-1, 0, 0}, {0, 1, 0}})
    {
        const Vector up = ahead.y == 0 ? Vector{0, 1, 0} : Vector{0, 0, 1};
        const Vector right = vectorCrossProduct(ahead, up), wall = off(cam.position, ahead, 100);
        glClear(GL_COLOR_BUFFER_BIT);
        aim(cam.position, wall, up);
        drawSkyBox();
        const Picture picture = look();
        EXPECT_EQ(std::count(picture.begin(), picture.end(), BLACK), 0) << "pixels without sky";
        float depth;
        glReadPixels(500, 400, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        EXPECT_EQ(depth, 1);
        if (ahead.y != 0)
            continue;
        const Vector centre = off(wall, up, 15); // the middle of the wall, above the eye
        EXPECT_PRED2(isAlike, seen(picture, centre), (Rgb{127, 127, 64}))
            << "the texels are not mixed";
        for (int corner = 0; corner < 4; ++corner)
        {
            const Vector row = off(centre, up, corner % 2 ? 40 : -40);
            EXPECT_PRED2(isAlike, seen(picture, off(row, right, corner / 2 ? 40 : -40)),
                         CORNERS[corner / 2][corner % 2]);
        }
        // At its upper edge the wall mixes its texture with the border, which has the colour of the
        // first texel.
        const Vector edge = off(off(centre, up, 97), right, 40);
        aim(cam.position, edge, up);
        drawSkyBox();
        EXPECT_PRED2(isAlike, seen(look(), edge), (Rgb{255, 158, 0}));
    }
}

constexpr Vector FEET = {-3000, 0, 3000}; // in a corner of the land, so that x and z differ

static void addOnePerson() // 1 unit below FEET, since people are drawn 1 unit higher
{
    build(256);
    cb.position = FEET;
    addPerson(peopleLst, {1, off(FEET, {0, 1, 0}, -1), {}, 0, nullptr, 0, nullptr, 0});
}

// Looks at the person along z, from eyeZ units away. Compares the colours of points at some x and
// at each y in rows, both in units from the feet.
static void expectPerson(float eyeZ, std::vector<float> rows,
                         std::function<Rgb(float x, float y)> expected)
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    aim(vectorAdd(FEET, {0, 10, eyeZ}), vectorAdd(FEET, {0, 10, 0}), {0, 1, 0});
    drawHorde(peopleLst, &cb);
    const Picture picture = look();
    for (float x = -7; x <= 7; x += 2)
        for (float y : rows)
            EXPECT_PRED2(isAlike, seen(picture, vectorAdd(FEET, {x, y, 0})), expected(x, y))
                << x << ", " << y;
}

TEST_F(Scene, PersonIsABlackStickFigureFromBothSides)
{
    constexpr const char *FIGURE[] = {"-#-#-", "-#-#-", "-#-#-", "-###-",
                                      "-###-", "#####", "#-#-#"};
    const auto figure = [&](float x, float y) // FIGURE has squares of 2 units
    {
        const bool isIn = -4 < x && x < 6 && y < 14;
        return isIn && FIGURE[int(y / 2)][int(x / 2 + 2)] == '#' ? BLACK : Rgb{51, 102, 153};
    };
    glClearColor(0.2f, 0.4f, 0.6f, 1);
    addOnePerson();
    for (float eyeZ : {-40.0f, 40.0f})
        expectPerson(eyeZ, {1, 3, 5, 7, 9, 11, 13, 15}, figure);
}

TEST_F(Scene, PictureBoardAddsItsPictureToTheBackground)
{
    glClearColor(0, 0, 0.2f, 1);
    TRANSPARENCY = 1;
    addOnePerson();
    for (float eyeZ : {-40.0f, 40.0f})
        expectPerson(eyeZ, {4, 7, 13, 16},
                     [&](float x, float y)
                     {
                         const Rgb back = x < 0 ? WHITE : BLACK;
                         Rgb picture =
                             eyeZ < 0 ? CORNERS[x < 0][y > 10] : back; // the front faces -z
                         picture[2] = std::max<uint8_t>(picture[2], 51);
                         return picture;
                     });
}

TEST_F(Scene, ScreenGrabSavesTheRectangleAsItIsSeen)
{
    aim({0, 0, 200}, {0, 0, 0}, {0, 1, 0});
    drawCube(&cb);
    ASSERT_EQ(tgaGrabScreenSeries("grab", 400, 250, 900, 600), TGA_OK);
    TgaImage *grab = tgaLoad("grab0.tga");
    Bytes pixels(500 * 350 * 4);
    glReadPixels(400, 250, 500, 350, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    EXPECT_EQ(Bytes(grab->imageData, grab->imageData + 4 * grab->width * grab->height), pixels);
    tgaDestroy(grab);
}
