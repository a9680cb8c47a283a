#include "main.h"

#include "animate.h"
#include "camera.h"
#include "cube.h"
#include "image.h"
#include "people.h"
#include "shot.h"
#include "tank.h"
#include "terrain.h"
#include "texture.h"
#include "util.h"
#include "view.h"

#include <GL/freeglut.h>
#include <GL/gl.h>
#include <GL/glu.h>
#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>

Cube cb;
Terrain ter;
Camera cam;
PeopleList *peopleLst = nullptr;
TankList *tankLst = nullptr;
ShotList *shotLst = nullptr;

uint8_t *keys = nullptr;
int VIEW_DISTANCE = 5000;
int SHADOW = 1;
int TERRAIN_DEFORMING = 1;
int WIRE_FRAME = 0;
int TRANSPARENCY = 0;
int gameOver = 0;
float shadowSwitchTime = 0.0f;
float ratio = 0.0f;
float timeH = 0.0f;
float skyBoxSize = 0.0f;
uint32_t skyBoxTexName = 0;
TgaImage *skyBoxImage = nullptr;

constexpr double FIELD_OF_VIEW = 60.0; // degrees, vertical
constexpr double NEAR_PLANE = 1.0;
constexpr double FOG_DEPTH = 1000.0; // units from the start of the fog to its end
constexpr double FAST_FRAME = 0.028; // seconds; below it the draw distance grows
constexpr double SLOW_FRAME = 0.04;  // seconds; above it the draw distance shrinks
constexpr int DISTANCE_STEP = 5;
constexpr int FULL_DISTANCE = 5000;
// In play the eye is at most some 700 units from the cube and its texts. At this draw distance the
// far plane is 1500 units away, and the fog does not yet hide the cube and the ground around it.
constexpr int SHORTEST_DISTANCE = 3000;
// After game over the eye is 1000 units from the cube along the ground and 1000 units above the
// ground. The ground below the eye may be 600 units higher than the cube. With a shorter draw
// distance, the fog would hide the text.
constexpr int SHORTEST_AFTER_GAME_OVER = 4500;
constexpr float SHADOW_BUDGET = 2.0f; // seconds below the full draw distance until the shadow ends
constexpr double GAME_OVER_SPIN = 20.0; // degrees per second

constexpr double BRAKE_THRESHOLD = 1.5; // radians per second about x or z
constexpr double BRAKE_GAIN = -30.0;
constexpr double FORWARD_GAIN = 300.0;
constexpr double SIDE_GAIN = 500.0;
constexpr float MOVING_SPEED = 100.0f;  // units per second along x or z
constexpr double LEFT_TURN_RATE = 90.0; // degrees per second
constexpr double RIGHT_TURN_RATE = 45.0;

constexpr float SKY_ABOVE_EYE = 15.0f;
constexpr float SCORE_HEIGHT = 270.0f; // units from the cube's centre up to the text
constexpr float SIZE_HEIGHT = 200.0f;

// ---- start-up and quitting ----------------------------------------------------------------------

static bool worldReleased = false;
static bool displayClosed = false;

static void releaseWorld()
{
    worldReleased = true;
    fputs("Quitting\n", stderr);
    fputs("   ...Freeing People...\n", stderr);
    if (peopleLst)
        destroyPersonList(peopleLst);
    fputs("   ...Freeing Tanks...\n", stderr);
    if (tankLst)
        destroyTankList(tankLst);
    fputs("   ...Freeing Shots...\n", stderr);
    if (shotLst)
        destroyShotList(shotLst);
    fputs("   ...Freeing Terrain...\n", stderr);
    if (ter.scale > 0) // initTerrain sets scale first, so that 0 means that it was not called
        deleteTerrain(&ter);
    destroyCube(&cb);
    tgaDestroy(skyBoxImage);
    fputs("   ...done\n", stderr);
}

void quit()
{
    releaseWorld();
    SDL_Quit();
    displayClosed = true;
    exit(0);
}

