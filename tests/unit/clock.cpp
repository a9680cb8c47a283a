// clock.cpp - in place of SDL: a clock that tests set, and finished frames that stay readable.
#include "fixtures.h"

extern "C" uint32_t __wrap_SDL_GetTicks()
{
    return fakeTicks;
}

extern "C" void __wrap_SDL_GL_SwapBuffers()
{
}
