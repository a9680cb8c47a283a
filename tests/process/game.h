// game.h - plays the real game in a child process, from SDL_main to quit, and gives back what it
// printed. Functions of game.cpp take the place of SDL's clock, key states and video mode and of
// malloc and calloc, so that a test decides about time, keys and memory.
#pragma once

#include "fixtures.h"

#include <functional>

struct Play
{
    // Escape is held after this number of frames. If it is 0, the game quits right after its start,
    // and people are drawn as pictures.
    int frames = 0;
    // Called before each frame, and once more before Escape is held.
    std::function<void(int frame)> script = [](int) {};
    int (*step)(int frame) = [](int) { return 33; }; // milliseconds from one frame to the next
    const char *videoDriver = "dummy";               // of SDL
    bool isDrawn = false; // by OpenGL on the driver "x11"; otherwise OpenGL calls do nothing
    bool hasOpenGL = true;
    int failingCall = 0;      // number of the allocation that fails, from 1; 0: none fails
    bool failsInPlay = false; // the number refers to allocations after the start-up
};

typedef std::pair<const void *, size_t> Allocation; // the calling code, and how many bytes

// What the child process tells the tests.
struct Report
{
    static constexpr int MOST_ALLOCATIONS = 500000;

    int frames; // that were drawn
    uint64_t hash;
    long kilobytes[2];  // the most memory used so far, early in the game and at its end
    Vector figures[12]; // what the script measures in the world
    int allocations;
    Allocation allocation[MOST_ALLOCATIONS];
};

extern Report *const report;
extern Play play; // the game that is played; read by scripts

// Plays a game and expects that it draws all its frames, prints the lines of quit.txt when it quits
// and ends with status 0. Returns what the game printed before it quit, on both standard error and
// standard output. Each piece of text from standard output begins with "out: ".
std::string playGame(const Play &script);

// For scripts, in the child process. A condition that is false ends the child with status 1.
void require(bool condition, const char *fault);
std::vector<Person> crowd(); // everybody who is alive
// Requires that nobody is in the lists twice, that the newest shot is the first, that the game
// counts its people correctly and that the score matches the numbers of crushed people and tanks.
void requireWholeWorld();
void rollAround(); // holds keys that roll the cube from place to place

// Writes an image whose pixels show a pattern. bytes is the size of the pixels in the file, which
// need not agree with the header.
void writePattern(const char *path, int width, int height, int depth, int type, long bytes);

// A test whose working directory contains the eight images of a small game.
struct Process : testing::Test
{
    Process();
    void makeImages(int landSide);
    std::string startLog(bool hasPictureBoards = true) const;

    Folder folder;
    int side; // samples along each side of the land
};
