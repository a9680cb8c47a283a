// paint - paints the game's eight images into a folder, or its icons.
#include "land.h"
#include "painters.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char **argv)
{
    const char *option = argc == 3 ? argv[2] : "";
    const int png = strcmp(option, "--png") == 0;
    const int icons = strcmp(option, "--icons") == 0;
    if (argc != 2 && argc != 4 && !png && !icons)
    {
        fprintf(stderr, "usage: paint FOLDER [--png | --icons | SEED SIDE]\n");
        return 2;
    }
    if (icons)
        return paintIcons(argv[1]) ? 0 : 1;
    const Output output = {argv[1], png};
    const uint32_t seed = argc == 4 ? uint32_t(strtoul(argv[2], nullptr, 10)) : 1;
    const Land land = makeLand(seed, argc == 4 ? atoi(argv[3]) : 751);
    const int done = paintLand(output, land) && paintGround(output, land) && paintCube(output) &&
                     paintSky(output) && paintTank(output) && paintPeople(output);
    return done ? 0 : 1;
}