// When the connection to the display is lost, Xlib ends the process with status 1. That can happen
// at any time until SDL_Quit returns. This handler first releases the world, unless that has been
// done, and then ends the process with status 0. It does not call SDL.
static void leaveLostDisplay()
{
    if (displayClosed)
        return;
    if (!worldReleased)
        releaseWorld();
    fflush(nullptr);
    _Exit(0);
}

[[noreturn]] static void giveUp(const char *line, FILE *stream)
{
    fputs(line, stream);
    quit();
}

static void setFlags()
{
    VIEW_DISTANCE = FULL_DISTANCE;
    TERRAIN_DEFORMING = 1;
    SHADOW = 1;
    shadowSwitchTime = 0.0f;
    WIRE_FRAME = 0;
    TRANSPARENCY = 0;
    gameOver = 0;
}

static void openDisplay()
{
    if (SDL_Init(SDL_INIT_VIDEO) < 0)
        giveUp("Couldn't init SDL\n", stdout);
    const SDL_VideoInfo *info = SDL_GetVideoInfo();
    if (!info)
        giveUp("Video Query Failed\n", stdout);
    const int depth = info->vfmt->BitsPerPixel;
    SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 16);
    SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    if (!SDL_SetVideoMode(DISPLAY_WIDTH, DISPLAY_HEIGHT, depth, SDL_FULLSCREEN | SDL_OPENGL))
        giveUp("Couldn't set Video Mode\n", stdout);
}

static int fail(const char *line, FILE *stream)
{
    fputs(line, stream);
    return 0;
}

template <typename List> static int allocateList(List **list, const char *failure, FILE *stream)
{
    *list = static_cast<List *>(calloc(1, sizeof(List)));
    return *list ? 1 : fail(failure, stream);
}

int makeWorld()
{
    if (!allocateList(&peopleLst, "Failed to allocate memory to people list\n", stdout) ||
        !allocateList(&tankLst, "Failed to allocate memory to tank list\n", stderr) ||
        !allocateList(&shotLst, "Failed to allocate memory to shot list\n", stderr))
        return 0;
    initCube(&cb);
    initCamera(&cam);
    if (!initTerrain(&ter))
        return 0;
    const int spacing = truncateToInt(ter.scale);
    if (!makeList(peopleLst, PEOPLE, ter.width, ter.height, spacing))
        return fail("...FAILED TO MAKE PEOPLE LIST\n", stderr);
    if (!makeTankList(tankLst, TANKS))
        return fail("...FAILED TO MAKE TANK LIST\n", stderr);
    randomTankPlacement(tankLst, ter.width, ter.height, spacing);
    return 1;
}

int SDL_main(int, char **)
{
    signal(SIGPIPE, SIG_IGN); // a closed terminal must not end the game half-way through quitting
    atexit(leaveLostDisplay);
    srand(static_cast<unsigned>(time(nullptr)));
    setFlags();
    openDisplay();
    setupOpengl(DISPLAY_WIDTH, DISPLAY_HEIGHT);
    if (!makeWorld())
        quit();
    initAnimation();
    for (;;)
    {
        processEvents();
        drawScreen();
    }
}

static void setupLight()
{
    constexpr float AMBIENT[] = {0.1f, 0.1f, 0.1f, 1};
    constexpr float DIFFUSE[] = {0.3f, 0.3f, 0.3f, 1};
    constexpr float SPECULAR[] = {0.5f, 0.5f, 0.5f, 1};
    // Set once, while the matrix is the identity: the light stays above the viewer.
    constexpr float ABOVE_EYE[] = {0, 10000, 0, 1};
    glLightfv(GL_LIGHT0, GL_AMBIENT, AMBIENT);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, DIFFUSE);
    glLightfv(GL_LIGHT0, GL_SPECULAR, SPECULAR);
    glLightfv(GL_LIGHT0, GL_POSITION, ABOVE_EYE);
    glEnable(GL_LIGHT0);
}

static void setFogRange()
{
    glFogf(GL_FOG_START, static_cast<float>(VIEW_DISTANCE * 0.5 - FOG_DEPTH));
    glFogf(GL_FOG_END, static_cast<float>(VIEW_DISTANCE * 0.5));
}

