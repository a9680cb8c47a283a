// texture.h - textures of RGB images, for the sky, the ground, the cube and the tanks. Without an
// OpenGL context the images are loaded, but the names of the textures are not set.
#pragma once

#include <cstdint>

struct TgaImage;

// Names a texture, loads the file and uploads it under that internal format; loadingLine and what
// follows go to standard error. Returns 1, or 0 when the file is not an RGB image: the texture then
// has no picture, and what is drawn with it is untextured. The caller owns *image either way.
int loadTexture(const char *loadingLine, const char *file, int internalFormat, TgaImage **image,
                uint32_t *texture);
// Binds it with an environment mode, the same wrap mode in s and t, and linear filters.
void useTexture(uint32_t texture, int environment, int wrap);
