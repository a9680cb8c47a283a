// paint_icons - paints the icons of the game into an existing folder, as <size>.png.
#include "painters.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    if (argc != 2)
    {
        fputs("usage: paint_icons FOLDER\n", stderr);
        return 2;
    }
    return paintIcons(argv[1]) ? EXIT_SUCCESS : EXIT_FAILURE;
}
