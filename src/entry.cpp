// The entry of the process. On Linux, SDL 1.2 has no main function that calls SDL_main.
#include "main.h"

int main(int argc, char **argv)
{
    return SDL_main(argc, argv);
}
