#include "game.h"

#include "driver.h"
#include "main.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

static Report *shareReport()
{
    void *memory =
        mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
    {
        perror("no memory to share with the child processes");
        exit(1);
    }
    return static_cast<Report *>(memory);
}

Report *const report = shareReport();
Play play;
static int frame = 0;
static bool isRunning = false; // SDL_main has been called
static bool isPlaying = false; // its start-up is over
static uint8_t keysHeld[SDLK_LAST];
static int displayAttributes[64];

void require(bool condition, const char *fault)
{
    if (condition)
        return;
    isRunning = false;
    fprintf(stderr, "frame %d: %s\n", frame, fault);
    _Exit(1);
}

// ---- in place of SDL and the C library ----------------------------------------------------------

static bool isRefused(const void *caller, size_t bytes)
{
    if (!isRunning || isPlaying != play.failsInPlay)
        return false;
    require(report->allocations < Report::MOST_ALLOCATIONS, "the report has no room left");
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
        displayAttributes[attribute] = value;
        return __real_SDL_GL_SetAttribute(attribute, value);
    }

    // When the game calls this, it has seeded rand and set its flags. So both are changed here.
    SDL_Surface *__wrap_SDL_SetVideoMode(int width, int height, int depth, Uint32 flags)
    {
        require(width == 1024 && height == 768 && flags == (SDL_FULLSCREEN | SDL_OPENGL) &&
                    displayAttributes[SDL_GL_STENCIL_SIZE] == 8 &&
                    displayAttributes[SDL_GL_DEPTH_SIZE] == 16 &&
                    displayAttributes[SDL_GL_DOUBLEBUFFER] == 1,
                "the game asks for a display with unexpected attributes");
        require(rand() != 1804289383, "rand gives the numbers of a program that did not seed it");
        static SDL_Surface surface = {};
        srand(20011);
        TRANSPARENCY = play.frames == 0;
        if (play.isDrawn) // a small window, since no test looks at it
            return __real_SDL_SetVideoMode(128, 96, depth, SDL_OPENGL);
        return play.hasOpenGL ? &surface : nullptr;
    }

    Uint32 __wrap_SDL_GetTicks()
    {
        static uint32_t ticks = 1000;
        require(tankLst && tankLst->head, "the game reads the clock before the world is made");
        if (isPlaying)
            ticks += static_cast<uint32_t>(play.step(frame));
        isPlaying = true;
        return ticks;
    }

    void __wrap_SDL_Quit()
    {
        fputs("SDL_Quit\n", stderr);
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

// ---- the child process and its log --------------------------------------------------------------

static ssize_t logOutput(void *, const char *text, size_t size)
{
    return fprintf(stderr, "out: %.*s", int(size), text) < 0 ? -1 : ssize_t(size);
}

[[noreturn]] static void runGame(const Play &script, int log)
{
    dup2(log, STDERR_FILENO);
    setenv("SDL_VIDEODRIVER", script.videoDriver, 1);
    stdout = fopencookie(nullptr, "w", {nullptr, logOutput, nullptr, nullptr});
    setvbuf(stdout, nullptr, _IONBF, 0);
    play = script;
    isRunning = true;
    SDL_main(0, nullptr);
    _Exit(2); // SDL_main never returns
}

static std::string transcript(const char *name)
{
    std::ifstream stream(SUPPORT_FOLDER + std::string(name));
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

static void replaceAll(std::string *text, const std::string &from, const std::string &to)
{
    for (size_t at = text->find(from); at != text->npos; at = text->find(from, at + to.size()))
        text->replace(at, from.size(), to);
}

// If a start ends before it loads the land, the game quits without the lines about freeing it.
static std::string quitAfter(const std::string &start)
{
    std::string quit = transcript("/quit.txt") + "SDL_Quit\n";
    if (start.find("Loading image") == start.npos)
        replaceAll(&quit, "Freeing Terrain...\n   ...freed array entries\n   ...done\n", "");
    return quit;
}

std::string playGame(const Play &script)
{
    report->allocations = report->frames = 0;
    FILE *file = tmpfile();
    if (!file)
    {
        ADD_FAILURE() << "cannot make a file for the log: " << strerror(errno);
        return "";
    }
    fflush(nullptr);
    const pid_t child = fork();
    if (child < 0)
    {
        ADD_FAILURE() << "cannot start a child process: " << strerror(errno);
        fclose(file);
        return "";
    }
    if (child == 0)
        runGame(script, fileno(file));
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    std::string log;
    rewind(file);
    for (int c = fgetc(file); c != EOF; c = fgetc(file))
        log += static_cast<char>(c);
    fclose(file);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << log;
    EXPECT_EQ(report->frames, script.frames) << "the number of frames that were drawn";
    const size_t end = std::min(log.rfind("Quitting\n"), log.size());
    const std::string start = log.substr(0, end);
    EXPECT_TRUE(isSameText(log.substr(end), quitAfter(start))) << "at the end of the log";
    return start;
}

// ---- the world of the child process -------------------------------------------------------------

std::vector<Person> crowd()
{
    std::vector<Person> people;
    for (PersonNode **cell : peopleLst->buckets)
        for (const PersonNode *node = *cell; node; node = node->next)
            people.push_back(node->person);
    return people;
}

void requireWholeWorld()
{
    std::set<int> people;
    for (const Person &person : crowd())
        require(people.insert(person.id).second, "a person is in the lists twice");
    const Ids tanks = idsFrom(tankLst->head), shots = idsFrom(shotLst->head);
    require(std::is_sorted(shots.rbegin(), shots.rend()), "the newest shot is not the first");
    require(people.size() == size_t(peopleLst->count), "the game miscounts its people");
    const size_t points = 10 * (20000 - people.size()) + 50 * (1500 - tanks.size());
    require(play.failingCall || size_t(cb.score) == points,
            "the score does not match the number of crushed people and tanks");
}

// The place to which the cube rolls changes every 300 frames.
void rollAround()
{
    const unsigned place = (frame / 300u + 1) * 2654435761u >> 8;
    const float x = place % 8192 - 4096.0f, z = place / 8192 % 2048 * 4 - 4096.0f;
    holdKeysToward(vectorInit(x, 0, z), keysHeld);
    keysHeld[SDLK_i] = frame % 1000 == 999;
}

// ---- images -------------------------------------------------------------------------------------

void writePattern(const char *path, int width, int height, int depth, int type, long bytes)
{
    Bytes file = tga(type, width, height, depth, {});
    for (long i = 0; i < std::min(bytes, 1L << 22); ++i) // the rest of a huge image is black
        file.push_back(static_cast<uint8_t>(i * i >> 16));
    remove(path);
    writeFile(path, file);
    ASSERT_EQ(truncate(path, 18 + bytes), 0);
}

Process::Process()
{
    makeImages(50);
}

void Process::makeImages(int landSide)
{
    side = landSide;
    for (const char *file : {"TexSkyBox.tga", "TexCube.tga", "TexNoise.tga", "TexPerson.tga",
                             "TexPersonBack.tga", "TexTank.tga"})
        writePattern(file, 8, 8, 24, 2, 8L * 8 * 3);
    writePattern("Map.tga", side, side, 24, 2, 3L * side * side);
    writePattern("MapTex.tga", side, side, 32, 2, 4L * side * side);
}

std::string Process::startLog(bool hasPictureBoards) const
{
    constexpr char BOARDS[] = "Loading Person texture...\n   ...done\n"
                              "Initialising texture...\n   ...done\n"
                              "Loading Person Back texture...\n   ...done\n"
                              "Initialising back texture...\n   ...done\n";
    std::string log = transcript("/start.txt");
    replaceAll(&log, "SIDE", std::to_string(side));
    replaceAll(&log, "BLOCKS", std::to_string(side / 25));
    replaceAll(&log, "STEP", std::to_string(side * 25 / 250));
    if (hasPictureBoards)
        log.insert(log.find("\nInitialising people"), BOARDS);
    return log;
}