void setupOpengl(int width, int height)
{
    ratio = static_cast<float>(static_cast<double>(width) / height);
    setupLight();
    glShadeModel(GL_SMOOTH);
    glCullFace(GL_BACK);
    glFrontFace(GL_CCW);
    constexpr GLenum CAPABILITIES[] = {GL_COLOR_MATERIAL, GL_LIGHTING,  GL_FOG,   GL_NORMALIZE,
                                       GL_DEPTH_TEST,     GL_CULL_FACE, GL_BLEND, GL_ALPHA_TEST};
    for (GLenum capability : CAPABILITIES)
        glEnable(capability);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glClearColor(0, 0, 0, 1);
    glClear(GL_STENCIL_BUFFER_BIT); // undefined at first; every shadow resets it to 0
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluPerspective(FIELD_OF_VIEW, ratio, NEAR_PLANE, VIEW_DISTANCE * 0.5);

    constexpr float SKY_BLUE[] = {39 / 255.0f, 168 / 255.0f, 221 / 255.0f, 1};
    glFogi(GL_FOG_MODE, GL_LINEAR);
    setFogRange();
    glFogfv(GL_FOG_COLOR, SKY_BLUE);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1); // image rows are packed, whatever their width
    initSkyBoxTexture();
}

void processEvents()
{
    keys = SDL_GetKeyState(nullptr);
    handleKeyDown();
    SDL_Event event;
    while (SDL_PollEvent(&event))
        if (event.type == SDL_QUIT)
            quit();
}

// ---- controls -----------------------------------------------------------------------------------

// The factor for the torque of the keys at a spin rate: 1 at rest, 0 at the spin limit and above.
static float spinFactor(float rate)
{
    const double limit = cb.spinLimit, spin = mod(rate);
    return limit > spin ? static_cast<float>((limit - spin) / limit) : 0.0f;
}

// Adds torque about the horizontal axis at the given heading in degrees.
static void addTorque(float axis, double gain, float factorX, float factorZ)
{
    const double angle = decToRad(axis), size = cb.size, mass = cb.mass;
    cb.torque.x =
        static_cast<float>(cb.torque.x + std::cos(angle) * (size * gain * factorX * mass));
    cb.torque.z =
        static_cast<float>(cb.torque.z + std::sin(angle) * (size * gain * factorZ * mass));
}

static void brake()
{
    const Vector spin = cb.angularVelocity;
    if (mod(spin.x) > BRAKE_THRESHOLD || mod(spin.z) > BRAKE_THRESHOLD)
        cb.torque = vectorMultiply(spin, static_cast<float>(cb.size * BRAKE_GAIN * cb.mass));
}

static bool isMoving()
{
    return mod(cb.velocity.x) > MOVING_SPEED || mod(cb.velocity.z) > MOVING_SPEED;
}

// Rolls a moving cube sideways, or turns the heading of a slow cube by turn degrees.
static void steer(float axis, float factorX, float factorZ, double turn)
{
    if (isMoving())
        addTorque(axis, SIDE_GAIN, factorX, factorZ);
    else
        cb.heading = static_cast<float>(cb.heading + turn);
}

static void printVector(const char *name, Vector v)
{
    fprintf(stderr, "\t%s: (%d,%d,%d)\n", name, truncateToInt(v.x), truncateToInt(v.y),
            truncateToInt(v.z));
}

static void printDiagnostics()
{
    fputs("\n-----------------------\n", stderr);
    fprintf(stderr, "\nFrame Rate: %4.1f\n", timeH != 0 ? 1.0 / timeH : 0.0);
    fprintf(stderr, "\nDraw Distance: %d\n", VIEW_DISTANCE);
    fputs("\n-----------------------\n", stderr);
    fputs("\nCube Information:\n", stderr);
    printVector("Position", cb.position);
    printVector("Velocity", cb.velocity);
    printVector("Force", cb.force);
    printVector("Torque", cb.torque);
    printVector("Momentum", cb.momentum);
    printVector("Angular Momentum", cb.angularMomentum);
    fputs("\nCamera Information:\n", stderr);
    printVector("Position", cam.position);
}

