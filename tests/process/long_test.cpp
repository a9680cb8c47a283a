// Long games, which run apart from the others; docs/robustness.md says how long they take. They
// print figures that can be compared from run to run.
#include "game.h"
#include "main.h"

#include <iostream>
#include <sys/resource.h>

template <typename... Values> // of types without padding bytes
static void append(std::string *world, const Values &...values)
{
    (world->append(reinterpret_cast<const char *>(&values), sizeof(values)), ...);
}

// A hash of everything that play changes in the world except the names of OpenGL objects.
static uint64_t worldHash()
{
    std::string world;
    append(&world, cb.score, cb.size, cb.targetSize, cb.growthRate, cb.spinLimit, cb.heading,
           cb.mass, cb.inertia, cb.inverseInertia, cb.position, cb.orientation, cb.momentum,
           cb.angularMomentum, cb.velocity, cb.angularVelocity, cb.spin, cb.force, cb.torque, cam,
           peopleLst->count, shotLst->nextId, VIEW_DISTANCE, SHADOW, gameOver, shadowSwitchTime,
           timeH, rand());
    for (int x = 0; x < ter.width; ++x)
        for (int z = 0; z < ter.height; ++z)
            append(&world, ter.map[x][z], ter.normals[x][z], ter.colours[x][z]);
    for (const Person &person : crowd())
        append(&world, person.id, person.position, person.velocity, person.direction);
    for (const TankNode *node = tankLst->head; node; node = node->next)
        append(&world, node->tank);
    for (const Shot *shot = shotLst->head; shot; shot = shot->next)
        append(&world, shot->id, shot->position, shot->velocity, shot->heading);
    return std::hash<std::string>()(world);
}

static long peakKilobytes()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// In the first half of the game the cube is kept large; in the second half it is made to shrink
// until the game is over.
static void live(int now)
{
    const bool staysLarge = now < play.frames / 2;
    cb.targetSize = staysLarge ? std::max(cb.targetSize, 100.0f) : std::min(cb.targetSize, 40.0f);
    rollAround();
    if (now % 100 == 0)
        requireWholeWorld();
    if (now == play.frames / 10)
        report->kilobytes[0] = peakKilobytes();
    if (now < play.frames)
        return;
    report->kilobytes[1] = peakKilobytes();
    require(gameOver == 1, "the game is not over");
    report->hash = worldHash();
}

static void expectMemory(const char *game, long slack)
{
    const long early = report->kilobytes[0], late = report->kilobytes[1];
    std::cout << game << ": " << report->frames << " frames, hash " << report->hash << ", memory "
              << early << " kB after a tenth, " << late << " kB at the end, at most "
              << early + slack << " kB allowed\n";
    EXPECT_LT(late - early, slack) << "kilobytes";
}

// Two games of ten minutes' play each. The hash goes into a file, so that builds can be compared.
TEST_F(Process, ReplayGivesTheSameWorldToTheLastBit)
{
    makeImages(1024); // so wide that most people are out of range of the cube
    uint64_t hashes[2];
    for (uint64_t &hash : hashes)
    {
        playGame({10350, live, [](int now) { return 16 + now * 7919 % 85; }});
        expectMemory("replay", report->kilobytes[0] / 100 + MEMORY_SLACK);
        hash = report->hash;
    }
    EXPECT_EQ(hashes[0], hashes[1]);
    std::ofstream(REPLAY_HASH) << hashes[0] << "\n";
}

// OpenGL draws this game. The display lists take more memory than the world: Mesa seems to keep a
// large store of vertices until the last list in it is deleted.
TEST_F(Process, SoakGainsLittleMemory)
{
    const char *frames = getenv("FRAMES");
    makeImages(512);
    Play soak = {frames ? atoi(frames) : 2000, live};
    soak.videoDriver = "x11";
    soak.isDrawn = true;
    playGame(soak);
    expectMemory("soak", report->kilobytes[0] / 4);
}
