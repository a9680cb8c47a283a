#include "fixtures.h"

#include <cmath>

TEST_F(World, BlockHeightsHoldEverySampleThatABlockShowsAlsoAfterCraters)
{
    for (int i = 0; i < 210; i += 3)
        deformTerrain(&ter, {i * 25 - 2625.0f, 0, i * 71 % 210 * 25 - 2625.0f}, 10, DEFORM_CRATER);
    for (const auto &[i, j] : {std::pair{-30, 5}, {5, -30}, {210, 5}, {5, 210}})
        terrainFlagDLDirty(&ter, i, j); // off the grid, where there is nothing to hold
    for (int bx = 0; bx < ter.blocksX; ++bx)
        for (int bz = 0; bz < ter.blocksZ; ++bz)
            for (int x = bx * 25; x < std::min(bx * 25 + 27, 210); ++x)
                for (int z = bz * 25; z < std::min(bz * 25 + 26, 210); ++z)
                {
                    const HeightRange range = ter.blockHeights[bx][bz];
                    ASSERT_TRUE(range.lowest <= ter.map[x][z] && ter.map[x][z] <= range.highest);
                }
}

TEST_F(World, PointsOfTheWorldMapToSamplesAndHeights)
{
    ter.map[106][105] = 10;
    ter.map[106][106] = 20;
    ter.map[105][106] = 999; // the corner that is never read
    ter.map[0][105] = ter.map[209][105] = 77;
    // x and z, the nearest sample, the height
    for (const auto &r :
         table("12.4 6.2 105 105 7.44 | 12.6 -12.6 106 104 4.96 | 0.5 24 105 106 9.8 | "
               "25 25 106 106 20 | -2625 0 0 105 0 | -2624 0 0 105 73.92 | nan inf 0 209 0 | "
               "2600 0 209 105 0 | 2599 0 209 105 73.92 | 9e9 -9999 209 0 0"))
        expectNear({r[2], r[3], r[4]}, 1e-3, worldToTerrainX(&ter, r[0]),
                   worldToTerrainZ(&ter, r[1]), getHeightAt(&ter, r[0], r[1]));
}

TEST_F(World, SmoothingSpreadsASpikeEvenly)
{
    ter.map[105][105] = 900;
    smoothTerrain(&ter); // far from the edges, v becomes v / 9 / 2^(|i| + |j|)
    for (int i = -5; i <= 5; ++i)
        for (int j = -5; j <= 5; ++j)
            EXPECT_NEAR(ter.map[105 + i][105 + j], std::ldexp(100, -abs(i) - abs(j)), 1e-3);
}

TEST_F(World, NormalsLeanAwayFromRisingGroundUpToTheFarEdges)
{
    ter.map[208][208] = 18.75f; // three quarters of the spacing
    computeTerrainNormals(&ter);
    Vector **n = ter.normals + 207;
    const double a = 0.514496, b = 0.685994; // 3/4 and 1 by the root of 17/8
    expectNear({-.6, .8, 0, 0, 1, 0, 0, 1, 0}, 1e-6, n[0][207], n[0][208], n[0][209]);
    expectNear({a, b, -a, 0, .8, .6, 0, .8, .6}, 1e-6, n[1][207], n[1][208], n[1][209]);
    expectNear({a, b, -a, 0, .8, .6, 0, .8, .6}, 1e-6, n[2][207], n[2][208], n[2][209]);
}

TEST_F(World, DentsAndCratersHaveTheirFootprints)
{
    // Mode, v, strength, reach and box of new normals in samples; depths by |i| + |j|
    int centre = -6;
    for (const auto &r :
         table("0 -50 1 -1 0 0 | 0 -75 1.5 0 -1 0 0.6 | 0 -499 9.98 0 -5 4 3.992 | "
               "0 -500 10 1 -5 5 4 4 4 | 0 -2000 20 2 -10 10 8 8 8 8 8 | 1 0 1 -1 0 0 | "
               "1 8 16 1 -8 8 8 5.5 3 | 1 90 20 2 -10 10 10 7.5 5 2.5 0 | 2 90 1 -1 0 0"))
    {
        centre += 21;
        for (int i = 0; i < 210 * 210; ++i)
            ter.normals[i / 210][i % 210] = {9, 9, 9};
        const float where = static_cast<float>(centre * 25 - 2625);
        deformTerrain(&ter, {where + 12, -777, where - 12}, r[1], static_cast<int>(r[0]));
        for (int k = 0; k < 21 * 21; ++k)
        {
            const int i = k / 21 - 10, j = k % 21 - 10, x = centre + i, z = centre + j;
            const double depth = std::max(abs(i), abs(j)) <= r[3] ? r[6 + abs(i) + abs(j)] : 0;
            const double colour = r[0] == 1 ? 0.5 - 0.5 * depth / r[2] : 0.5;
            expectNear({-depth, colour}, 1e-5, ter.map[x][z], ter.colours[x][z][1]);
            EXPECT_EQ(ter.normals[x][z].y != 9, r[4] <= std::min(i, j) && std::max(i, j) < r[5]);
        }
    }
    deformTerrain(&ter, {INFINITY, 0, 99999}, -2000, DEFORM_DENT);
    expectNear({-8, 0, 0.304776, 0.952424, 0}, 1e-6, ter.map[207][207], ter.map[206][209],
               ter.normals[206][206]);
}

static std::string takeMarks()
{
    std::string blocks;
    for (int b = 0; b < 64; ++b)
        if (std::exchange(ter.displayLists[b / 8][b % 8], 0) == DIRTY_LIST)
            blocks += std::to_string(b / 8) + std::to_string(b % 8) + ' ';
    return blocks;
}

TEST_F(World, ChangesMarkTheBlocksNearThemUntilTheyAreDrawn)
{
    std::string marks;
    for (const auto &r : table("24 24 | 3 3 | 27 12 | 12 45 | 209 12 | 202 12"))
    {
        terrainFlagDLDirty(&ter, static_cast<int>(r[0]), static_cast<int>(r[1]));
        marks += takeMarks() + "| ";
    }
    EXPECT_EQ(marks, "00 01 10 | 00 | 00 10 | 01 02 | | 70 | ");
    colourTerrain(&ter, {12, 999, 99999}, 0.6f, 0, 0, 0.7f);
    const Colour &stained = ter.colours[105][209]; // it was 0.75, 0.5, 0.25
    expectNear({0.645, 0.15, 0.075}, 1e-6, stained[0], stained[1], stained[2]);
    for (int i = 112; i < 210; i += 25)
        for (int j = 37; j < 210; j += 25)
            terrainFlagDLDirty(&ter, i, j);
    drawTerrain(&ter, 0, 0, 0);
    drawTerrain(&ter, 2600, 0, 2000); // blocks 6 and 7 along x, 2 to 4 along z
    EXPECT_EQ(takeMarks(), "41 42 43 44 45 46 47 51 52 53 54 55 56 57 61 65 66 67 71 75 76 77 ");
}
