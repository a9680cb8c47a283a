// Rolls the cube over the game's own land, without drawing: the cliffs at its end hold the cube and
// are no trap for it. The mass is that of the start; growth adds less than a thousandth.
#include "driver.h"
#include "fixtures.h"

constexpr int DIRECTIONS = 32;
constexpr int STEPS[] = {10, 20, 33}; // milliseconds
constexpr float SECONDS = 120;        // of each run
constexpr float RIM = 70 * 25;        // units from the end of the land: what few live in

struct OwnLand : EmptyWorld
{
    OwnLand()
    {
        for (const char *name : {"Map.tga", "MapTex.tga", "TexNoise.tga"})
            std::filesystem::copy_file(std::string(DATA_DIR) + name, name);
        initTerrain(&ter);
        for (int x = 0; x < ter.width; ++x)
        {
            heights.emplace_back(ter.map[x], ter.map[x] + ter.height);
            normals.emplace_back(ter.normals[x], ter.normals[x] + ter.height);
        }
    }
    // Lays the cube on the land as it was before any dent.
    void begin(float x, float z, float size, float heading)
    {
        for (int i = 0; i < ter.width; ++i)
        {
            std::copy(heights[i].begin(), heights[i].end(), ter.map[i]);
            std::copy(normals[i].begin(), normals[i].end(), ter.normals[i]);
        }
        initCube(&cb);
        cb.size = cb.targetSize = size;
        cb.inertia = static_cast<double>(cb.mass) * size * size / 6;
        cb.inverseInertia = 1 / cb.inertia;
        cb.position = vectorInit(x, getHeightAt(&ter, x, z) + size / 2, z);
        cb.momentum = cb.angularMomentum = cb.angularVelocity = vectorInit(0, 0, 0);
        cb.heading = heading;
    }
    static void step(int milliseconds)
    {
        timeH = static_cast<float>(milliseconds / 1000.0);
        handleKeyDown();
        updateCube(&cb, timeH);
        collideCubeTerrain();
    }
    static bool isWithin(float margin) // units from the end of the land
    {
        const float half = ter.worldWidth / 2 - margin;
        return mod(cb.position.x) < half && mod(cb.position.z) < half;
    }
    // 1 when the cube, rolled straight on from the middle, leaves the land.
    int leaves(int milliseconds, float size, int direction)
    {
        begin(0, 0, size, direction * 360.0f / DIRECTIONS);
        held[SDLK_UP] = 1;
        for (float t = 0; t < SECONDS && isWithin(0); t += timeH)
            step(milliseconds);
        return !isWithin(0);
    }
    // 1 when the cube, rolled toward the middle from a place on the rim, does not come off it.
    int isTrapped(int milliseconds, float size, int place)
    {
        const float depth = RIM * (place * 37 % DIRECTIONS + 0.5f) / DIRECTIONS;
        const float far = ter.worldWidth / 2 - std::max(depth, ter.scale * 2);
        const float along = far * (place / 4 * 2 - 7 + size / 175) / 8;
        const float end = place % 2 ? far : -far;
        const float x = place / 2 % 2 ? end : along, z = place / 2 % 2 ? along : end;
        begin(x, z, size, findDirection(vectorInit(x, 0, z), vectorInit(0, 0, 0)));
        for (float t = 0; t < SECONDS && !isWithin(RIM); t += timeH)
        {
            holdKeysToward(vectorInit(0, 0, 0), held);
            step(milliseconds);
        }
        return !isWithin(RIM);
    }
    // Counts the runs that fail in every direction or place; prints a row for each size.
    template <typename Run> int failures(const char *what, float size, Run run)
    {
        int sum = 0;
        printf("%s at size %3.0f:", what, size);
        for (int milliseconds : STEPS)
        {
            int count = 0;
            for (int i = 0; i < DIRECTIONS; ++i)
                count += run(milliseconds, size, i);
            printf("%4d with %d ms", count, milliseconds);
            sum += count;
        }
        printf(", of %d each\n", DIRECTIONS);
        return sum;
    }

    std::vector<std::vector<float>> heights;
    std::vector<std::vector<Vector>> normals;
};

TEST_F(OwnLand, IsDrawnToItsEnd)
{
    EXPECT_EQ(worldToTerrainX(&ter, 1e6f) / BLOCK_SIDE, ter.blocksX); // blocks before it are drawn
    EXPECT_EQ(ter.blocksX * BLOCK_SIDE, ter.width - 1);
}

TEST_F(OwnLand, HoldsTheCube)
{
    const auto run = [this](auto... with) { return leaves(with...); };
    int small = 0;
    for (float size : {60.0f, 100.0f, 175.0f})
        small += failures("leave", size, run);
    EXPECT_LE(small, 12);
    EXPECT_LE(small + failures("leave", 250, run), 46);
}

TEST_F(OwnLand, TrapsNoCube)
{
    int trapped = 0;
    for (float size : {60.0f, 100.0f, 140.0f, 175.0f})
        trapped +=
            failures("are trapped", size, [this](auto... with) { return isTrapped(with...); });
    EXPECT_LE(trapped, 8);
}
