// The process entry: on Linux, SDL 1.2 has no main of its own that calls SDL_main.
#include "main.h"

int main(int argc, char **argv)
{
    return SDL_main(argc, argv);
}
