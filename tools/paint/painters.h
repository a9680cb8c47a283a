// painters.h - one function per subject; each returns 1, or 0 when a file cannot be written.
#pragma once

#include "canvas.h"

struct Land;

int paintLand(const Output &output, const Land &land);   // Map: the heights
int paintGround(const Output &output, const Land &land); // MapTex, TexNoise: the land's colours
int paintCube(const Output &output);                     // TexCube
int paintSky(const Output &output);                      // TexSkyBox
int paintTank(const Output &output);                     // TexTank
int paintPeople(const Output &output);                   // TexPerson, TexPersonBack

// The icons, into <folder>/<size>.png.
int paintIcons(const char *folder);

// What the icons show of the game's things.
Canvas makeCubeFace();
Canvas makePlainCubeFace(); // what is left of it to see when it is a few pixels wide
Canvas makeWalker();        // black where there is nothing of him
