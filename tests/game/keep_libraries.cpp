// Preloaded for the leak checker, so that the OpenGL driver is not unloaded at the end: the checker
// could not tell whose memory it is that an unloaded driver has not freed.
extern "C" int dlclose(void *)
{
    return 0;
}
