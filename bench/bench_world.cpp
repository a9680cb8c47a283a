// What a step of the world, a frame and the start-up cost, part by part, in the game's own world.
//
//     cmake --preset bench && cmake --build --preset bench
//     build/bench/bench/bench_world data        (needs a display; without one: xvfb-run -a -s
//                                               "-noreset -screen 0 1024x768x24" in front)
//
// The argument is the folder of the images, by default the current one. The world is the same on
// every run. Google Benchmark's options, such as --benchmark_filter=frame, go before the folder.
#include "animate.h"
#include "main.h"

#include <GL/gl.h>
#include <GL/glu.h>
#include <SDL.h>

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

constexpr int WIDTH = 1024, HEIGHT = 768;
constexpr int PEOPLE = 20000, TANKS = 1500;
constexpr uint32_t STEP = 16;          // milliseconds
constexpr int DRAW_DISTANCE = 5000;    // a part of the horde is in view
constexpr int WHOLE_WORLD = 13000;     // all of it
constexpr float GROUND_CLEARANCE = 50; // of the cube's centre: half its edge
constexpr float EYE_DISTANCE = 300;    // behind the cube and above it
constexpr int SHOTS = 10;
constexpr int FRAMES = 40; // for each pass: some take no time of their own

static uint32_t ticks = 0;

// Every step is as long as the others, however long it takes.
extern "C" uint32_t __wrap_SDL_GetTicks()
{
    return ticks += STEP;
}

static int openDisplay()
{
    if (SDL_Init(SDL_INIT_VIDEO) < 0)
        return 0;
    SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, 8);
    return SDL_SetVideoMode(WIDTH, HEIGHT, 0, SDL_FULLSCREEN | SDL_OPENGL) != nullptr;
}

static int makeWorld()
{
    peopleLst = static_cast<PeopleList *>(calloc(1, sizeof(PeopleList)));
    tankLst = static_cast<TankList *>(calloc(1, sizeof(TankList)));
    shotLst = static_cast<ShotList *>(calloc(1, sizeof(ShotList)));
    if (!peopleLst || !tankLst || !shotLst)
        return 0;
    initCube(&cb);
    initCamera(&cam);
    if (!initTerrain(&ter))
        return 0;
    const int spacing = static_cast<int>(ter.scale);
    if (!makeList(peopleLst, PEOPLE, ter.width, ter.height, spacing) ||
        !makeTankList(tankLst, TANKS))
        return 0;
    randomTankPlacement(tankLst, ter.width, ter.height, spacing);
    return 1;
}

// The cube stands in the middle of the land, the eye behind it, and a few shots fly above.
static void arrangeScene()
{
    const float ground = getHeightAt(&ter, 0, 0);
    cb.position = vectorInit(0, ground + GROUND_CLEARANCE, 0);
    cb.momentum = vectorInit(0, 0, 0);
    cam.position = vectorInit(0, ground + EYE_DISTANCE, -EYE_DISTANCE);
    for (int i = 0; i < SHOTS; ++i)
        addShot(shotLst, {0, {i * 20.0f, ground + EYE_DISTANCE, 200}, {0, 0, 0}, 0, nullptr});
}

// Steps the world again and again with a cube that hovers out of reach.
static void step(benchmark::State &state, int distance)
{
    const Cube start = cb;
    const Camera eye = cam;
    VIEW_DISTANCE = distance;
    for (auto _ : state)
    {
        cb = start;
        cb.position.y += 1000;
        animate(&cb, peopleLst, tankLst, &cam, &ter, shotLst);
    }
    cb = start;
    cam = eye;
    VIEW_DISTANCE = DRAW_DISTANCE;
    while (shotLst->head)
        removeShot(shotLst, *shotLst->head);
}

static void clearAndAim()
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gluLookAt(cam.position.x, cam.position.y, cam.position.z, cb.position.x,
              cb.position.y + cb.size, cb.position.z, 0, 1, 0);
}

