// paint - paints the game's eight images into a folder: paint FOLDER [--png]
#include "land.h"
#include "painters.h"

#include <cstdio>
#include <cstring>

int main(int argc, char **argv)
{
    const int png = argc == 3 && strcmp(argv[2], "--png") == 0;
    if (argc != 2 && !png)
    {
        fprintf(stderr, "usage: paint FOLDER [--png]\n");
        return 2;
    }
    const Output output = {argv[1], png};
    const Land land = makeLand();
    const int done = paintLand(output, land) && paintGround(output, land) && paintCube(output) &&
                     paintSky(output) && paintTank(output) && paintPeople(output);
    return done ? 0 : 1;
}
