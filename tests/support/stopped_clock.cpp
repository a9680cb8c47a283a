// In the place of SDL: a clock that shows what a test has set, and frames that stay in the buffer
// from which they can be read.
#include "fixtures.h"

extern "C" Uint32 __wrap_SDL_GetTicks()
{
    return fakeTicks;
}

extern "C" void __wrap_SDL_GL_SwapBuffers()
{
}