void handleKeyDown()
{
    const float factorX = spinFactor(cb.angularVelocity.x);
    const float factorZ = spinFactor(cb.angularVelocity.z);
    if (keys[SDLK_DOWN])
        brake();
    else if (keys[SDLK_UP])
        addTorque(cb.heading - 90, FORWARD_GAIN, factorX, factorZ);
    if (keys[SDLK_LEFT])
        steer(cb.heading - 180, factorX, factorZ, timeH * -LEFT_TURN_RATE);
    if (keys[SDLK_RIGHT])
        steer(cb.heading, factorX, factorZ, timeH * RIGHT_TURN_RATE);
    if (keys[SDLK_i])
        printDiagnostics();
    if (keys[SDLK_ESCAPE])
        quit();
}

// ---- contact of the cube with the ground --------------------------------------------------------

namespace
{
struct Contact
{
    float clearance; // height of the corner above the ground; negative below it
    Vector point;
    int corner;
};
} // namespace

static void pushOut(const Contact &contact)
{
    if (!(contact.clearance < 0))
        return;
    const Vector ground =
        ter.normals[worldToTerrainX(&ter, contact.point.x)][worldToTerrainZ(&ter, contact.point.z)];
    handleCollision(&cb, ground, getCornerVelocity(&cb, contact.corner), contact.point,
                    -contact.clearance);
}

// At most two corners are pushed out: the deepest corner, and the deepest of the corners that have
// a lower number. If corner 1 is the deepest, only corner 1 is pushed out.
void collideCubeTerrain()
{
    Contact deepest = {0, {0, 0, 0}, 0}, before = deepest;
    for (int corner = 1; corner <= CUBE_CORNERS; ++corner)
    {
        const Vector point = getCorner(&cb, corner);
        const float clearance = point.y - getHeightAt(&ter, point.x, point.z);
        if (clearance < deepest.clearance || corner == 1)
        {
            before = deepest;
            deepest = {clearance, point, corner};
        }
        if (clearance < 0 && TERRAIN_DEFORMING == 1)
            deformTerrain(&ter, point, getCornerVelocity(&cb, corner).y, DEFORM_DENT);
    }
    pushOut(deepest);
    pushOut(before);
}

// ---- the frame ----------------------------------------------------------------------------------

