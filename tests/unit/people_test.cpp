#include "world.h"

static Person personAt(int id, Vector position, Vector velocity = {0, 0, 0})
{
    return {id, position, velocity, 0, nullptr, 0, nullptr, 0};
}

static PersonNode *&bucket(int row, int column)
{
    return *peopleLst->buckets[row * BUCKET_COUNT + column];
}

TEST_F(World, PersonGoesIntoTheBucketOfItsPosition)
{
    const struct
    {
        float x, z;
        int row, column;
        int isOutside; // of the grid; such people are put into its outermost buckets
    } rows[] = {
        {50.9f, -51.1f, 125, 123, 0},
        {600, -6375, 136, 0, 0},
        {6375, 0, 249, 125, 1},
        {-99999, 6375, 0, 249, 1},
    };
    for (const auto &row : rows)
    {
        const Person person = personAt(7, {row.x, 0, row.z});
        addPerson(peopleLst, person);
        EXPECT_EQ(needUpdate(person, row.row, row.column, 51), row.isOutside) << row.x;
        EXPECT_EQ(removePerson(peopleLst, person, row.row, row.column), 1) << row.x;
    }
    EXPECT_EQ(peopleLst->count, 0);
    EXPECT_EQ(makeList(nullptr, 9, 9, 9, 25), 0);
}

TEST_F(World, PeopleAreRemovedByTheirNumber)
{
    for (int id : {1, 2, 3})
        addPerson(peopleLst, personAt(id, {0, 0, 0}));
    EXPECT_EQ(peopleLst->count, 3);
    expectRemovals(bucket(125, 125),
                   [](int id) { return removePerson(peopleLst, personAt(id, {}), 125, 125); });
}

TEST_F(World, ViewRangeReachesTheDrawDistanceAlongEachAxis)
{
    cb.position = {6000, 0, -6000};
    const auto [firstRow, endRow, firstColumn, endColumn] = viewRange(peopleLst, &cb);
    EXPECT_EQ(Ids({firstRow, endRow, firstColumn, endColumn}), Ids({144, 250, 0, 105}));
}

TEST_F(World, PeopleFleeFromANearCubeUnlessTheyAreNearAnEdgeOfTheLand)
{
    const struct
    {
        const char *where;
        Vector person, cube;
        bool flees;
    } rows[] = {
        {"nearer than 500 units", {-299, 0, 398}, {0, 0, 0}, true},
        {"at 500 units", {300, 0, 400}, {0, 0, 0}, false},
        {"near an edge along x", {625, 0, 0}, {600, 0, 0}, false},
        {"near an edge along z", {0, 0, -625}, {-50, 0, -600}, false},
    };
    for (const auto &row : rows)
    {
        Person person = personAt(1, row.person, {5, 0, 7});
        cb.position = row.cube;
        srand(1); // the first number after this seed changes nobody's course
        updateAI(&person, &cb, 210, 25);
        EXPECT_TRUE(isNear(person.velocity, row.flees ? row.person : Vector{5, 0, 7}, 0))
            << row.where;
    }
}

TEST_F(World, PeopleWalkAtMostAtTopSpeedAndTurnBackAtEdgesAndStayOnTheGround)
{
    const struct
    {
        float x, z;
        Vector wish, velocity;
        float direction; // yaw of the drawing, in degrees
    } rows[] = {
        {625, -625, {99, 0, -40}, {45, 0, -40}, -48.3665f}, // 45 is the top speed
        {3, 5, {-99, 0, 77}, {-45, 0, 45}, 135},
        {3, 5, {2.5f, 0, -4}, {2.5f, 0, -4}, -32.0054f},
        {626, 0, {99, 0, -40}, {-45, 0, 0}, 90},
        {-626, 0, {99, 0, -40}, {45, 0, 0}, 270},
        {0, 626, {99, 0, -40}, {0, 0, -45}, 0},
        {626, -626, {99, 0, -40}, {0, 0, 45}, 180}, // the z rule wins in a corner
    };
    for (int x = 0; x < 210; ++x) // the ground rises by 1 along x and by 2 along z
        for (int z = 0; z < 190; ++z)
            ter.map[x][z] = static_cast<float>(x * 25 + z * 50);
    for (const auto &row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.x << ", " << row.z);
        Person person = personAt(1, {row.x, 0, row.z}, row.wish);
        updatePersonPosition(&person, &ter, 1);
        const float x = row.x + row.velocity.x, z = row.z + row.velocity.z;
        const float groundAtOldZ = x + 2 * row.z + 7375;
        EXPECT_TRUE(isNear(person.velocity, row.velocity, 0));
        EXPECT_NEAR(person.direction, row.direction, 1e-3);
        EXPECT_TRUE(isNear(person.position, {x, groundAtOldZ, z}, 1e-2));
    }
}

TEST_F(World, StepMovesEverybodyInRangeOnceAndEachCrushedPersonScoresAndLeavesAStain)
{
    addPerson(peopleLst, personAt(1, {50, 0, 600}, {45, 0, 0}));
    addPerson(peopleLst, personAt(4, {0, 0, 608}, {0, 0, 45}));
    addPerson(peopleLst, personAt(5, {0, 0, -5555}, {0, 0, 45})); // in the last bucket in range
    for (float x : {-3.0f, 3.0f})
        addPerson(peopleLst, personAt(2, {x, 0, -550}));
    for (float x : {40000.0f, 0.0f}) // in the first step nobody is in range of the cube
    {
        EXPECT_EQ(idsFrom(bucket(125, 136)), Ids({4, 1}));
        cb.position = {x, 99, -550};
        srand(1); // the first numbers after this seed change nobody's course
        updatePerson(peopleLst, &cb, 1, &ter);
    }
    ASSERT_EQ(idsFrom(bucket(126, 136)), Ids({1}));
    EXPECT_EQ(idsFrom(bucket(125, 137)), Ids({4}));
    EXPECT_EQ(bucket(126, 136)->person.position.x, 95);
    EXPECT_EQ(bucket(125, 16)->person.position.z, -5510);
    EXPECT_EQ(peopleLst->count, 3);
    EXPECT_EQ(cb.score, 20);
    EXPECT_EQ(cb.targetSize, 102);
    EXPECT_EQ(ter.displayLists[4][2], DIRTY_LIST)
        << "the block with the stain is not marked for compiling";
    // Each of the two crushed people changes the colour by 70 % of the way from (0.75, 0.5, 0.25)
    // to (0.6, 0, 0).
    const Colour &stain = ter.colours[105][73];
    EXPECT_TRUE(isNear({stain[0], stain[1], stain[2]}, {0.6135f, 0.045f, 0.0225f}, 1e-6));
}
