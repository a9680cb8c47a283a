// Plays the real game, from SDL_main to quit, in the child processes of death tests: as it always
// goes, on hostile folders, without memory, under an odd clock, twice, and for long. Ticks and keys
// are scripted; the tests that do without the process set fakeTicks.
#include "driver.h"
#include "fixtures.h"

#include <algorithm>
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
    const char *driver = "dummy";                 // of SDL's video
    bool isDrawn = false; // on the display of driver "x11"; else OpenGL calls do nothing
    bool hasOpenGL = true;
    int failingCall = 0;      // the allocation that fails, from 1
    bool failsInPlay = false; // else during start-up
};

typedef std::pair<const void *, size_t> Allocation; // by whom, and how many bytes

// What a child process tells its parent.
struct Report
{
    uint64_t hash;
    int frames; // that were drawn
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

template <typename Condition> static void require(const Condition &holds, const char *fault)
{
    const testing::AssertionResult result(holds);
    if (result)
        return;
    fprintf(stderr, "frame %d: %s: %s\n", frame, fault, result.message());
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
        require(rand() != 1804289383, "the random numbers are those without a seed");
        static SDL_Surface surface = {};
        srand(20011);
        TRANSPARENCY = play.frames == 0; // then all images are read
        return play.isDrawn     ? __real_SDL_SetVideoMode(128, 96, depth, SDL_OPENGL)
               : play.hasOpenGL ? &surface
                                : nullptr;
    }

    Uint32 __wrap_SDL_GetTicks()
    {
        if (!inGame)
            return fakeTicks;
        require(tankLst && tankLst->head, "time passes before the world is made");
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
        if (play.isDrawn)
            __real_SDL_GL_SwapBuffers();
        report->frames = ++frame;
    }
}

