// world.h - a small land without anybody on it, for tests that need no display.
#pragma once

#include "animate.h"
#include "fixtures.h"

// The land is flat at height 0, of one colour, and has 210 samples along x and 190 along z. The
// cube is where every game starts, in the air and outside of this small land. The clock shows 0.
// People and tanks turn back 625 units from the middle of the land.
struct World : EmptyWorld
{
    World()
    {
        writeFile("Map.tga", tga(2, 210, 210, 32, {9, 9, 9, 0}, 210 * 210)); // height 0
        writeFile("MapTex.tga", tga(2, 210, 210, 32, {64, 128, 192, 0}, 210 * 210));
        writeFile("TexNoise.tga", tga(2, 1, 1, 24, {255, 255, 255}));
        initTerrain(&ter);
        ter.height = 190; // so that code that exchanges width and height fails
        ter.worldDepth = 4750;
        ter.blocksZ = 7;
        makeList(peopleLst, 0, 512, 401, 25); // buckets of 51 units
        fakeTicks = 0;
        initAnimation();
        animate(&cb, peopleLst, tankLst, &cam, &ter, shotLst); // the next step begins at time 0
        gameOver = 0;
        cb = {};
        initCube(&cb);
        initCamera(&cam);
    }
};
