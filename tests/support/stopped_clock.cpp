// These functions replace those of SDL. The clock shows the time that a test has set. A frame stays
// in the back buffer, where the test can read it.
#include "fixtures.h"

extern "C" Uint32 __wrap_SDL_GetTicks()
{
    return fakeTicks;
}

extern "C" void __wrap_SDL_GL_SwapBuffers()
{
}
