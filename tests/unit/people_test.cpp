#include "fixtures.h"

static Person personAt(int id, Vector position, Vector velocity = {0, 0, 0})
{
    return {id, position, velocity, 0, nullptr, 0, nullptr, 0};
}

static std::string chain(int row, int column)
{
    std::string ids;
    for (const PersonNode *node = *peopleLst->buckets[row * 250 + column]; node; node = node->next)
        ids += std::to_string(node->person.id);
    return ids;
}

TEST_F(World, PeopleAreFiledInTheBucketUnderThem)
{
    // x and z; row and column; whether the position lies outside that bucket
    for (const auto &r : table("0 -51 125 124 0 | 50.9 -51.1 125 123 0 | 6374 6375 249 249 1 | "
                               "-6375 -6420 0 0 0 | -6427 0 0 125 1 | 99999 -99999 249 0 1"))
    {
        const Person person = personAt(7, {r[0], 0, r[1]});
        const int row = static_cast<int>(r[2]), column = static_cast<int>(r[3]);
        addPerson(peopleLst, person);
        expectNear({r[4], 1}, 0, needUpdate(person, row, column, 51),
                   removePerson(peopleLst, person, row, column));
    }
    for (int id : {1, 2, 3})
        addPerson(peopleLst, personAt(id, {0, 0, 0}));
    std::string left = chain(125, 125);
    for (int id : {2, 3, 3, 1})
    {
        left += removePerson(peopleLst, personAt(id, {}), 125, 125) ? " 1:" : " 0:";
        left += chain(125, 125);
    }
    EXPECT_EQ(left, "321 1:31 1:1 0:1 1:");
    // The cube's x and z; the view range
    for (const auto &r :
         table("0 0 26 223 26 223 | 6000 -6000 144 250 0 105 | 20000 0 419 250 26 223"))
    {
        cb.position = {r[0], 0, r[1]};
        const auto [row, endRow, column, endColumn] = viewRange(peopleLst, &cb);
        expectNear({r[2], r[3], r[4], r[5]}, 0, row, endRow, column, endColumn);
    }
}

TEST_F(World, PeopleFleeTheCubeOrWander)
{
    const Vector places[] = {{-299, 0, 398}, {300, 0, 400}, {625, 0, 0}}; // the last in the margin
    for (unsigned i = 0; i < 300; ++i)
    {
        const bool flees = i % 3 == 0;
        Person person = personAt(1, places[i % 3], {5, 0, 7});
        cb.position.x = i % 3 == 2 ? 600.0f : 0;
        cb.position.z = 0;
        srand(i);
        updateAI(&person, &cb, 210, 25);
        const int next = rand();
        srand(i);
        const bool turns = !flees && rand() % 100 + 1 > 95; // a flight draws no number
        const double x = flees ? -299 : 5 + (turns ? rand() % 20 - 9 : 0);
        const double z = flees ? 398 : 7 + (turns ? rand() % 20 - 9 : 0);
        expectNear({x, 0, z, 0}, 0, person.velocity, next - rand());
    }
}

TEST_F(World, PeopleTurnBackAtTheEdgesAndStandOnTheGround)
{
    for (int i = 0; i < 210 * 210; ++i) // height x + 2 z above the lowest corner
        ter.map[i / 210][i % 210] = static_cast<float>(i / 210 * 25 + i % 210 * 50);
    // x and z, then the velocity along them and the direction
    for (const auto &m : table("625 -625 45 -40 -48.3665 | 626 0 -45 0 90 | -626 0 45 0 270 | 0 "
                               "626 0 -45 0 | 626 -626 0 45 180"))
    {
        Person person = personAt(1, {m[0], 0, m[1]}, {99, 0, -40});
        updatePersonPosition(&person, &ter, 1);
        const float x = m[0] + m[2], y = x + 2 * m[1] + 7875; // the height at the old z
        expectNear({m[2], 0, m[3], m[4], x, y, m[1] + m[3]}, 1e-2, person.velocity,
                   person.direction, person.position);
    }
}

TEST_F(World, CubeCrushesWhatItsBoxCoversAndPeopleMoveOnceAStep)
{
    for (const auto &r : table(
             "49.9 99.9 -49.9 1 | 50.5 0 0 0 | -50.7 0 0 0 | 0 150 0 0 | 0 -100.5 0 0 | 0 0 50 0"))
    {
        Cube cube = cb;
        const int crushed =
            checkPersonCollision(personAt(1, {-r[0], 2000 - r[1], -4000 - r[2]}), &cube);
        expectNear({r[3], 10 * r[3], 100 + r[3]}, 0, crushed, cube.score, cube.targetSize);
    }
    addPerson(peopleLst, personAt(1, {50, 0, 600}, {45, 0, 0}));
    for (float x : {-3.0f, 3.0f})
        addPerson(peopleLst, personAt(2, {x, 0, -600}));
    for (float x : {40000.0f, 0.0f}) // first the cube sees nobody
    {
        EXPECT_EQ(chain(125, 136), "1");
        cb.position = {x, 50, -600};
        srand(1); // whose first draws change no course
        updatePerson(peopleLst, &cb, 1, &ter);
    }
    ASSERT_EQ(chain(126, 136), "1");
    expectNear({95, 1, 20, 102}, 0, (*peopleLst->buckets[126 * 250 + 136])->person.position.x,
               peopleLst->count, cb.score, cb.targetSize);
    EXPECT_NEAR(ter.colours[105][81][0], 0.6135, 1e-6) << "twice 70 % of the way from 0.75 to 0.6";
}
