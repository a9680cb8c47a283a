// game.h - plays the real game in a child process, from SDL_main to quit, and gives back what it
// printed. Functions of game.cpp take the place of SDL's clock, key states and video mode and of
// malloc and calloc, so that a test decides about time, keys and memory.
#pragma once

#include "fixtures.h"

#include <functional>

struct Play
{
    int frames = 0; // after which Escape is held; 0: a start with picture boards, and no frame
    // Called before each frame, and before Escape is held.
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
    long kilobytes[2];  // peak of memory early in the game and at its end
    Vector figures[12]; // of the world, which the script chooses
    int allocations;
    Allocation allocation[MOST_ALLOCATIONS];
};

extern Report *const report;
extern Play play; // the game that is played; read by scripts

// Plays a game and expects that it draws all its frames, quits with the lines of a quit and ends
// with status 0. Returns what it wrote to standard error before it quit. Text that it wrote to
// standard output is part of that, after "out: ".
std::string playGame(const Play &script);

// For scripts, in the child process. A condition that is false ends the child with status 1.
void require(bool condition, const char *fault);
std::vector<Person> crowd(); // everybody who is alive
void requireWholeWorld();    // everybody is in the lists once; the score fits the number of crushed
void rollAround();           // holds keys that roll the cube from place to place

// An image whose pixels show a pattern. bytes is the size of its pixels, which need not fit the
// header.
void writePattern(const char *path, int width, int height, int depth, int type, long bytes);

// In a folder with the eight images of a small game.
struct Process : testing::Test
{
    Process();
    void makeImages(int landSide);
    std::string startLog(bool hasPictureBoards = true) const;

    Folder folder;
    int side; // samples along each side of the land
};