static void beginFrame()
{
    if (WIRE_FRAME == 1)
    {
        glPolygonMode(GL_FRONT, GL_LINE);
        glPolygonMode(GL_BACK, GL_LINE);
    }
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    setFogRange();
    gluPerspective(FIELD_OF_VIEW, ratio, NEAR_PLANE, VIEW_DISTANCE * 0.5);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

// Sets the height that the eye eases toward in the next step.
static void setCameraHeightGoal()
{
    cam.target.y = getHeightAt(&ter, cam.position.x, cam.position.z) + cam.followDistance;
}

Eye eyeOnCube()
{
    const double ground = getHeightAt(&ter, cb.position.x, cb.position.z);
    const double y = (ground + cb.position.y) * 0.5 + cb.size;
    return {cam.position,       {cb.position.x, y, cb.position.z}, FIELD_OF_VIEW, ratio, NEAR_PLANE,
            VIEW_DISTANCE * 0.5};
}

void lookFrom(const Eye *eye)
{
    const Vector from = eye->position;
    const double *at = eye->target;
    gluLookAt(from.x, from.y, from.z, at[0], at[1], at[2], 0, 1, 0);
}

static void adaptDrawDistance()
{
    if (timeH < FAST_FRAME)
        VIEW_DISTANCE += DISTANCE_STEP;
    if (timeH > SLOW_FRAME && VIEW_DISTANCE > SHORTEST_DISTANCE)
        VIEW_DISTANCE = std::max(VIEW_DISTANCE - DISTANCE_STEP, SHORTEST_DISTANCE);
    if (gameOver == 1)
        VIEW_DISTANCE = std::max(VIEW_DISTANCE, SHORTEST_AFTER_GAME_OVER);
}

static void spendShadowBudget()
{
    if (VIEW_DISTANCE < FULL_DISTANCE)
        shadowSwitchTime += timeH;
    if (shadowSwitchTime >= SHADOW_BUDGET)
        SHADOW = 0;
}

// In wire-frame mode the box that darkens the shadow is drawn as lines and resets only the stencil
// counts under these lines. The boxes of later frames must reset the other counts, wherever they
// are on the screen. Drawing is therefore not limited to a rectangle in this mode.
void drawShadow()
{
    Vector ends[2 * CUBE_CORNERS];
    for (int corner = 1; corner <= CUBE_CORNERS; ++corner)
    {
        ends[2 * corner - 2] = getCorner(&cb, corner);
        ends[2 * corner - 1] = getShadowEnd(&cb, corner);
    }
    const ScreenArea area = screenArea(ends, 2 * CUBE_CORNERS, DISPLAY_WIDTH, DISPLAY_HEIGHT);
    if (WIRE_FRAME == 0)
        glEnable(GL_SCISSOR_TEST);
    glScissor(area.x, area.y, area.width, area.height);
    renderCubeShadow(&cb, cam.position.x, cam.position.y, cam.position.z);
    glDisable(GL_SCISSOR_TEST);
}

void placeAndDrawCube()
{
    float angle;
    Vector axis;
    glPushMatrix();
    quaternionGetAngleAxis(cb.orientation, &angle, &axis);
    glTranslatef(cb.position.x, cb.position.y, cb.position.z);
    glRotatef(radToDec(angle), axis.x, axis.y, axis.z);
    drawCube(&cb);
    glPopMatrix();
}

// The eye stays behind the cube, seen along the heading. When the heading turns, the eye circles
// the cube.
static void showGameOver()
{
    displayGameOver();
    cb.heading = static_cast<float>(cb.heading - timeH * GAME_OVER_SPIN);
}

void drawScreen()
{
    beginFrame();
    glDisable(GL_ALPHA_TEST);
    animate(&cb, peopleLst, tankLst, &cam, &ter, shotLst);
    setCameraHeightGoal();
    const Eye eye = eyeOnCube();
    setView(&eye);
    glPushMatrix();
    lookFrom(&eye);
    drawSkyBox();
    collideCubeTerrain();
    drawTerrain(&ter, cb.position.x, cb.position.z, static_cast<float>(VIEW_DISTANCE));
    drawHorde(peopleLst, &cb);
    drawTanks(tankLst, &cb, &ter);
    adaptDrawDistance();
    spendShadowBudget();
    if (SHADOW == 1)
        drawShadow();
    placeAndDrawCube();
    drawShots(shotLst, &ter);
    glColor3f(0, 0, 0);
    displayScore();
    displaySize();
    if (gameOver == 1)
        showGameOver();
    glPopMatrix();
    clearView();
    glEnable(GL_ALPHA_TEST);
    SDL_GL_SwapBuffers();
}

// ---- sky ----------------------------------------------------------------------------------------

void initSkyBoxTexture()
{
    skyBoxSize = 100;
    if (!loadTexture("Loading skybox texture...\n", "TexSkyBox.tga", GL_RGB, &skyBoxImage,
                     &skyBoxTexName))
        return;
    // GL_CLAMP mixes the border colour into the edges of the walls, where the default, black, would
    // show as dark lines.
    const uint8_t *first = skyBoxImage->imageData;
    const float border[] = {first[0] / 255.0f, first[1] / 255.0f, first[2] / 255.0f, 1};
    glBindTexture(GL_TEXTURE_2D, skyBoxTexName);
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, border);
    glBindTexture(GL_TEXTURE_2D, 0);
}

namespace
{
struct SkyFace
{
    float normal[3];     // into the box
    float corners[4][3]; // in units of skyBoxSize, counter-clockwise from inside
    float texture[4][2];
};
} // namespace

