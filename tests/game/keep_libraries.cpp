// This library is preloaded for the leak checker and keeps the OpenGL driver loaded to the end. If
// a library has been unloaded, the checker can no longer tell that a leak comes from this library.
extern "C" int dlclose(void *)
{
    return 0;
}
