// main.h - the world's globals, start-up, the main loop, controls, the contact of the cube with the
// ground, the frame, the sky, the text and quitting. World units, seconds, degrees.
#pragma once

#include <cstdint>

struct Camera;
struct Cube;
struct Eye;
struct PeopleList;
struct ShotList;
struct TankList;
struct Terrain;
struct TgaImage;

constexpr int DISPLAY_WIDTH = 1024; // pixels
constexpr int DISPLAY_HEIGHT = 768;
constexpr int PEOPLE = 20000; // in a new world
constexpr int TANKS = 1500;

// The world. makeWorld allocates the lists; quit releases everything here.
extern Cube cb;
extern Terrain ter;
extern Camera cam;
extern PeopleList *peopleLst;
extern TankList *tankLst;
extern ShotList *shotLst;

extern uint8_t *keys;         // SDL's key states by key code, 1 while held; SDL owns them
extern int VIEW_DISTANCE;     // world units; the far plane and the end of the fog are at half of it
extern int SHADOW;            // 1: the shadow is drawn; on a slow machine set to 0 until the end
extern int TERRAIN_DEFORMING; // 1 while the cube presses dents into the ground
extern int WIRE_FRAME;        // 1: every polygon is drawn as lines
extern int TRANSPARENCY;      // 1: people are drawn as pictures; makeList reads this
extern int gameOver;          // 1 once the cube has shrunk below its smallest size
extern float shadowSwitchTime; // seconds spent below the full draw distance
extern float ratio;            // width / height of the display
extern float timeH;            // length of the last world step
extern float skyBoxSize;       // half the edge of the sky box
extern uint32_t skyBoxTexName; // OpenGL name of its texture
extern TgaImage *skyBoxImage;  // owned

// Starts the game and runs its main loop; the arguments are ignored. Never returns: the process
// ends in quit.
extern "C" int SDL_main(int argc, char **argv);
// Allocates the lists and fills the whole world from the images of the working directory. Returns
// 1, or 0 after reporting what failed; quit then releases what was made. Without an OpenGL context
// the world can be stepped, but not drawn.
int makeWorld();
// Sets the OpenGL state that stays for the whole run and loads the sky's texture. Also clears the
// stencil buffer, since frames do not clear it. Call once. Without an OpenGL context this only sets
// ratio and skyBoxSize and loads the image.
void setupOpengl(int width, int height);
void processEvents();     // applies the held keys, drains the event queue; may quit
[[noreturn]] void quit(); // frees the world, closes the display, ends with exit status 0
// Turns the held keys into torque and heading of cb. Prints diagnostics while I is held, and quits
// when Escape is held.
void handleKeyDown();

// The frame: steps the world, draws it, swaps the buffers.
void drawScreen();
Eye eyeOnCube();               // the eye of a frame: at cam, looking at cb
void lookFrom(const Eye *eye); // multiplies the current matrix by the eye's gluLookAt
void collideCubeTerrain();     // dents the ground under cb and pushes cb out of it
void initSkyBoxTexture();      // from TexSkyBox.tga; without it the sky is untextured
void drawSkyBox();             // around the eye, behind everything
void drawShadow();             // of cb, only in the part of the screen where it can be seen
void placeAndDrawCube();       // at the position and in the orientation of cb
void displayScore();           // this and the next two: above cb, in the current colour
void displaySize();
void displayGameOver();
