// ways - tells how long a player lives on the land in a folder. It plays the game in five ways,
// without a display, and prints the times from the landing of the cube to the end of the game.
//
//     build/check/tools/ways/ways data [GAMES [SEED]]
//
// GAMES games are played in each way, 16 by default, with the seeds SEED, SEED + 1, ... of the
// random numbers; the first is 1 by default. On one machine the same seeds always give the same
// table.
#include "cube.h"
#include "folder.h"
#include "main.h"
#include "people.h"
#include "player.h"
#include "tank.h"
#include "terrain.h"

#include <SDL.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// The median of 16 games changes by up to a third with the seeds. On one land the careful player
// lived 47 s with the first 16 seeds and 34 s with the next 16.
constexpr int DEFAULT_GAMES = 16, MOST_GAMES = 1000, MOST_SEED = 1000000;
constexpr uint32_t STEP = 33;       // milliseconds
constexpr float LONGEST_LIFE = 180; // seconds after which a game is broken off
constexpr float LONGEST_FALL = 60;  // seconds within which the cube lands
constexpr float CARE_PAYS = 2; // least ratio of the careful player's life to that of an idle one

namespace
{
struct Life
{
    float seconds;
    int32_t score;
    int32_t isLost; // 1: it ended because the cube left the land
};
} // namespace

static uint8_t held[SDLK_LAST];
static uint32_t ticks = 0;

// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives these names.

// The game's clock: every frame is a step of the same length, however long it takes.
extern "C" uint32_t __wrap_SDL_GetTicks()
{
    return ticks;
}

// There is no display to show a frame on.
extern "C" void __wrap_SDL_GL_SwapBuffers()
{
}

// NOLINTEND(bugprone-reserved-identifier)

// ---- one game -----------------------------------------------------------------------------------

static float seconds()
{
    return static_cast<float>(ticks) / 1000;
}

static bool touchesGround()
{
    for (int corner = 1; corner <= CUBE_CORNERS; ++corner)
    {
        const Vector point = getCorner(&cb, corner);
        if (point.y < getHeightAt(&ter, point.x, point.z))
            return true;
    }
    return false;
}

static bool isOffTheLand()
{
    return mod(cb.position.x) > ter.worldWidth / 2 || mod(cb.position.z) > ter.worldDepth / 2;
}

// Plays a whole frame with its drawing, because drawing changes the world, too: drawShots removes
// the shots that have reached the ground.
static void playFrame(const Way &way)
{
    memset(held, 0, sizeof(held));
    way.holdKeys(seconds(), held);
    handleKeyDown();
    ticks += STEP;
    drawScreen();
}

// Scatters people and tanks anew, and plays to the end. Those people who were scattered when the
// world was loaded stay allocated until the process ends.
static Life play(const Way &way, unsigned seed)
{
    srand(seed);
    const int spacing = static_cast<int>(ter.scale);
    if (!makeList(peopleLst, PEOPLE, ter.width, ter.height, spacing))
        _exit(EXIT_FAILURE);
    randomTankPlacement(tankLst, ter.width, ter.height, spacing);
    while (!touchesGround() && seconds() < LONGEST_FALL)
        playFrame(way);
    const float landing = seconds();
    while (gameOver == 0 && !isOffTheLand() && seconds() - landing < LONGEST_LIFE)
        playFrame(way);
    return {seconds() - landing, cb.score, isOffTheLand()};
}

// ---- all games ----------------------------------------------------------------------------------

// Waits until a game has ended. Returns whether it succeeded.
static bool awaitGame(int *running)
{
    int status = 0;
    if (wait(&status) < 0)
        return false;
    --*running;
    return status == 0;
}

