// paint - paints the game's eight images into a folder, or its icons.
#include "land.h"
#include "painters.h"

#include <cstdio>
#include <cstring>

int main(int argc, char **argv)
{
    const char *option = argc == 3 ? argv[2] : "";
    const int png = strcmp(option, "--png") == 0;
    const int icons = strcmp(option, "--icons") == 0;
    if (argc != 2 && !png && !icons)
    {
        fprintf(stderr, "usage: paint FOLDER [--png | --icons]\n");
        return 2;
    }
    if (icons)
        return paintIcons(argv[1]) ? 0 : 1;
    const Output output = {argv[1], png};
    const Land land = makeLand(1, 501);
    const int done = paintLand(output, land) && paintGround(output, land) && paintCube(output) &&
                     paintSky(output) && paintTank(output) && paintPeople(output);
    return done ? 0 : 1;
}
