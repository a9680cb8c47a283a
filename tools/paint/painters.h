// painters.h - one function for each subject: it paints the images of the subject and adds them.
#pragma once

#include "images.h"

struct Land;

void paintLand(Images &images, const Land &land);   // Map: the heights
void paintGround(Images &images, const Land &land); // MapTex, TexNoise: the colours of the land
void paintCube(Images &images);                     // TexCube
void paintSky(Images &images);                      // TexSkyBox
void paintTank(Images &images);                     // TexTank
void paintPeople(Images &images);                   // TexPerson, TexPersonBack

// Paints the icons into <folder>/<size>.png. Returns true, or false after a line on standard error.
bool paintIcons(const char *folder);

// What the icons show.
Canvas makeCubeFace();
Canvas makePlainCubeFace(); // without the details that a face of a few pixels cannot show
Canvas makeWalker();        // black wherever the figure is not