static std::string contents(const char *file)
{
    std::ifstream stream(LOGS + std::string(file));
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// Puts what is written to standard output into the log, marked.
static ssize_t logOutput(void *, const char *text, size_t size)
{
    return fprintf(stderr, "out: %.*s", int(size), text) < 0 ? -1 : ssize_t(size);
}

static void playGame(const Play &script)
{
    setenv("SDL_VIDEODRIVER", script.driver, 1);
    stdout = fopencookie(nullptr, "w", {nullptr, logOutput, nullptr, nullptr});
    setvbuf(stdout, nullptr, _IONBF, 0);
    play = script;
    report->allocations = report->frames = 0;
    inGame = true;
    SDL_main(0, nullptr);
}

// The log is a regular expression. The end depends on how far the start has come.
static void expectGame(const Play &script, const std::string &log, const char *end = "/quit.log")
{
    EXPECT_EXIT(playGame(script), testing::ExitedWithCode(0), log + contents(end) + "$");
    EXPECT_EQ(report->frames, script.frames);
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
constexpr int SIDE = 50; // samples along each side of the land

static void makeImages(int side)
{
    for (const auto &image : IMAGES)
        writeImage(image.file, 8, 8, 24, 2, 8L * 8 * 3);
    writeImage("Map.tga", side, side, 24, 2, 3L * side * side);
    writeImage("MapTex.tga", side, side, 32, 2, 4L * side * side);
}

static std::vector<Person> crowd()
{
    std::vector<Person> people;
    for (PersonNode **cell : peopleLst->buckets)
        for (const PersonNode *node = *cell; node; node = node->next)
            people.push_back(node->person);
    return people;
}

static void checkWorld()
{
    std::set<int> people;
    for (const Person &person : crowd())
        require(people.insert(person.id).second, "someone is twice");
    const Ids tanks = idsFrom(tankLst->head), shots = idsFrom(shotLst->head);
    require(std::is_sorted(shots.rbegin(), shots.rend()), "shots are out of order");
    require(people.size() == size_t(peopleLst->count), "people are lost");
    const size_t crushed = 10 * (20000 - people.size()) + 50 * (1500 - tanks.size());
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
    for (const Person &person : crowd())
        mix(&world, person.id, person.position, person.velocity, person.direction);
    for (const TankNode *node = tankLst->head; node; node = node->next)
        mix(&world, node->tank);
    for (const Shot *shot = shotLst->head; shot; shot = shot->next)
        mix(&world, shot->id, shot->position, shot->velocity, shot->heading);
    return std::hash<std::string>()(world);
}

namespace
{
struct Process : testing::Test
{
    void SetUp() override
    {
        makeImages(SIDE);
    }
    Folder folder;
};
} // namespace

// The game finds fault with one image and uses it all the same, or does not.
static void expectStart(int i, const std::string &fault, bool isUsed)
{
    const std::string log = contents("/start.log"), &then = IMAGES[i].then;
    const size_t at = log.find('\n', log.find(IMAGES[i].stage)) + 1;
    const size_t on = isUsed ? at : then.empty() ? log.npos : log.find(then);
    expectGame({}, "^" + log.substr(0, at) + fault + (on < log.size() ? log.substr(on) : then));
}

TEST_F(Process, WithoutADisplayOrOpenGLItSaysSoAndQuits)
{
    Play blind;
    blind.hasOpenGL = false;
    expectGame(blind, "^out: Couldn't set Video Mode\n", "/quit_early.log");
    blind.driver = "none";
    expectGame(blind, "^out: Couldn't init SDL\n", "/quit_early.log");
}

TEST_F(Process, WhatIsNoImageIsRefusedWhereverItStands)
{
    const struct
    {
        const char *command;
        bool isOpened;
    } rows[] = {
        {"rm $F", false},
        {"rm $F; mkdir $F", true},
        {"rm $F; mkfifo $F", false},
        {"ln -sf nowhere $F", false},
        {"ln -sf /dev/zero $F", false},
        {": >$F", true},
        {"truncate -s 17 $F", true},
    };
    for (const auto &row : rows)
        for (int i = 0; i < 8; ++i)
        {
            SCOPED_TRACE(IMAGES[i].file + (": " + std::string(row.command)));
            makeImages(SIDE);
            setenv("F", IMAGES[i].file, 1);
            ASSERT_EQ(system(row.command), 0);
            std::string fault = "   ...couldn't load TGA\n";
            if (i < 2 && !row.isOpened)
                fault +=
                    "No land: looked for Map[.]tga and MapTex[.]tga in /tmp/tumbledown-......\n";
            expectStart(i, fault, false);
        }
}

TEST_F(Process, ImagesAreRefusedOrUsedByTheirHeaders)
{
    const struct
    {
        const char *what;
        int width, height, depth, type;
        long bytes;
        int status;
        bool isUsed;
    } rows[] = {
        {"colour-mapped", 8, 8, 24, 1, 192, TGA_ERROR_COLOUR_MAP, false},
        {"run-length encoded", 8, 8, 24, 10, 192, TGA_ERROR_TYPE, false},
        {"a byte too short", 8, 8, 24, 2, 191, TGA_ERROR_READ, false},
        {"of negative width", -8, 8, 24, 2, 192, TGA_ERROR_MEMORY, false},
        {"of four gigabytes", 32767, 32767, 32, 2, 99, TGA_ERROR_MEMORY, false},
        {"of no pixels", 0, 0, 24, 2, 0, TGA_OK, false},
        {"grey", 8, 8, 8, 3, 64, TGA_OK, false},
        {"of two bytes a pixel", 8, 8, 16, 2, 128, TGA_OK, false},
        {"of one pixel", 1, 1, 24, 2, 3, TGA_OK, true},
        {"of odd sides", 5, 3, 24, 2, 45, TGA_OK, true},
        {"of four bytes a pixel", 26, 7, 32, 2, 728, TGA_OK, true},
    };
    const int lastFile = dup(STDERR_FILENO);
    for (const auto &row : rows)
        for (int i = 2; i < 8; ++i)
        {
            SCOPED_TRACE(IMAGES[i].file + (": " + std::string(row.what)));
            makeImages(SIDE);
            writeImage(IMAGES[i].file, row.width, row.height, row.depth, row.type, row.bytes);
            TgaImage *image = tgaLoad(IMAGES[i].file);
            EXPECT_EQ(Ids({image->status, image->width, image->height}),
                      Ids({row.status, row.width, row.height}));
            tgaDestroy(image);
            expectStart(i, row.isUsed ? "" : "   ...couldn't load TGA\n", row.isUsed);
        }
    EXPECT_EQ(dup(STDERR_FILENO), lastFile + 1) << "a file stays open";
}

TEST_F(Process, MapsAreRefusedUnlessTheyFitEachOther)
{
    const struct
    {
        int width, height, depth; // of the heights
        int colourWidth, colourHeight, colourDepth;
        bool isUsed;
        const char *fault;
    } rows[] = {
        {0, 0, 8, 0, 0, 32, false, "Height image is too small"},
        {24, 24, 24, 24, 24, 32, false, "Height image is too small"},
        {64, 32, 8, 64, 32, 32, false, "Height image is not square"},
        {26, 26, 8, 25, 26, 32, false, "Height image is different size than texture image"},
        {26, 25, 8, 26, 26, 32, false, "Height image is different size than texture image"},
        {26, 26, 4, 26, 26, 32, false, "Height image is not of correct format: 0"},
        {26, 26, 8, 26, 26, 8, false, "Texture Image is not of correct format: 1"},
        {26, 26, 8, 26, 26, 16, false, "Texture Image is not of correct format: 2"},
        {25, 25, 8, 25, 25, 24, true, "Texture Image is not of correct format: 3"},
        {26, 26, 16, 26, 26, 32, true, nullptr},
        {27, 27, 32, 27, 27, 40, true, "Texture Image is not of correct format: 5"},
        {4096, 4096, 8, 4096, 4096, 32, true, nullptr},
    };
    for (const auto &row : rows)
    {
        const std::string fault = row.fault ? std::string("   ...") + row.fault + "\n" : "";
        SCOPED_TRACE(fault + std::to_string(row.width));
        const auto write = [](const char *name, int width, int height, int depth)
        {
            const int type = depth > 8 ? 2 : 3;
            writeImage(name, width, height, depth, type, 1L * width * height * (depth / 8));
        };
        write("Map.tga", row.width, row.height, row.depth);
        write("MapTex.tga", row.colourWidth, row.colourHeight, row.colourDepth);
        expectStart(0, fault, row.isUsed);
    }
}

// What is said when an allocation of so many bytes fails, as a regular expression.
static const std::map<size_t, std::string> COMPLAINTS = {
    {sizeof(PeopleList), "out: Failed to allocate memory to people list\n"},
    {sizeof(TankList), "Failed to allocate memory to tank list\n"},
    {sizeof(ShotList), "Failed to allocate memory to shot list\n|display list array"},
    {sizeof(PersonNode), "...FAILED ALLOCATION OF MEMORY!"},
    {8, "ERROR FAILED ALLOCATION AT [0-9]+:[0-9]+\n...FAILED TO MAKE PEOPLE LIST\n|"
        "display list array not initialised\n|out: Failed to allocate memory to remove list\n"},
    {SIDE * sizeof(float *), "...(map|normals|colours) array not initialised\n"},
    {SIDE * sizeof(float), "...map array not initialised\n"},
    {SIDE * sizeof(Vector), "...(normals|colours) array not initialised\n"},
    {SIDE * SIDE, "...Height image is not of correct format: 3\n"}, // it cannot be made grey
    {sizeof(TankNode), ""},                                         // a tank less
    {sizeof(Shot), ""},                                             // a shot less
};

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
            const auto line = COMPLAINTS.find(place.second);
            const bool isImage = line == COMPLAINTS.end();
            expectGame(script,
                       "(" + (isImage ? "...couldn't load TGA\n" : line->second) + ")(.|\n)*",
                       "/quit_early.log");
        }
}

