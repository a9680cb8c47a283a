// fixtures.h - what the tests share: comparisons, images written by hand, and a small world with
// its own clock.
#pragma once

#include "animate.h"
#include "camera.h"
#include "cube.h"
#include "image.h"
#include "main.h"
#include "people.h"
#include "shot.h"
#include "tank.h"
#include "terrain.h"

#include <SDL.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

typedef std::vector<uint8_t> Bytes;
typedef std::vector<int> Ids;

inline uint32_t fakeTicks = 0; // milliseconds, what SDL_GetTicks answers

inline std::ostream &operator<<(std::ostream &stream, Vector v)
{
    return stream << '(' << v.x << ", " << v.y << ", " << v.z << ')';
}

inline testing::AssertionResult isNear(Vector actual, Vector expected, double tolerance)
{
    const bool holds = std::fabs(actual.x - expected.x) <= tolerance &&
                       std::fabs(actual.y - expected.y) <= tolerance &&
                       std::fabs(actual.z - expected.z) <= tolerance;
    return (holds ? testing::AssertionSuccess() : testing::AssertionFailure())
           << actual << " instead of " << expected;
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

// The identities in a list of shots, tanks or people, from its head.
template <typename Node> Ids idsFrom(const Node *node)
{
    Ids ids;
    for (; node; node = node->next)
        if constexpr (std::is_same_v<Node, TankNode>)
            ids.push_back(node->tank.id);
        else if constexpr (std::is_same_v<Node, PersonNode>)
            ids.push_back(node->person.id);
        else
            ids.push_back(node->id);
    return ids;
}

// Takes the middle, the first and the last out of a list of 3, 2 and 1.
template <typename Node, typename Remove> void expectRemovals(Node *const &head, Remove remove)
{
    ASSERT_EQ(idsFrom(head), Ids({3, 2, 1}));
    for (const auto &[id, left] : std::vector<std::pair<int, Ids>>{{2, {3, 1}}, {3, {1}}, {1, {}}})
    {
        EXPECT_EQ(remove(id), 1);
        EXPECT_EQ(remove(id), 0) << "it is gone";
        EXPECT_EQ(idsFrom(head), left);
    }
}

// A new working directory.
struct Folder
{
    Folder()
    {
        char folder[] = "/tmp/tumbledown-XXXXXX";
        std::filesystem::current_path(mkdtemp(folder));
    }
    ~Folder()
    {
        std::filesystem::remove_all(std::filesystem::current_path());
        std::filesystem::current_path("/");
    }
};

// The world of the globals, empty; no key is held.
struct EmptyWorld : testing::Test
{
    EmptyWorld()
    {
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
        EXPECT_TRUE(destroyPersonList(peopleLst) && destroyTankList(tankLst) &&
                    destroyShotList(shotLst));
        deleteTerrain(&ter);
        destroyCube(&cb);
    }

    Folder folder;
    uint8_t held[SDLK_LAST] = {};
};

// Flat land at height 0, of one colour, 210 samples by 190, with the cube above it and the clock
// at 0. People turn back 625 units from its middle.
struct World : EmptyWorld
{
    World()
    {
        writeFile("Map.tga", tga(2, 210, 210, 32, {9, 9, 9, 0}, 210 * 210)); // its last byte
        writeFile("MapTex.tga", tga(2, 210, 210, 32, {64, 128, 192, 0}, 210 * 210));
        writeFile("TexNoise.tga", tga(2, 1, 1, 24, {255, 255, 255}));
        initTerrain(&ter);
        ter.height = 190; // images are square; code that mixes up width and height shows here
        ter.worldDepth = 4750;
        ter.blocksZ = 7;
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
