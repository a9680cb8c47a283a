#include "texture.h"

#include "image.h"

#include <GL/gl.h>

#include <cstdio>

int loadTexture(const char *loadingLine, const char *file, int internalFormat, TgaImage **image,
                uint32_t *texture)
{
    glGenTextures(1, texture);
    fputs(loadingLine, stderr);
    *image = tgaLoad(file);
    if (!tgaIsRGB(*image))
    {
        fputs("   ...couldn't load TGA\n", stderr);
        return 0;
    }
    fputs("   ...done\n", stderr);
    glBindTexture(GL_TEXTURE_2D, *texture);
    fputs("Initialising texture...\n", stderr);
    glTexImage2D(GL_TEXTURE_2D, 0, internalFormat, (*image)->width, (*image)->height, 0, GL_RGB,
                 GL_UNSIGNED_BYTE, (*image)->imageData);
    fputs("   ...done\n", stderr);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, 0);
    return 1;
}

void useTexture(uint32_t texture, int environment, int wrap)
{
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, environment);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
}