TEST_F(Process, FailedAllocationEndsTheStartInAnOrderlyWay)
{
    failEachPlace({});
}

TEST_F(Process, FailedAllocationInPlayLeavesTheWorldWhole)
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

TEST_F(Process, NoStepLosesAnybodyWhereverTheCubeIs)
{
    const std::pair<const char *, int (*)(int)> rows[] = {
        {"none or a millisecond", [](int now) { return now % 2; }},
        {"half a second, and stopped", [](int now) { return now % 50 == 49 ? 10000 : 500; }},
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

// Rounding differences of processors have not grown by then: some contacts and a few seconds on,
// all figures hold to a half. Points count in tens, the sum of where people are in units of 10,000
// and that of the tanks in units of 1,000.
TEST_F(Process, GameComesOutAsEverInItsFirstSeconds)
{
    static const struct
    {
        int frame; // of 0.02 s
        const char *what;
        Vector value;
    } rows[] = {
        {120, "the cube", {244.2f, 369.8f, 202.4f}},
        {120, "the eye", {-145.2f, 546, -1247}},
        {120, "size, heading and spin", {103.3f, 345.8f, -3.9f}},
        {120, "score and shots", {14, 19, 0}},
        {120, "the crowd", {19.9f, 590.1f, 31.3f}},
        {120, "the tanks", {-679.4f, 357.7f, -1174}},
        {400, "the cube", {631.4f, 376.1f, 350.9f}},
        {400, "the eye", {317.3f, 1119.4f, 684.1f}},
        {400, "size, heading and spin", {9, -110.1f, -4.2f}},
        {400, "score and shots", {22, 43, 0}},
        {400, "the crowd", {27.2f, 589.4f, 35.1f}},
        {400, "the tanks", {-459.7f, 339.3f, -1606}},
    };
    const auto script = [](int now)
    {
        if (now == 0)
        {
            cb.position = vectorInit(0, 400, 0);
            cb.momentum = vectorInit(0, 0, 0);
        }
        rollAround();
        Vector people = {0, 0, 0}, tanks = people;
        for (const Person &person : crowd())
            people = vectorAdd(people, vectorMultiply(person.position, 1e-4f));
        for (const TankNode *node = tankLst->head; node; node = node->next)
            tanks = vectorAdd(tanks, vectorMultiply(node->tank.position, 1e-3f));
        const std::map<std::string, Vector> figures = {
            {"the cube", cb.position},
            {"the eye", cam.position},
            {"size, heading and spin", {cb.size, cb.heading, cb.angularVelocity.z}},
            {"score and shots", {cb.score / 10.0f, 1.0f * shotLst->nextId, 0}},
            {"the crowd", people},
            {"the tanks", tanks},
        };
        for (const auto &row : rows)
            if (now == row.frame)
                require(isNear(figures.at(row.what), row.value, 0.5), row.what);
    };
    makeImages(256);
    remove("TexPerson.tga"); // nobody is a picture
    expectGame({400, script, [](int) { return 20; }}, "");
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
    const long slack = play.isDrawn ? early / 4 : early / 100 + MEMORY_SLACK;
    require(peakKilobytes() - early < slack, "memory grows");
    report->hash = worldHash();
}

TEST_F(Process, ReplayGivesTheSameWorldToTheLastBit)
{
    makeImages(1024);   // so wide that most of the crowd is out of sight
    uint64_t hashes[2]; // after ten minutes each
    for (uint64_t &hash : hashes)
    {
        expectGame({10350, live, [](int now) { return 16 + now * 7919 % 85; }}, "");
        hash = report->hash;
    }
    EXPECT_EQ(hashes[0], hashes[1]);
    std::ofstream(REPLAY_HASH) << hashes[0] << "\n"; // for a comparison of the builds
}

TEST_F(Process, SoakLosesNothing)
{
    const char *frames = getenv("FRAMES");
    makeImages(512);
    Play soak = {frames ? atoi(frames) : 2000, live};
    soak.driver = "x11";
    soak.isDrawn = true;
    expectGame(soak, "");
}