static void terrain()
{
    drawTerrain(&ter, cb.position.x, cb.position.z, static_cast<float>(DRAW_DISTANCE));
}

static void horde()
{
    drawHorde(peopleLst, &cb);
}

static void tanks()
{
    drawTanks(tankLst, &cb, &ter);
}

static void shadow()
{
    renderCubeShadow(&cb, cam.position.x, cam.position.y, cam.position.z);
}

static void cubeShotsText()
{
    glPushMatrix();
    glTranslatef(cb.position.x, cb.position.y, cb.position.z);
    drawCube(&cb);
    glPopMatrix();
    drawShots(shotLst, &ter);
    glColor3f(0, 0, 0);
    displayScore();
    displaySize();
}

namespace
{
struct Pass
{
    const char *name;
    void (*draw)();
};
} // namespace

constexpr Pass PASSES[] = {{"frame/clear", clearAndAim},
                           {"frame/sky", drawSkyBox},
                           {"frame/terrain", terrain},
                           {"frame/horde", horde},
                           {"frame/tanks", tanks},
                           {"frame/shadow", shadow},
                           {"frame/cube, shots, text", cubeShotsText},
                           {"frame/swap", SDL_GL_SwapBuffers}};

// Seconds that a pass takes; what was drawn before it is finished first.
static double timePass(const Pass &pass)
{
    glFinish();
    const auto start = std::chrono::steady_clock::now();
    pass.draw();
    glFinish();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Draws whole frames, since a pass costs what the earlier ones leave it to cover, and counts one.
static void frame(benchmark::State &state, const Pass *counted)
{
    for (auto _ : state)
        for (const Pass &pass : PASSES)
        {
            const double seconds = timePass(pass);
            if (&pass == counted)
                state.SetIterationTime(seconds);
        }
}

static void wholeFrame(benchmark::State &state)
{
    for (auto _ : state)
        for (const Pass &pass : PASSES)
            pass.draw();
}

static void peopleGrid(benchmark::State &state)
{
    for (auto _ : state)
    {
        PeopleList *list = static_cast<PeopleList *>(calloc(1, sizeof(PeopleList)));
        makeList(list, PEOPLE, ter.width, ter.height, static_cast<int>(ter.scale));
        glDeleteLists(list->displayList, 1);
        destroyPersonList(list);
    }
}

static void land(benchmark::State &state)
{
    for (auto _ : state)
    {
        Terrain made = {};
        initTerrain(&made);
        for (int i = 0; i < made.blocksX * made.blocksZ; ++i)
            glDeleteLists(made.displayLists[i / made.blocksZ][i % made.blocksZ], 1);
        glDeleteTextures(1, &made.texture);
        deleteTerrain(&made);
    }
}

static void mapImage(benchmark::State &state)
{
    for (auto _ : state)
        tgaDestroy(tgaLoad("Map.tga"));
}

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (argc > 1 && chdir(argv[1]) != 0)
        return EXIT_FAILURE;
    if (!freopen("/dev/null", "w", stderr) || !openDisplay()) // start-up reports there
        return EXIT_FAILURE;
    setupOpengl(WIDTH, HEIGHT);
    if (!makeWorld())
    {
        puts("No world: the folder of the images is missing");
        return EXIT_FAILURE;
    }
    arrangeScene();

    for (const Pass &pass : PASSES)
        benchmark::RegisterBenchmark(pass.name, frame, &pass)
            ->UseManualTime()
            ->Iterations(FRAMES)
            ->Unit(benchmark::kMillisecond);
    const auto add = [](const char *name, auto... how)
    { benchmark::RegisterBenchmark(name, how...)->Unit(benchmark::kMillisecond)->UseRealTime(); };
    add("frame", wholeFrame);
    add("step", step, DRAW_DISTANCE);
    add("step/whole horde in view", step, WHOLE_WORLD);
    add("start/makeList", peopleGrid);
    add("start/initTerrain", land);
    add("start/tgaLoad(Map.tga)", mapImage);
    benchmark::RunSpecifiedBenchmarks();
    SDL_Quit();
}
