// fixtures.h - what the tests share: images written by hand, and a small world with its own clock.
#pragma once

#include "animate.h"
#include "main.h"

#include <SDL.h>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

typedef std::vector<uint8_t> Bytes;
typedef std::vector<double> Numbers;

inline uint32_t fakeTicks = 0; // milliseconds, what SDL_GetTicks answers

// Compares numbers and vectors, in order, with the numbers expected.
template <typename... Values>
void expectNear(const Numbers &expected, double tolerance, Values... values)
{
    Numbers actual;
    const auto append = [&](auto value)
    {
        if constexpr (std::is_same_v<decltype(value), Vector>)
            actual.insert(actual.end(), {value.x, value.y, value.z});
        else
            actual.push_back(value);
    };
    (append(values), ...);
    ASSERT_EQ(actual.size(), expected.size());
    for (size_t i = 0; i < actual.size(); ++i)
        EXPECT_NEAR(actual[i], expected[i], tolerance) << "number " << i;
}

// A table of numbers; rows are parted by bars.
inline std::vector<std::vector<float>> table(const char *text)
{
    std::vector<std::vector<float>> rows(1);
    std::istringstream words(text);
    for (std::string word; words >> word;)
        word == "|" ? void(rows.emplace_back()) : rows.back().push_back(std::stof(word));
    return rows;
}

// An uncompressed image of one pixel, given as stored, over and over.
inline Bytes tga(int type, int width, int height, int depth, const Bytes &pixel, int count = 1)
{
    Bytes file = {0, 0, static_cast<uint8_t>(type), 0, 0, 0, 0, 0, 0, 0, 0, 0};
    for (int field : {width, width >> 8, height, height >> 8, depth, 0})
        file.push_back(static_cast<uint8_t>(field));
    for (int i = 0; i < count; ++i)
        file.insert(file.end(), pixel.begin(), pixel.end());
    return file;
}

inline void writeFile(const char *name, const Bytes &bytes)
{
    std::ofstream(name, std::ios::binary) << std::string(bytes.begin(), bytes.end());
}

// The world of the globals, empty, in a new working directory; no key is held.
struct EmptyWorld : testing::Test
{
    EmptyWorld()
    {
        char folder[] = "/tmp/tumbledown-XXXXXX";
        std::filesystem::current_path(mkdtemp(folder));
        peopleLst = static_cast<PeopleList *>(calloc(1, sizeof(PeopleList)));
        tankLst = static_cast<TankList *>(calloc(1, sizeof(TankList)));
        shotLst = static_cast<ShotList *>(calloc(1, sizeof(ShotList)));
        cb = {};
        ter = {};
        keys = held;
        VIEW_DISTANCE = 5000;
        SHADOW = TERRAIN_DEFORMING = 1;
        WIRE_FRAME = TRANSPARENCY = gameOver = 0;
        shadowSwitchTime = 0;
    }
    ~EmptyWorld() override
    {
        destroyPersonList(peopleLst);
        destroyTankList(tankLst);
        destroyShotList(shotLst);
        deleteTerrain(&ter);
        destroyCube(&cb);
        std::filesystem::remove_all(std::filesystem::current_path());
        std::filesystem::current_path("/");
    }

    uint8_t held[SDLK_LAST] = {};
};

// A square of flat land at height 0, of one colour, with the cube above it and the clock at 0.
struct World : EmptyWorld
{
    World()
    {
        writeFile("Map.tga", tga(2, 210, 210, 32, {9, 9, 9, 0}, 210 * 210)); // its last byte
        writeFile("MapTex.tga", tga(2, 210, 210, 32, {64, 128, 192, 0}, 210 * 210));
        writeFile("TexNoise.tga", tga(2, 1, 1, 24, {255, 255, 255}));
        initTerrain(&ter);
        makeList(peopleLst, 0, 512, 401, 25); // buckets of 51 units
        fakeTicks = 0;
        initAnimation();
        animate(&cb, peopleLst, tankLst, &cam, &ter, shotLst); // takes the clock back to 0
        gameOver = 0;
        cb = {};
        initCube(&cb);
        initCamera(&cam);
    }
};
