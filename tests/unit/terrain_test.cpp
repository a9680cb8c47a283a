#include "world.h"

#include <algorithm>

TEST_F(World, LandIsBuiltFromItsImages)
{
    constexpr int SIDE = 25; // the smallest that is accepted
    Bytes heights = tga(2, SIDE, SIDE, 32, {}), colours = tga(2, SIDE, SIDE, 24, {});
    const auto level = [](int x, int z) { return uint8_t(x * x * 3 + z * 8 + x * z); };
    for (int x = 0; x < SIDE; ++x) // each row of an image has one x
        for (int z = 0; z < SIDE; ++z)
        {
            heights.insert(heights.end(), {1, 2, 3, level(x, z)}); // the last byte is the height
            colours.insert(colours.end(), {uint8_t(100 + z), uint8_t(x), level(x, z)});
            ter.map[x][z] = level(x, z) / 256.0f * 600;
        }
    writeFile("Map.tga", heights);
    writeFile("MapTex.tga", colours);
    Terrain built = {};
    ASSERT_EQ(initTerrain(&built), 1);
    for (int sweep = 0; sweep < 3; ++sweep)
        smoothSelectedArea(&ter, 0, SIDE, 0, SIDE);
    for (int x = 0; x < SIDE; ++x)
        for (int z = 0; z < SIDE; ++z)
        {
            const Colour &colour = built.colours[x][z];
            const Vector expected = {level(x, z) / 256.0f, x / 256.0f, (100 + z) / 256.0f};
            ASSERT_TRUE(isNear({colour[0], colour[1], colour[2]}, expected, 1e-6));
            ASSERT_EQ(built.map[x][z], ter.map[x][z]) << x << ", " << z;
            // The last row and column have the normals of their neighbours.
            const int i = std::min(x, SIDE - 2), j = std::min(z, SIDE - 2);
            float **h = built.map;
            const Vector up = {h[i][j + 1] - h[i + 1][j + 1], 25, h[i][j] - h[i][j + 1]};
            ASSERT_TRUE(isNear(built.normals[x][z], normalizeVector(up), 1e-5)) << x << ", " << z;
        }
    deleteTerrain(&built);
}

TEST_F(World, SmoothingHalvesASpikeWithEachSampleOfDistance)
{
    const struct
    {
        int x, z;
        // The share of the height that remains at the spike. Along each axis it is 2/3 at the first
        // sample, 1/2 at the last one and 1/3 elsewhere.
        float share;
    } rows[] = {
        {105, 95, 1 / 3.0f * 1 / 3},
        {0, 189, 2 / 3.0f * 1 / 2},
        {209, 95, 1 / 2.0f * 1 / 3},
        {0, 0, 2 / 3.0f * 2 / 3},
    };
    for (const auto &row : rows)
    {
        ter.map[row.x][row.z] = 900;
        smoothSelectedArea(&ter, -3, 999, -2, 999); // only the grid itself is smoothed
        for (int x = 0; x < 210; ++x)
            for (int z = 0; z < 190; ++z)
                ASSERT_NEAR(std::exchange(ter.map[x][z], 0),
                            std::ldexp(900 * row.share, -abs(x - row.x) - abs(z - row.z)), 1e-3)
                    << x << ", " << z;
    }
}

TEST_F(World, PositionsGiveTheirNearestSampleAndTheHeightOfTheGround)
{
    ter.map[106][95] = 10;
    ter.map[106][96] = 20;
    ter.map[105][96] = 999; // the corner of the cell that getHeightAt never reads
    ter.map[0][95] = ter.map[209][95] = ter.map[105][0] = ter.map[105][189] = 77;
    const struct
    {
        float x, z;
        int sampleX, sampleZ;
        float height;
    } rows[] = {
        {12.4f, 6.2f, 105, 95, 7.44f}, {12.6f, -12.6f, 106, 94, 4.96f},
        {0.5f, 24, 105, 96, 9.8f}, // the same plane in the other half of the cell

        {-2625, 0, 0, 95, 0},          {-2624, 0, 0, 95, 73.92f},
        {2600, 0, 209, 95, 0},         {0, -2375, 105, 0, 0},
        {0, 2350, 105, 189, 0},        {0, 2349, 105, 189, 0},
        {-1, 2349, 105, 189, 73.92f},  {9e9f, -9999, 209, 0, 0},
        {NAN, INFINITY, 0, 189, 0},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.x << ", " << row.z);
        EXPECT_EQ(worldToTerrainX(&ter, row.x), row.sampleX);
        EXPECT_EQ(worldToTerrainZ(&ter, row.z), row.sampleZ);
        EXPECT_NEAR(getHeightAt(&ter, row.x, row.z), row.height, 1e-3);
    }
}

