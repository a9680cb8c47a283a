// The sky.
#include "scene.h"

TEST_F(Scene, SkyIsAllAroundTheEyeTheRightWayRoundAndBehindEverything)
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
        EXPECT_EQ(std::count(picture.begin(), picture.end(), BLACK), 0) << "a hole";
        float depth;
        glReadPixels(500, 400, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        EXPECT_EQ(depth, 1);
        if (ahead.y != 0)
            continue;
        const Vector centre = off(wall, up, 15); // it is above the eye
        EXPECT_PRED2(isAlike, seen(picture, centre), (Rgb{127, 127, 64})) << "a smooth mix";
        for (int corner = 0; corner < 4; ++corner)
        {
            const Vector row = off(centre, up, corner % 2 ? 40 : -40);
            EXPECT_PRED2(isAlike, seen(picture, off(row, right, corner / 2 ? 40 : -40)),
                         CORNERS[corner / 2][corner % 2]);
        }
    }
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
        aim(cam.position, off(top, {0, 1, 0}, -20), {0.1f, 1, 0.05f}); // at a slant
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
                for (float side : {-1.5f, 1.5f})
                    ASSERT_PRED2(isAlike, seen(picture, at), seen(picture, off(at, across, side)))
                        << edge << ", " << i;
            }
    }
}
