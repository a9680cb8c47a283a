// scene.h - for tests that draw with a real OpenGL: makes the display and the land, places the eye
// and reads pictures back.
#pragma once

#include "fixtures.h"
#include "image.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <array>
#include <functional>

inline constexpr int WIDTH = 1024, HEIGHT = 768;
using Rgb = std::array<uint8_t, 3>;
using Picture = std::vector<Rgb>; // row by row from the bottom
inline constexpr Rgb BLACK = {0, 0, 0}, WHITE = {255, 255, 255}, KEY = {255, 0, 255};
// The colours of the four quarters of the test picture by [s][t]. They all differ, so that the
// tests notice a picture that is mirrored or turned.
inline constexpr Rgb CORNERS[2][2] = {{{255, 0, 0}, {0, 0, 255}}, {{0, 255, 0}, {255, 255, 0}}};

inline void writeImage(const char *name, int width, int height, int bytes,
                       std::function<Rgb(int, int)> colour)
{
    Bytes pixels; // blue, green, red and, as alpha, blue again
    for (int i = 0; i < width * height * bytes; ++i)
        pixels.push_back(colour(i / bytes % width, i / bytes / width)[2 - i % bytes % 3]);
    writeFile(name, tga(bytes < 3 ? 3 : 2, width, height, bytes * 8, pixels));
}

// All tests share one video mode. Each test starts with the OpenGL state of the start-up and with
// cleared buffers.
struct Scene : EmptyWorld
{
    static void SetUpTestSuite()
    {
        ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE), 0);
        SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, 8);
        ASSERT_TRUE(SDL_SetVideoMode(WIDTH, HEIGHT, 24, SDL_FULLSCREEN | SDL_OPENGL));
    }
    static void TearDownTestSuite()
    {
        SDL_Quit();
    }
    void SetUp() override
    {
        for (const char *name : {"TexCube.tga", "TexSkyBox.tga", "TexPerson.tga"})
            writeImage(name, 10, 8, 3, [](int x, int y) { return CORNERS[x / 5][y / 4]; });
        writeImage("TexPersonBack.tga", 10, 8, 3, [](int x, int) { return x < 5 ? WHITE : KEY; });
        for (const char *name : {"TexNoise.tga", "TexTank.tga"})
            writeImage(name, 8, 8, 3, [](int, int) { return WHITE; });
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        setupOpengl(WIDTH, HEIGHT);
        initCube(&cb);
        cb.position = {0, 0, 0};
        glMatrixMode(GL_MODELVIEW);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    }
    void TearDown() override
    {
        tgaDestroy(skyBoxImage);
        glPopAttrib();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        glLoadIdentity();
    }
};

// A land of side * side samples; by default it is white, flat and 150 units high.
inline void build(
    int side, std::function<int(int x, int z)> level = [](int, int) { return 64; },
    std::function<Rgb(int x, int z)> colour = [](int, int) { return WHITE; }, int people = 0,
    int tanks = 0)
{
    const auto height = [&](int z, int x) { return Rgb{0, 0, uint8_t(level(x, z))}; };
    writeImage("Map.tga", side, side, 1, height); // each row of an image has one x
    writeImage("MapTex.tga", side, side, 4, [&](int z, int x) { return colour(x, z); });
    ASSERT_TRUE(initTerrain(&ter) && makeList(peopleLst, people, side, side, 25) &&
                makeTankList(tankLst, tanks));
}

inline Vector off(Vector from, Vector along, float distance)
{
    return vectorAdd(from, vectorMultiply(along, distance));
}

inline void aim(Vector eye, Vector at, Vector up)
{
    glLoadIdentity();
    gluLookAt(eye.x, eye.y, eye.z, at.x, at.y, at.z, up.x, up.y, up.z);
}

inline Picture look()
{
    Picture picture(WIDTH * HEIGHT);
    glReadPixels(0, 0, WIDTH, HEIGHT, GL_RGB, GL_UNSIGNED_BYTE, picture.data());
    return picture;
}

// Projects a point with the current matrices: x and y are its pixel, z is its depth from 0 to 1.
inline Vector project(Vector world)
{
    GLdouble model[16], projection[16], x, y, z;
    const GLint viewport[] = {0, 0, WIDTH, HEIGHT};
    glGetDoublev(GL_MODELVIEW_MATRIX, model);
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    gluProject(world.x, world.y, world.z, model, projection, viewport, &x, &y, &z);
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

// The colour of the pixel that shows a point.
inline Rgb seen(const Picture &picture, Vector world)
{
    const Vector at = project(world);
    return picture.at(int(at.y) * WIDTH + int(at.x));
}

inline int largestDifference(Rgb a, Rgb b) // of the three channels
{
    return std::max({abs(a[0] - b[0]), abs(a[1] - b[1]), abs(a[2] - b[2])});
}

inline bool isAlike(Rgb a, Rgb b)
{
    return largestDifference(a, b) <= 8;
}
