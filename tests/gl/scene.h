// scene.h - what the tests of the drawing share: a real OpenGL context, test pictures, and pixels.
#pragma once

#include "fixtures.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <functional>

constexpr int WIDTH = 1024, HEIGHT = 768;
using Rgb = std::array<uint8_t, 3>;
using Picture = std::vector<Rgb>; // row by row from the bottom
constexpr Rgb BLACK = {0, 0, 0}, WHITE = {255, 255, 255}, KEY = {255, 0, 255};
// The corners of the test picture by [s][t]: none is another's mirror image.
constexpr Rgb CORNERS[2][2] = {{{255, 0, 0}, {0, 0, 255}}, {{0, 255, 0}, {255, 255, 0}}};

inline void writeImage(const char *name, int side, int bytes, std::function<Rgb(int, int)> colour)
{
    uint8_t *pixels = static_cast<uint8_t *>(malloc(side * side * bytes)); // tgaSave frees it
    for (int i = 0; i < side * side * bytes; ++i)
        pixels[i] = colour(i / bytes % side, i / bytes / side)[i % bytes % 3];
    const int16_t size = static_cast<int16_t>(side);
    ASSERT_EQ(tgaSave(name, size, size, static_cast<uint8_t>(bytes * 8), pixels), TGA_OK);
}

// One video mode for all tests; each starts as start-up does, on a black screen.
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
            writeImage(name, 16, 3, [](int x, int y) { return CORNERS[x / 8][y / 8]; });
        writeImage("TexPersonBack.tga", 8, 3, [](int x, int) { return x < 4 ? WHITE : KEY; });
        for (const char *name : {"TexNoise.tga", "TexTank.tga"})
            writeImage(name, 8, 3, [](int, int) { return Rgb{204, 204, 204}; });
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

inline Picture look()
{
    Picture picture(WIDTH * HEIGHT);
    glReadPixels(0, 0, WIDTH, HEIGHT, GL_RGB, GL_UNSIGNED_BYTE, picture.data());
    return picture;
}