// A wall shows the whole image, the ceiling a patch of it, the floor its first texel.
constexpr SkyFace SKY_FACES[] = {
    {{0, 0, -1},
     {{-1, -1, 1}, {-1, 1, 1}, {1, 1, 1}, {1, -1, 1}},
     {{1, 0}, {1, 1}, {0, 1}, {0, 0}}},
    {{1, 0, 0},
     {{-1, -1, -1}, {-1, 1, -1}, {-1, 1, 1}, {-1, -1, 1}},
     {{1, 0}, {1, 1}, {0, 1}, {0, 0}}},
    {{0, 0, 1},
     {{1, -1, -1}, {1, 1, -1}, {-1, 1, -1}, {-1, -1, -1}},
     {{1, 0}, {1, 1}, {0, 1}, {0, 0}}},
    {{-1, 0, 0},
     {{1, -1, 1}, {1, 1, 1}, {1, 1, -1}, {1, -1, -1}},
     {{1, 0}, {1, 1}, {0, 1}, {0, 0}}},
    {{0, -1, 0},
     {{-1, 1, 1}, {-1, 1, -1}, {1, 1, -1}, {1, 1, 1}},
     {{0.002f, 0.1f}, {0.002f, 0.002f}, {0.1f, 0.002f}, {0.1f, 0.1f}}},
    {{0, 1, 0},
     {{1, -1, 1}, {1, -1, -1}, {-1, -1, -1}, {-1, -1, 1}},
     {{0, 0}, {0, 0}, {0, 0}, {0, 0}}},
};

static void emitSkyFace(const SkyFace &face)
{
    glNormal3fv(face.normal);
    for (int k = 0; k < 4; ++k)
    {
        glTexCoord2fv(face.texture[k]);
        glVertex3f(face.corners[k][0] * skyBoxSize, face.corners[k][1] * skyBoxSize,
                   face.corners[k][2] * skyBoxSize);
    }
}

void drawSkyBox()
{
    glDisable(GL_LIGHTING);
    glDisable(GL_FOG);
    glDisable(GL_DEPTH_TEST); // this also keeps the box out of the depth buffer
    useTexture(skyBoxTexName, GL_REPLACE, GL_CLAMP);
    glPushMatrix();
    glTranslatef(cam.position.x, cam.position.y + SKY_ABOVE_EYE, cam.position.z);
    glBegin(GL_QUADS);
    for (const SkyFace &face : SKY_FACES)
        emitSkyFace(face);
    glEnd();
    glPopMatrix();
    glBindTexture(GL_TEXTURE_2D, 0);
    glEnable(GL_LIGHTING);
    glEnable(GL_FOG);
    glEnable(GL_DEPTH_TEST);
}

// ---- text ---------------------------------------------------------------------------------------

static void ignoreGlutError(const char *, va_list)
{
}

// freeglut ends the process when a character is drawn before glutInit, which would open a second
// connection to the display. With an error handler that returns, freeglut draws the character: the
// font needs only the current OpenGL context.
static void drawCharacters(const char *text)
{
    glutInitErrorFunc(ignoreGlutError);
    for (; *text; ++text)
        glutBitmapCharacter(GLUT_BITMAP_HELVETICA_18, *text);
}

// The text is unlit and in front of everything. It runs to the right from the point above the cube.
static void drawTextAboveCube(const char *text, float height)
{
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glRasterPos3f(cb.position.x, cb.position.y + height, cb.position.z);
    drawCharacters(text);
    glEnable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
}

void displayScore()
{
    static char buffer[32];
    snprintf(buffer, sizeof(buffer), "%d points", cb.score);
    drawTextAboveCube(buffer, SCORE_HEIGHT);
}

void displaySize()
{
    static char buffer[32];
    snprintf(buffer, sizeof(buffer), "%d meters", truncateToInt(cb.size));
    drawTextAboveCube(buffer, SIZE_HEIGHT);
}

void displayGameOver()
{
    drawTextAboveCube("GAME OVER - Press Escape", 0);
}
