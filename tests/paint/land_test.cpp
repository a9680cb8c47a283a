#include "drainage.h"
#include "faults.h"
#include "heights.h"
#include "land.h"

#include <gtest/gtest.h>

constexpr int SIDE = 351; // the smallest side allowed

static const Land &landOfSeed5()
{
    static const Land land = makeLand(5, SIDE);
    return land;
}

static int sampleAt(float world)
{
    return int(world / SPACING + SIDE / 2.0f);
}

static void fill(Field &field, float x, float z, float radius, float value)
{
    for (int k = sampleAt(z - radius); k <= sampleAt(z + radius); ++k)
        for (int i = sampleAt(x - radius); i <= sampleAt(x + radius); ++i)
            field.at(i, k) = value;
}

TEST(LandTest, TheSameSeedGivesTheSameMapAndAnotherSeedAnother)
{
    EXPECT_EQ(makeLand(5, SIDE).map.cells, landOfSeed5().map.cells);
    EXPECT_NE(makeLand(6, SIDE).map.cells, landOfSeed5().map.cells);
}

TEST(LandTest, HeightsAreThoseThatTheGameMakesOfTheMap)
{
    const Land &land = landOfSeed5();
    EXPECT_EQ(heightsInTheGame(asImage(land.map).cells, SIDE), asImage(land.height).cells);
}

TEST(LandTest, WeightsOfCountriesAddUpToOne)
{
    for (int i = 0; i < SIDE; i += 7)
    {
        float sum = 0;
        for (const Field &country : landOfSeed5().country)
            sum += country.at(i, SIDE - 1 - i / 2);
        EXPECT_NEAR(sum, 1, 1e-4f) << "at sample " << i;
    }
}

TEST(LandTest, EachFaultIsFound)
{
    constexpr char LANDING[] = "the landing place is wet, steep or high";
    constexpr char RIVER[] = "a river runs uphill or ends on dry land";
    const Land &good = landOfSeed5();
    ASSERT_EQ(faultOf(good), nullptr);
    const CoursePoint &mouth = good.rivers[0].back();
    const CoursePoint &bend = good.rivers[0][good.rivers[0].size() / 2];
    const Place &village = good.villages[0];
    const struct
    {
        const char *fault;
        Field Land::*field;
        float x, z, radius, value;
    } cases[] = {
        {LANDING, &Land::water, 0, 550, 10, 1},
        {LANDING, &Land::height, 100, 50, 20, 180},
        {"the valley to the landing place is closed", &Land::height, 0, -1500, 100, 310},
        {RIVER, &Land::height, bend.x, bend.z, 60, 500},
        {RIVER, &Land::water, mouth.x, mouth.z, 60, 0},
        {"there are too few villages, or a wet one", &Land::water, village.x, village.z, 30, 1}};
    for (const auto &c : cases)
    {
        Land land = good;
        fill(land.*c.field, c.x, c.z, c.radius, c.value);
        EXPECT_STREQ(faultOf(land), c.fault) << "with " << c.value << " at " << c.x << ", " << c.z;
    }
}

// The ground from left to right: the sea, an outlet of height 5, a hollow of height 2, high land.
TEST(DrainageTest, FillsAHollowUpToItsWayOut)
{
    Field height(5, 3, 9);
    height.at(0, 1) = 0;
    height.at(1, 1) = 5;
    height.at(2, 1) = height.at(3, 1) = 2;
    Grid<char> sea(5, 3);
    sea.at(0, 1) = 1;
    const Drainage drainage = drain(height, sea, Field(5, 3, 1));
    EXPECT_EQ(drainage.level.at(3, 1), 5);
    EXPECT_EQ(drainage.level.at(4, 1), 9);
    EXPECT_EQ(drainage.toward[5 + 2], 5 + 1);
    EXPECT_EQ(drainage.flow.at(0, 1), 15) << "all samples drain to the sea";
}