// Plays each game in a child process, which starts with the land that the parent has loaded. As
// many games run at a time as there are processors. Returns whether all games were started and
// none crashed.
static bool playAll(Life *lives, int games, unsigned seed)
{
    const int most = std::max(1, static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN)));
    int running = 0;
    bool good = true;
    for (int i = 0; i < WAY_COUNT * games; ++i)
    {
        if (running == most)
            good &= awaitGame(&running);
        const pid_t child = fork();
        if (child == 0)
        {
            lives[i] = play(WAYS[i / games], seed + i % games);
            _exit(EXIT_SUCCESS);
        }
        if (child < 0)
            good = false;
        else
            ++running;
    }
    while (running > 0)
        good &= awaitGame(&running);
    return good;
}

template <typename Value> static double medianOf(std::vector<Value> values)
{
    std::sort(values.begin(), values.end());
    return (values[(values.size() - 1) / 2] + values[values.size() / 2]) / 2.0;
}

// Prints a row of the table and returns the median life.
static double report(const Way &way, const Life *lives, int games)
{
    std::vector<float> lengths;
    std::vector<int> scores;
    int lost = 0;
    for (const Life *life = lives; life < lives + games; ++life)
    {
        lengths.push_back(life->seconds);
        scores.push_back(life->score);
        lost += life->isLost;
    }
    const auto [shortest, longest] = std::minmax_element(lengths.begin(), lengths.end());
    const double median = medianOf(lengths);
    printf("%-16s%6.1f s%8.1f s%8.1f s%8.0f%11d\n", way.name, median, *shortest, *longest,
           medianOf(scores), lost);
    return median;
}

static bool judge(const Life *lives, int games)
{
    double medians[WAY_COUNT];
    printf("%-16s%8s%10s%10s%8s%11s\n", "player", "median", "shortest", "longest", "points",
           "left land");
    for (int i = 0; i < WAY_COUNT; ++i)
        medians[i] = report(WAYS[i], lives + static_cast<ptrdiff_t>(i) * games, games);
    bool good = true;
    for (int i = 0; i < WAY_COUNT; ++i)
        if (WAYS[i].leastMedian > 0)
            good &= isAtLeast(WAYS[i].name, medians[i], WAYS[i].leastMedian, " s", WAYS[i].remedy);
    good &= isAtLeast("care / standing", medians[CAREFUL] / medians[STANDING], CARE_PAYS, "",
                      WAYS[CAREFUL].remedy);
    return good;
}

static bool loadWorld()
{
    keys = held;
    setupOpengl(DISPLAY_WIDTH, DISPLAY_HEIGHT);
    return makeWorld() == 1;
}

static bool judgeFolder(const char *folder, int games, unsigned seed)
{
    if (openFolder(folder) != 0)
        return false;
    const size_t bytes = sizeof(Life) * WAY_COUNT * games;
    void *lives = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (lives == MAP_FAILED || !loadWorld())
    {
        complain(folder, "there is not enough memory for this land");
        return false;
    }
    if (!playAll(static_cast<Life *>(lives), games, seed))
    {
        complain(folder, "a game crashed or could not be started");
        return false;
    }
    return judge(static_cast<Life *>(lives), games);
}

// Returns the number in the text, or -1 if the text is no number from 1 to `most`.
static int parse(const char *text, int most)
{
    char *end = nullptr;
    const long number = strtol(text, &end, 10);
    return *text && !*end && number >= 1 && number <= most ? static_cast<int>(number) : -1;
}

int main(int argc, char **argv)
{
    const int games = argc > 2 ? parse(argv[2], MOST_GAMES) : DEFAULT_GAMES;
    const int seed = argc > 3 ? parse(argv[3], MOST_SEED) : 1;
    if (argc < 2 || argc > 4 || *argv[1] == '-' || games < 0 || seed < 0)
    {
        fprintf(stderr, "usage: ways FOLDER [GAMES [SEED]]\n");
        return EXIT_FAILURE;
    }
    startTool("ways");
    return judgeFolder(argv[1], games, static_cast<unsigned>(seed)) ? EXIT_SUCCESS : EXIT_FAILURE;
}
