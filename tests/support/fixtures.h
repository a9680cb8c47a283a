// fixtures.h - shared by the tests: comparisons, image files, a working directory and the globals
// of the game.
#pragma once

#include "camera.h"
#include "cube.h"
#include "main.h"
#include "people.h"
#include "shot.h"
#include "tank.h"
#include "terrain.h"
#include "util.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

typedef std::vector<uint8_t> Bytes;
typedef std::vector<int> Ids;

inline uint32_t fakeTicks = 0; // milliseconds; what SDL_GetTicks of stopped_clock.cpp returns

// ---- comparisons --------------------------------------------------------------------------------

inline std::ostream &operator<<(std::ostream &stream, Vector v)
{
    return stream << '(' << v.x << ", " << v.y << ", " << v.z << ')';
}

// Succeeds if each component differs by at most the tolerance; with NaN it fails.
inline testing::AssertionResult isNear(Vector actual, Vector expected, double tolerance)
{
    const bool isWithin = std::fabs(actual.x - expected.x) <= tolerance &&
                          std::fabs(actual.y - expected.y) <= tolerance &&
                          std::fabs(actual.z - expected.z) <= tolerance;
    return (isWithin ? testing::AssertionSuccess() : testing::AssertionFailure())
           << actual << " instead of " << expected;
}

struct TextDifference // the first line in which two texts differ
{
    long line;     // its number, from 1
    size_t offset; // where it begins in both texts
    std::string actual, expected;
};

inline TextDifference firstDifference(const std::string &actual, const std::string &expected)
{
    const auto at = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    const std::string same(actual.begin(), at.first);
    const size_t offset = same.rfind('\n') + 1;
    const auto line = [offset](const std::string &text)
    { return text.substr(offset, text.find('\n', offset) - offset); };
    return {std::count(same.begin(), same.end(), '\n') + 1, offset, line(actual), line(expected)};
}

inline testing::AssertionResult isSameText(const std::string &actual, const std::string &expected)
{
    if (actual == expected)
        return testing::AssertionSuccess();
    const TextDifference at = firstDifference(actual, expected);
    return testing::AssertionFailure() << "line " << at.line << "\n  expected: " << at.expected
                                       << "\n    actual: " << at.actual;
}

// The numbers (id) of the nodes in a list of shots, tanks or people, from its head.
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

// Removes the middle, the first and the last node of a list whose nodes have the numbers 3, 2, 1.
template <typename Node, typename Remove> void expectRemovals(Node *const &head, Remove remove)
{
    ASSERT_EQ(idsFrom(head), Ids({3, 2, 1}));
    for (const auto &[id, remaining] :
         std::vector<std::pair<int, Ids>>{{2, {3, 1}}, {3, {1}}, {1, {}}})
    {
        EXPECT_EQ(remove(id), 1);
        EXPECT_EQ(remove(id), 0) << "it has been removed already";
        EXPECT_EQ(idsFrom(head), remaining);
    }
}

// ---- files --------------------------------------------------------------------------------------

// An uncompressed image file. The bytes of pixels, in the order of the file, are written count
// times.
inline Bytes tga(int type, int width, int height, int depth, const Bytes &pixels, int count = 1)
{
    Bytes file = {0, 0, static_cast<uint8_t>(type), 0, 0, 0, 0, 0, 0, 0, 0, 0};
    for (int field : {width, width >> 8, height, height >> 8, depth, 0})
        file.push_back(static_cast<uint8_t>(field));
    for (int i = 0; i < count; ++i)
        file.insert(file.end(), pixels.begin(), pixels.end());
    return file;
}

inline void writeFile(const char *name, const Bytes &bytes)
{
    std::ofstream(name, std::ios::binary) << std::string(bytes.begin(), bytes.end());
}

// A new working directory.
struct Folder
{
    Folder()
    {
        if (!mkdtemp(path))
        {
            perror(path);
            exit(EXIT_FAILURE);
        }
        std::filesystem::current_path(path);
    }
    ~Folder()
    {
        std::filesystem::current_path("/");
        std::filesystem::remove_all(path);
    }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

private:
    char path[sizeof("/tmp/tumbledown-XXXXXX")] = "/tmp/tumbledown-XXXXXX";
};

// ---- worlds -------------------------------------------------------------------------------------

// The globals of the game as they are at the start, with empty lists. No key is held.
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