TEST_F(World, DentsAndCratersChangeHeightsColoursAndNormalsInTheirSquares)
{
    const struct
    {
        int mode;
        float v, strength;
        int reach;                  // samples from the centre to a side of the lowered square
        int normalsFrom, normalsTo; // of the square whose normals are computed; half open
        float depth[5];             // at |i| + |j| samples from the centre
    } rows[] = {
        {DEFORM_DENT, -50, 0, -1, 0, 0, {}},
        {DEFORM_DENT, -75, 1.5f, 0, -1, 0, {0.6f}},
        {DEFORM_DENT, -500, 10, 1, -5, 5, {4, 4, 4}},
        {DEFORM_DENT, -2000, 20, 2, -10, 10, {8, 8, 8, 8, 8}},
        {DEFORM_CRATER, 0, 0, -1, 0, 0, {}},
        {DEFORM_CRATER, 8, 16, 1, -8, 8, {8, 5.5f, 3}},
        {DEFORM_CRATER, 90, 20, 2, -10, 10, {10, 7.5f, 5, 2.5f, 0}},
        {2, 90, 0, -1, 0, 0, {}},
    };
    int centreX = -6;
    for (const auto &row : rows)
    {
        SCOPED_TRACE(testing::Message() << "mode " << row.mode << ", v " << row.v);
        centreX += 21;
        const int centreZ = 194 - centreX;
        for (int x = 0; x < 210; ++x)
            std::fill_n(ter.normals[x], 190, Vector{9, 9, 9});
        const Vector where = {centreX * 25 - 2625 + 12.0f, -777, centreZ * 25 - 2375 - 12.0f};
        deformTerrain(&ter, where, row.v, row.mode);
        for (int i = -10; i <= 10; ++i)
            for (int j = -10; j <= 10; ++j)
            {
                const int x = centreX + i, z = centreZ + j;
                const bool isLowered = std::max(abs(i), abs(j)) <= row.reach;
                const float depth = isLowered ? row.depth[abs(i) + abs(j)] : 0;
                const float soot =
                    row.mode == DEFORM_CRATER && isLowered ? depth / row.strength : 0;
                ASSERT_NEAR(ter.map[x][z], -depth, 1e-5) << i << ", " << j;
                ASSERT_NEAR(ter.colours[x][z][1], 0.5 - 0.5 * soot, 1e-5) << i << ", " << j;
                const bool isComputed =
                    row.normalsFrom <= std::min(i, j) && std::max(i, j) < row.normalsTo;
                ASSERT_EQ(ter.normals[x][z].y != 9, isComputed) << i << ", " << j;
            }
    }
    deformTerrain(&ter, {INFINITY, 0, 99999}, -2000, DEFORM_DENT); // beyond the last corner
    EXPECT_EQ(ter.map[207][187], -8);
    EXPECT_EQ(ter.map[206][189], 0);
    EXPECT_EQ(ter.map[207][190], 0) << "there is no such sample";
    deformTerrain(&ter, {INFINITY, 0, 0}, -2000, DEFORM_DENT);
    EXPECT_NE(ter.normals[209][95].y, 9) << "the edge has not taken the normals of its neighbours";
}

// Returns the blocks that are marked for compiling, as 10 bx + bz, and removes the marks.
static Ids takeMarks()
{
    Ids blocks;
    for (int b = 0; b < 8 * 8; ++b) // the arrays have an eighth block along z
        if (std::exchange(ter.displayLists[b / 8][b % 8], 0) == DIRTY_LIST)
            blocks.push_back(b / 8 * 10 + b % 8);
    return blocks;
}

TEST_F(World, ChangeMarksBlocksWithinFiveSamplesAlongOneAxisAndDrawingRemovesTheMarks)
{
    const struct
    {
        int x, z;
        Ids blocks;
    } rows[] = {
        {24, 24, {0, 1, 10}}, {19, 62, {2}}, // six samples from the next block
        {20, 69, {2, 12}},    {62, 20, {20, 21}}, {29, 62, {2, 12}}, {30, 62, {12}},
        {62, 29, {20, 21}},   {202, 12, {70}},    {62, 179, {26}},   {62, 180, {}},
    };
    for (const auto &row : rows)
    {
        terrainFlagDLDirty(&ter, row.x, row.z);
        EXPECT_EQ(takeMarks(), row.blocks) << row.x << ", " << row.z;
    }
    for (int block = 0; block < 8 * 7; ++block)
        ter.displayLists[block / 7][block % 7] = DIRTY_LIST;
    drawTerrain(&ter, 0, 0, 0);
    drawTerrain(&ter, 2600, -500, 2000); // blocks 6 and 7 along x, 1 to 3 along z
    const Ids marks = takeMarks();
    EXPECT_EQ(marks.size(), 8 * 7u - 2 * 3);
    EXPECT_EQ(std::count(marks.begin(), marks.end(), 73), 0);
}
