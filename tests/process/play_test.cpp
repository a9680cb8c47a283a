// Short games: some with a clock that leaps or stops, one with a table of expected figures.
#include "game.h"
#include "main.h"

#include <climits>
#include <cstdio>

TEST_F(Process, NobodyIsLostWhateverTheClockShowsAndWhereverTheCubeIs)
{
    const struct
    {
        const char *clock;
        int (*step)(int frame);
    } rows[] = {
        {"0 or 1 ms a frame", [](int now) { return now % 2; }},
        {"500 ms a frame, at times 10 s", [](int now) { return now % 50 == 49 ? 10000 : 500; }},
        {"leaps ahead and wraps", [](int now) { return now % 80 == 79 ? INT_MIN : 33; }},
    };
    const auto script = [](int now)
    {
        constexpr float PLACES[] = {0, 1e5f, -1e5f, 1e9f, -3e38f, INFINITY, NAN};
        rollAround();
        requireWholeWorld();
        if (now >= 130 && now % 10 == 0)
            cb.position.x = cb.position.y = PLACES[(now - 130) / 10 % 7];
    };
    makeImages(256);
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.clock);
        EXPECT_TRUE(isSameText(playGame({200, script, row.step}), startLog(false)));
    }
}

// Figures of a game at two of its frames. Each frame takes 0.02 s. The figures of people and tanks
// are the sums of all their positions. After a deliberate change of the game, run the test: it
// fails and prints the new rows of the table, which can be pasted here.
static const struct
{
    int frame;
    const char *what;
    Vector value;
} PINNED[] = {
    {120, "cube", {244.2f, 369.8f, 202.4f}},
    {120, "eye", {-145.2f, 546, -1247}},
    {120, "size, heading, spin", {103.3f, 345.8f, -3.9f}},
    {120, "score / 10, shots, 0", {14, 19, 0}},
    {120, "people / 10,000", {19.9f, 590.1f, 31.3f}},
    {120, "tanks / 1,000", {-679.4f, 357.7f, -1174}},
    {400, "cube", {631.4f, 376.1f, 350.9f}},
    {400, "eye", {317.3f, 1119.4f, 684.1f}},
    {400, "size, heading, spin", {9, -110.1f, -4.2f}},
    {400, "score / 10, shots, 0", {22, 43, 0}},
    {400, "people / 10,000", {27.2f, 589.4f, 35.1f}},
    {400, "tanks / 1,000", {-459.7f, 339.3f, -1606}},
};
// How far a figure may be from its row. C libraries of other processors round sines, cosines, arc
// cosines and powers differently. In a trial with much larger errors in these functions, half a
// unit in the last place of a float, no figure changed by more than 0.01.
constexpr double BOUND = 0.5;

static void reportFigures(Vector figures[6])
{
    Vector people = {0, 0, 0}, tanks = people;
    for (const Person &person : crowd())
        people = vectorAdd(people, vectorMultiply(person.position, 1e-4f));
    for (const TankNode *node = tankLst->head; node; node = node->next)
        tanks = vectorAdd(tanks, vectorMultiply(node->tank.position, 1e-3f));
    const Vector now[] = {cb.position,
                          cam.position,
                          {cb.size, cb.heading, cb.angularVelocity.z},
                          {cb.score / 10.0f, 1.0f * shotLst->nextId, 0},
                          people,
                          tanks};
    std::copy(now, now + 6, figures);
}

TEST_F(Process, FirstSecondsOfAGameGiveTheFiguresOfTheTable)
{
    const auto script = [](int now)
    {
        if (now == 0)
        {
            cb.position = vectorInit(0, 400, 0);
            cb.momentum = vectorInit(0, 0, 0);
        }
        rollAround();
        if (now == PINNED[0].frame || now == PINNED[6].frame)
            reportFigures(report->figures + (now == PINNED[0].frame ? 0 : 6));
    };
    makeImages(256);
    remove("TexPerson.tga"); // the game reads this image only for picture boards
    const std::string log = playGame({PINNED[6].frame, script, [](int) { return 20; }});
    EXPECT_TRUE(isSameText(log, startLog(false)));
    for (size_t i = 0; i < std::size(PINNED); ++i)
        EXPECT_TRUE(isNear(report->figures[i], PINNED[i].value, BOUND))
            << PINNED[i].what << " at frame " << PINNED[i].frame;
    if (!HasFailure())
        return;
    for (size_t i = 0; i < std::size(PINNED); ++i)
    {
        const Vector v = report->figures[i];
        printf("    {%d, \"%s\", {%.1ff, %.1ff, %.1ff}},\n", PINNED[i].frame, PINNED[i].what, v.x,
               v.y, v.z);
    }
}
