// Measures how long a step of the world, a frame, the parts of a frame and the start-up take.
//
//     cmake --preset bench && cmake --build --preset bench
//     build/bench/bench/bench_world data
//
// The program needs a display; without one, put xvfb-run -a -s "-noreset -screen 0 1024x768x24" in
// front. The argument is the folder of the images, by default the current one; options of Google
// Benchmark, such as --benchmark_filter=frame, go before it. Every run makes the same world.
#include "animate.h"
#include "camera.h"
#include "cube.h"
#include "image.h"
#include "main.h"
#include "people.h"
#include "shot.h"
#include "tank.h"
#include "terrain.h"
#include "view.h"

#include <GL/gl.h>
#include <SDL.h>

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <unistd.h>

constexpr uint32_t STEP = 16;        // milliseconds
constexpr int START_DISTANCE = 5000; // draw distance at which a part of the horde is in range
constexpr int WHOLE_LAND = 40000;    // draw distance at which all of the land is in range
constexpr float FOLLOW = 300;        // height of the eye above the ground
constexpr float NEIGHBOURHOOD = 500; // units within which people or tanks are counted
constexpr int SEARCH_STEP = 4;       // samples between the places that are tried
constexpr int SEARCH_MARGIN = 100;   // samples along the edges, where few people go
constexpr float ON_GROUND = 50;      // height of the cube's centre above the ground: half an edge
constexpr float HIGH_UP = 1500;      // height of the cube's centre above the ground
// Frames in which a part is measured. Without this number, Google Benchmark would repeat a part
// that takes almost no time very often.
constexpr int PART_FRAMES = 40;

static uint32_t ticks = 0;

// The clock of the game: all steps have the same length, whatever time passes.
extern "C" uint32_t __wrap_SDL_GetTicks()
{
    return ticks += STEP;
}

static int openDisplay()
{
    if (SDL_Init(SDL_INIT_VIDEO) < 0)
        return 0;
    SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, 8);
    return SDL_SetVideoMode(DISPLAY_WIDTH, DISPLAY_HEIGHT, 0, SDL_FULLSCREEN | SDL_OPENGL) !=
           nullptr;
}

// ---- places -------------------------------------------------------------------------------------

typedef double (*Score)(float x, float z); // rates a place; a scene uses the place rated highest

// In the middle of the land most people are in range.
static double centrality(float x, float z)
{
    return -pithag(x, z);
}

static double flatness(float x, float z)
{
    double roughness = 0;
    for (float reach = 100; reach <= 400; reach += 100)
        for (const auto &[dx, dz] : {std::pair{reach, 0.0f}, {-reach, 0}, {0, reach}, {0, -reach}})
            roughness += mod(getHeightAt(&ter, x + dx, z + dz) - getHeightAt(&ter, x, z));
    return -roughness;
}

static double height(float x, float z)
{
    return getHeightAt(&ter, x, z);
}

static bool isNear(Vector position, float x, float z)
{
    return pithag(position.x - x, position.z - z) < NEIGHBOURHOOD;
}

static double peopleNear(float x, float z)
{
    int count = 0;
    for (PersonNode **bucket : peopleLst->buckets)
        for (const PersonNode *node = *bucket; node; node = node->next)
            count += isNear(node->person.position, x, z);
    return count;
}

static double tanksNear(float x, float z)
{
    int count = 0;
    for (const TankNode *node = tankLst->head; node; node = node->next)
        count += isNear(node->tank.position, x, z);
    return count;
}

namespace
{
struct Scene
{
    const char *name;
    Score score;
    int searchStep; // samples
    float clearance;
};
} // namespace

constexpr Scene SCENES[] = {{"middle", centrality, SEARCH_STEP, ON_GROUND},
                            {"plain", flatness, SEARCH_STEP, ON_GROUND},
                            {"summit", height, SEARCH_STEP, ON_GROUND},
                            {"crowd", peopleNear, SEARCH_STEP * 8, ON_GROUND},
                            {"under fire", tanksNear, SEARCH_STEP, ON_GROUND},
                            {"in the air", flatness, SEARCH_STEP, HIGH_UP}};

static Vector bestPlace(const Scene &scene)
{
    Vector best = {};
    double bestScore = -1e9;
    for (int i = SEARCH_MARGIN; i < ter.width - SEARCH_MARGIN; i += scene.searchStep)
        for (int j = SEARCH_MARGIN; j < ter.height - SEARCH_MARGIN; j += scene.searchStep)
        {
            const float x = static_cast<float>(i) * ter.scale - ter.worldWidth * 0.5f;
            const float z = static_cast<float>(j) * ter.scale - ter.worldDepth * 0.5f;
            const double score = scene.score(x, z);
            if (score > bestScore)
            {
                bestScore = score;
                best = {x, getHeightAt(&ter, x, z), z};
            }
        }
    return best;
}

