// texture.h - textures of RGB images, for the sky, the ground, the cube and the tanks. Without an
// OpenGL context the images are loaded, but the names of the textures are not set.
#pragma once

#include <cstdint>

struct TgaImage;

// Generates a texture name, loads the file and uploads it with that internal format. Prints
// loadingLine and the progress on standard error. Returns 1; GL_TEXTURE_2D is then enabled and no
// texture is bound. Returns 0 when the file is not an RGB image: the texture then has no picture,
// and polygons that use it are drawn untextured. The caller owns *image in both cases.
int loadTexture(const char *loadingLine, const char *file, int internalFormat, TgaImage **image,
                uint32_t *texture);
// Binds the texture and sets its environment mode, one wrap mode for s and t, and linear filters.
void useTexture(uint32_t texture, int environment, int wrap);
