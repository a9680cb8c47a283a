// Plays the real game, from SDL_main to quit, in the child processes of death tests: on hostile
// folders, without memory, under an odd clock, twice, and for long. Ticks and keys are scripted.
#include "driver.h"
#include "fixtures.h"

#include <GL/gl.h>

#include <algorithm>
#include <bitset>
#include <climits>
#include <functional>
#include <map>
#include <set>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace
{
struct Play
{
    int frames = 0;                               // before Escape is held; 0: start-up alone
    std::function<void(int)> script = [](int) {}; // called before each frame, and after the last
    int (*step)(int) = [](int) { return 33; };    // milliseconds before the step of a frame
    bool onDisplay = false;   // false: no SDL video, and OpenGL calls that do nothing
    int failingCall = 0;      // the allocation that fails, from 1, counted while inPlay is
    bool failsInPlay = false; // this
};

typedef std::pair<const void *, size_t> Allocation; // by whom, and how many bytes

// What a child process tells its parent.
struct Report
{
    uint64_t hash;
    int allocations;
    Allocation allocation[500000];
};
} // namespace

static Report *const report = static_cast<Report *>(
    mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
static Play play;
static int frame = 0;
static bool inGame = false, inPlay = false; // SDL_main runs; its start-up is over
static uint8_t keysHeld[SDLK_LAST];
static int attributes[64]; // of the display

static void require(bool holds, const char *fault)
{
    if (holds)
        return;
    fprintf(stderr, "frame %d: %s\n", frame, fault);
    _Exit(1);
}

// What the linker puts in place of SDL and the C library; first, which allocation is to fail.
static bool isRefused(const void *caller, size_t bytes)
{
    if (!inGame || inPlay != play.failsInPlay)
        return false;
    report->allocation[report->allocations++] = {caller, bytes};
    return report->allocations == play.failingCall;
}

extern "C"
{
    void *__real_malloc(size_t size);
    void *__real_calloc(size_t count, size_t size);
    SDL_Surface *__real_SDL_SetVideoMode(int width, int height, int depth, Uint32 flags);
    void __real_SDL_GL_SwapBuffers();
    int __real_SDL_GL_SetAttribute(SDL_GLattr attribute, int value);
    void __real_SDL_Quit();

    void *__wrap_malloc(size_t size)
    {
        return isRefused(__builtin_return_address(0), size) ? nullptr : __real_malloc(size);
    }

    void *__wrap_calloc(size_t count, size_t size)
    {
        const bool refused = isRefused(__builtin_return_address(0), count * size);
        return refused ? nullptr : __real_calloc(count, size);
    }

    int __wrap_SDL_GL_SetAttribute(SDL_GLattr attribute, int value)
    {
        attributes[attribute] = value;
        return __real_SDL_GL_SetAttribute(attribute, value);
    }

    // Small, since nobody looks at it. It comes after the seed and the flags have been set.
    SDL_Surface *__wrap_SDL_SetVideoMode(int width, int height, int depth, Uint32 flags)
    {
        require(width == 1024 && height == 768 && flags == (SDL_FULLSCREEN | SDL_OPENGL) &&
                    attributes[SDL_GL_STENCIL_SIZE] == 8 && attributes[SDL_GL_DEPTH_SIZE] == 16 &&
                    attributes[SDL_GL_DOUBLEBUFFER] == 1,
                "another display");
        static SDL_Surface surface = {};
        srand(20011);
        TRANSPARENCY = play.frames == 0; // then all images are read
        return play.onDisplay ? __real_SDL_SetVideoMode(128, 96, depth, SDL_OPENGL) : &surface;
    }

    Uint32 __wrap_SDL_GetTicks()
    {
        fakeTicks = inPlay ? fakeTicks + static_cast<uint32_t>(play.step(frame)) : 1000;
        inPlay = true;
        return fakeTicks;
    }

    // Closes the display and gives its video mode back.
    void __wrap_SDL_Quit()
    {
        fputs("closed\n", stderr);
        __real_SDL_Quit();
    }

    Uint8 *__wrap_SDL_GetKeyState(int *)
    {
        play.script(frame);
        keysHeld[SDLK_ESCAPE] = frame >= play.frames;
        return keysHeld;
    }

    void __wrap_SDL_GL_SwapBuffers()
    {
        if (play.onDisplay)
            __real_SDL_GL_SwapBuffers();
        ++frame;
    }
}

static std::string contents(const char *file)
{
    std::ifstream stream(ROBUST_DIR + std::string(file));
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

static void playGame(const Play &script)
{
    setenv("SDL_VIDEODRIVER", script.onDisplay ? "x11" : "dummy", 1);
    dup2(STDERR_FILENO, STDOUT_FILENO); // one log, in the order of its lines
    setvbuf(stdout, nullptr, _IONBF, 0);
    play = script;
    report->allocations = 0;
    inGame = true;
    SDL_main(0, nullptr);
}

// The log is a regular expression.
static void expectGame(const Play &script, const std::string &log)
{
    static const std::string quitting = contents("/quit.log");
    EXPECT_EXIT(playGame(script), testing::ExitedWithCode(0), log + quitting + "$");
}

// From one place of the land to the next, a new one every ten seconds or so.
static void rollAround()
{
    const unsigned place = (frame / 300u + 1) * 2654435761u >> 8;
    const float x = place % 8192 - 4096.0f, z = place / 8192 % 2048 * 4 - 4096.0f;
    holdKeysToward(vectorInit(x, 0, z), keysHeld);
    keysHeld[SDLK_i] = frame % 1000 == 999;
}

// The pixels are a pattern in the first megabytes and black after them.
static void writeImage(const char *path, int width, int height, int depth, int type, long bytes)
{
    Bytes file = tga(type, width, height, depth, {});
    for (long i = 0; i < std::min(bytes, 1L << 22); ++i)
        file.push_back(static_cast<uint8_t>(i * i >> 16));
    remove(path);
    writeFile(path, file);
    ASSERT_EQ(truncate(path, 18 + bytes), 0);
}

static const struct
{
    const char *file;
    std::string stage; // the line before it is used
    std::string then;  // the line after that when it is not; empty: the game quits
} IMAGES[] = {
    {"Map.tga", "Loading image", ""},
    {"MapTex.tga", "Loading image", ""},
    {"TexSkyBox.tga", "Loading skybox", "Loading cube"},
    {"TexCube.tga", "Loading cube", "Loading image"},
    {"TexNoise.tga", "Loading terrain", ""},
    {"TexPerson.tga", "Loading Person texture", "...FAILED TO MAKE PEOPLE LIST\n"},
    {"TexPersonBack.tga", "Loading Person Back", "...FAILED TO MAKE PEOPLE LIST\n"},
    {"TexTank.tga", "Loading Tank", "...FAILED TO MAKE TANK LIST\n"},
};

// All of them. side is that of the land in samples.
static void makeImages(int side)
{
    for (const auto &image : IMAGES)
        writeImage(image.file, 8, 8, 24, 2, 8L * 8 * 3);
    writeImage("Map.tga", side, side, 24, 2, 3L * side * side);
    writeImage("MapTex.tga", side, side, 32, 2, 4L * side * side);
}

static void checkWorld()
{
    std::bitset<20000> people;
    std::bitset<1500> tanks;
    size_t met = 0;
    for (PersonNode **cell : peopleLst->buckets)
        for (const PersonNode *node = *cell; node; node = node->next, ++met)
            people.set(static_cast<size_t>(node->person.id));
    for (const TankNode *node = tankLst->head; node; node = node->next, ++met)
        tanks.set(static_cast<size_t>(node->tank.id));
    for (const Shot *shot = shotLst->head; shot && shot->next; shot = shot->next)
        require(shot->id > shot->next->id, "shots are out of order");
    const size_t crushed = 10 * (20000 - people.count()) + 50 * (1500 - tanks.count());
    require(met == people.count() + tanks.count(), "someone is twice");
    require(people.count() == size_t(peopleLst->count), "people are lost");
    require(play.failingCall || size_t(cb.score) == crushed, "points of nobody");
}

// Only values without padding.
template <typename... Values> static void mix(std::string *world, const Values &...values)
{
    (world->append(reinterpret_cast<const char *>(&values), sizeof(values)), ...);
}

// Of all that play changes in the world, but for OpenGL names.
static uint64_t worldHash()
{
    std::string world;
    mix(&world, cb.score, cb.size, cb.targetSize, cb.growthRate, cb.spinLimit, cb.heading, cb.mass,
        cb.inertia, cb.inverseInertia, cb.position, cb.orientation, cb.momentum, cb.angularMomentum,
        cb.velocity, cb.angularVelocity, cb.spin, cb.force, cb.torque, cam, peopleLst->count,
        shotLst->nextId, VIEW_DISTANCE, SHADOW, gameOver, shadowSwitchTime, timeH, rand());
    for (int x = 0; x < ter.width; ++x)
        for (int z = 0; z < ter.height; ++z)
            mix(&world, ter.map[x][z], ter.normals[x][z], ter.colours[x][z]);
    for (PersonNode **cell : peopleLst->buckets)
        for (const PersonNode *node = *cell; node; node = node->next)
            mix(&world, node->person.id, node->person.position, node->person.velocity,
                node->person.direction);
    for (const TankNode *node = tankLst->head; node; node = node->next)
        mix(&world, node->tank);
    for (const Shot *shot = shotLst->head; shot; shot = shot->next)
        mix(&world, shot->id, shot->position, shot->velocity, shot->heading);
    return std::hash<std::string>()(world);
}

constexpr int SIDE = 50; // samples along each side of the land of the usual folder

// The log of a start-up that finds fault with one image and uses it all the same, or does not.
static std::string expectedLog(int i, const std::string &fault, bool isUsed)
{
    const std::string log = contents("/start.log"), &then = IMAGES[i].then;
    const size_t at = log.find('\n', log.find(IMAGES[i].stage)) + 1;
    const size_t on = isUsed ? at : log.find(then.empty() ? "nowhere" : then);
    return "^" + log.substr(0, at) + fault + (on < log.size() ? log.substr(on) : then);
}

static void spoil(const char *file, const std::string &how)
{
    int width, height, depth, type;
    long bytes = 0;
    if (sscanf(how.c_str(), "image %d %d %d %d %ld", &width, &height, &depth, &type, &bytes) == 5)
        writeImage(file, width, height, depth, type, bytes);
    else
        EXPECT_EQ(system(("F=" + std::string(file) + "; " + how).c_str()), 0);
}

TEST(HostileFolder, IsReportedLineByLine)
{
    std::ifstream table(ROBUST_DIR "/folders.txt");
    int rows = 0;
    for (std::string which, how, end, fault; getline(table, which, '|') && getline(table, how, '|');
         ++rows)
    {
        getline(getline(table, end, '|'), fault);
        fault += fault.empty() ? "" : "\n";
        for (int i = which == "pictures" ? 2 : 0; i < (which == "maps" ? 1 : 8); ++i)
        {
            SCOPED_TRACE(IMAGES[i].file + (": " + how));
            makeImages(SIDE);
            spoil(IMAGES[i].file, how);
            if (which == "maps")
                spoil("MapTex.tga", how.substr(how.find('&') + 1));
            expectGame({}, expectedLog(i, fault, end == "used"));
        }
    }
    EXPECT_EQ(rows, 37) << "the table was read to its end";
}

// What is said when an allocation of so many bytes fails, as a regular expression.
static std::string complaint(size_t bytes)
{
    static const std::map<size_t, std::string> lines = {
        {sizeof(PeopleList), "Failed to allocate memory to people list\n"},
        {sizeof(TankList), "Failed to allocate memory to tank list\n"},
        {sizeof(ShotList), "Failed to allocate memory to shot list\n|display list array"},
        {sizeof(PersonNode), "...FAILED ALLOCATION OF MEMORY!"},
        {8, "ERROR FAILED ALLOCATION AT [0-9]+:[0-9]+\n...FAILED TO MAKE PEOPLE LIST\n|"
            "display list array not initialised\n|Failed to allocate memory to remove list\n"},
        {SIDE * sizeof(float *), "...(map|normals|colours) array not initialised\n"},
        {SIDE * sizeof(float), "...map array not initialised\n"},
        {SIDE * sizeof(Vector), "...(normals|colours) array not initialised\n"},
        {SIDE * SIDE, "...Height image is not of correct format: 3\n"}, // it cannot be made grey
        {sizeof(TankNode), ""},                                         // a tank less
        {sizeof(Shot), ""}};                                            // a shot less
    return lines.count(bytes) ? lines.at(bytes) : "...couldn't load TGA\n";
}

// Fails the first, the second, a middle and the last allocation of each place in the code.
static void failEachPlace(Play script)
{
    expectGame(script, "");
    std::map<Allocation, std::vector<int>> places;
    for (int i = 0; i < report->allocations; ++i)
        places[report->allocation[i]].push_back(i + 1);
    EXPECT_GT(places.size(), 2u);
    for (const auto &[place, calls] : places)
        for (size_t i : std::set<size_t>{0, calls.size() > 1, calls.size() / 2, calls.size() - 1})
        {
            SCOPED_TRACE(std::to_string(calls[i]) + ": bytes " + std::to_string(place.second));
            script.failingCall = calls[i];
            expectGame(script, "(" + complaint(place.second) + ")(.|\n)*");
        }
}

TEST(FailedAllocation, EndsTheStartInAnOrderlyWay)
{
    makeImages(SIDE);
    failEachPlace({});
}

TEST(FailedAllocation, LosesNobodyInPlay)
{
    makeImages(256);
    const auto script = [](int now)
    {
        if (now == 0)
            cb.position = vectorInit(0, 300, 0);
        checkWorld();
    };
    Play hungry = {40, script, [](int) { return 100; }};
    hungry.failsInPlay = true;
    failEachPlace(hungry);
}

TEST(Clock, NoStepLosesAnybodyWhereverTheCubeIs)
{
    const std::pair<const char *, int (*)(int)> rows[] = {
        {"none or a millisecond", [](int now) { return now % 2; }},
        {"half a second or ten", [](int now) { return now % 50 == 49 ? 10000 : 500; }},
        {"stopped and continued", [](int now) { return now % 50 == 49 ? 10000 : 33; }},
        {"leaps ahead and wraps", [](int now) { return now % 80 == 79 ? INT_MIN : 33; }},
    };
    const auto script = [](int now)
    {
        constexpr float PLACES[] = {0, 1e5f, -1e5f, 1e9f, -3e38f, INFINITY, NAN};
        rollAround();
        checkWorld();
        if (now >= 130 && now % 10 == 0)
            cb.position.x = cb.position.y = PLACES[(now - 130) / 10 % 7];
    };
    makeImages(256);
    for (const auto &[what, step] : rows)
    {
        SCOPED_TRACE(what);
        expectGame({200, script, step}, "");
    }
}

// Every display list and texture that exists is one that the world still uses.
static void checkNames()
{
    int lists = 0, textures = 0, blocks = 0;
    for (GLuint name = 1; name < 1000000; ++name)
    {
        lists += glIsList(name);
        textures += glIsTexture(name);
    }
    for (int b = 0; b < ter.blocksX * ter.blocksZ; ++b)
        blocks += glIsList(ter.displayLists[b / ter.blocksZ][b % ter.blocksZ]);
    require(lists == blocks + 3 && textures == 4, "OpenGL names are lost");
}

static long peakKilobytes()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// A long life: charmed at first; for the second half it gives itself up.
static void live(int now)
{
    static long early; // kilobytes
    const bool isCharmed = now < play.frames / 2;
    cb.targetSize = isCharmed ? std::max(cb.targetSize, 100.0f) : std::min(cb.targetSize, 40.0f);
    rollAround();
    if (now % 100 == 0)
        checkWorld();
    if (now == play.frames / 10)
        early = peakKilobytes();
    if (now < play.frames)
        return;
    require(gameOver == 1, "the game is not over");
    // OpenGL's display lists take more than the world: Mesa seems to keep a large store of vertices
    // until its last list is deleted.
    const long slack = play.onDisplay ? early / 4 : early / 100 + ROBUST_SLACK;
    require(peakKilobytes() - early < slack, "memory grows");
    if (play.onDisplay)
        checkNames();
    report->hash = worldHash();
}

TEST(Replay, GivesTheSameWorldToTheLastBit)
{
    makeImages(1024);   // so wide that most of the crowd is out of sight
    uint64_t hashes[2]; // after ten minutes each
    for (uint64_t &hash : hashes)
    {
        expectGame({10350, live, [](int now) { return 16 + now * 7919 % 85; }}, "");
        hash = report->hash;
    }
    EXPECT_EQ(hashes[0], hashes[1]);
    std::ofstream("replay.hash") << hashes[0] << "\n"; // for a comparison of the builds
}

// Rounding differences of processors have not grown by then: some contacts and a few seconds on,
// the figures hold to a unit, a degree, and to the last point and shot.
TEST(Replay, ComesOutAsEverInItsFirstSeconds)
{
    static const struct
    {
        int frame;
        Vector cube, eye; // positions
        float heading, size;
        int score, shots; // shots: fired so far
    } rows[] = {
        {50, {28.3f, 403.8f, 53.1f}, {-183.9f, 489.5f, -2506.6f}, 45.1f, 102.23f, 50, 0},
        {150, {323.6f, 340.1f, 242.7f}, {-105.8f, 555.7f, -884.2f}, 26.8f, 91.74f, 200, 20},
        {400, {631.4f, 376.1f, 350.9f}, {317.3f, 1119.4f, 684.1f}, -110.1f, 9.04f, 220, 43}, // over
    };
    const auto script = [](int now)
    {
        if (now == 0)
        {
            cb.position = vectorInit(0, 400, 0);
            cb.momentum = vectorInit(0, 0, 0);
        }
        rollAround();
        for (const auto &row : rows)
            if (now == row.frame)
            {
                require(isNear(cb.position, row.cube, 1), "the cube is elsewhere");
                require(isNear(cam.position, row.eye, 1), "the eye is elsewhere");
                require(std::fabs(cb.heading - row.heading) <= 1, "the cube faces elsewhere");
                require(std::fabs(cb.size - row.size) <= 0.1, "the cube has another size");
                require(cb.score == row.score && shotLst->nextId == row.shots, "more or less fire");
            }
    };
    makeImages(256);
    expectGame({400, script, [](int) { return 20; }}, "");
}

TEST(Soak, LosesNothing)
{
    const char *frames = getenv("FRAMES");
    makeImages(512);
    Play soak = {frames ? atoi(frames) : 2000, live};
    soak.onDisplay = true;
    expectGame(soak, "");
}