// Puts a resting cube at the place of the scene. Puts the eye where the eye would come to rest.
static void arrange(const Scene &scene)
{
    static std::map<const Scene *, Vector> found;
    if (!found.count(&scene))
        found[&scene] = bestPlace(scene);
    const Vector place = found[&scene];
    while (shotLst->head)
        removeShot(shotLst, *shotLst->head);
    cb.position = {place.x, place.y + scene.clearance, place.z};
    cb.momentum = cb.velocity = cb.angularMomentum = cb.force = cb.torque = {0, 0, 0};
    cb.orientation = {1, 0, 0, 0};
    cb.size = cb.targetSize = 100;
    cb.heading = 90;
    calcTargetView(&cam, &cb);
    cam.position = {cam.target.x, 0, cam.target.z};
    cam.position.y = getHeightAt(&ter, cam.position.x, cam.position.z) + FOLLOW;
    cam.target.y = cam.position.y;
}

// ---- what is measured ---------------------------------------------------------------------------

// Repeats a step or a frame with the same cube and camera. People and tanks move on.
static void repeat(benchmark::State &state, const Scene *scene, int distance, void (*work)())
{
    arrange(*scene);
    const Cube start = cb;
    const Camera eye = cam;
    for (auto _ : state)
    {
        cb = start;
        cam = eye;
        VIEW_DISTANCE = distance;
        SHADOW = 1;
        work();
    }
    glFinish();
}

static void step()
{
    animate(&cb, peopleLst, tankLst, &cam, &ter, shotLst);
}

static void clearAndAim()
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_ALPHA_TEST);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const Eye eye = eyeOnCube();
    setView(&eye);
    lookFrom(&eye);
}

static void terrain()
{
    drawTerrain(&ter, cb.position.x, cb.position.z, static_cast<float>(VIEW_DISTANCE));
}

static void horde()
{
    drawHorde(peopleLst, &cb);
}

static void tanks()
{
    drawTanks(tankLst, &cb, &ter);
}

static void cubeShotsText()
{
    placeAndDrawCube();
    drawShots(shotLst, &ter);
    glColor3f(0, 0, 0);
    displayScore();
    displaySize();
}

namespace
{
struct Part
{
    const char *name;
    void (*draw)();
};
} // namespace

constexpr Part PARTS[] = {{"part/clear", clearAndAim},
                          {"part/sky", drawSkyBox},
                          {"part/terrain", terrain},
                          {"part/horde", horde},
                          {"part/tanks", tanks},
                          {"part/shadow", drawShadow},
                          {"part/cube, shots, text", cubeShotsText},
                          {"part/swap", SDL_GL_SwapBuffers}};

// Seconds that a part takes. OpenGL first finishes what was sent before it.
static double timePart(const Part &part)
{
    glFinish();
    const auto start = std::chrono::steady_clock::now();
    part.draw();
    glFinish();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Draws whole frames, since the time of a part depends on the parts drawn before it, but measures
// only one part.
static void partOfFrame(benchmark::State &state, const Part *measured)
{
    arrange(SCENES[0]);
    VIEW_DISTANCE = START_DISTANCE;
    drawScreen(); // sets the projection
    for (auto _ : state)
        for (const Part &part : PARTS)
        {
            const double seconds = timePart(part);
            if (&part == measured)
                state.SetIterationTime(seconds);
        }
    clearView();
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
    {
        perror(argv[1]);
        return EXIT_FAILURE;
    }
    if (!freopen("/dev/null", "w", stderr)) // hides what start-up prints
    {
        puts("Cannot write to /dev/null");
        return EXIT_FAILURE;
    }
    if (!openDisplay())
    {
        printf("Cannot open a display: %s\n", SDL_GetError());
        return EXIT_FAILURE;
    }
    setupOpengl(DISPLAY_WIDTH, DISPLAY_HEIGHT);
    if (!makeWorld())
    {
        puts("Cannot make the world. Is the argument the folder of the images?");
        return EXIT_FAILURE;
    }
    initAnimation();

    const auto add = [](std::string name, auto... how)
    { return benchmark::RegisterBenchmark(name.c_str(), how...)->Unit(benchmark::kMillisecond); };
    for (const int distance : {START_DISTANCE, WHOLE_LAND})
        for (const Scene &scene : SCENES)
        {
            const std::string where = std::string(scene.name) + "/" + std::to_string(distance);
            add("frame/" + where, repeat, &scene, distance, drawScreen)->UseRealTime();
            add("step/" + where, repeat, &scene, distance, step)->UseRealTime();
        }
    for (const Part &part : PARTS)
        add(part.name, partOfFrame, &part)->UseManualTime()->Iterations(PART_FRAMES);
    add("start/makeList", peopleGrid)->UseRealTime();
    add("start/initTerrain", land)->UseRealTime();
    add("start/tgaLoad(Map.tga)", mapImage)->UseRealTime();
    benchmark::RunSpecifiedBenchmarks();
    SDL_Quit();
}
