#include "image.h"

#include <GL/gl.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <sys/stat.h>
#include <utility>

int savedImages = 0;

constexpr uint8_t TYPE_COLOUR_MAPPED = 1;
constexpr uint8_t TYPE_TRUE_COLOUR = 2;
constexpr uint8_t TYPE_GREY = 3;
constexpr int SERIES_NAME_ROOM = 16; // ".tga", the longest counter, a sign and the terminating null

int tgaBytesPerPixel(const TgaImage *image)
{
    return image->pixelDepth / 8;
}

bool tgaIsRGB(const TgaImage *image)
{
    return image && image->status == TGA_OK && image->width > 0 && image->height > 0 &&
           tgaBytesPerPixel(image) >= 3;
}

// Bytes that the header announces for the pixels, or -1 if they overflow a signed 32-bit integer.
static int32_t pixelBytes(const TgaImage *image)
{
    const int64_t bytes =
        static_cast<int64_t>(image->width) * image->height * tgaBytesPerPixel(image);
    if (bytes < 0 || bytes > std::numeric_limits<int32_t>::max())
        return -1;
    return static_cast<int32_t>(bytes);
}

// Bytes between the stream's position and its end, or -1 when they cannot be determined.
static long bytesLeft(FILE *stream)
{
    const long here = ftell(stream);
    if (here < 0 || fseek(stream, 0, SEEK_END) != 0)
        return -1;
    const long end = ftell(stream);
    return fseek(stream, here, SEEK_SET) == 0 ? end - here : -1;
}

// tgaLoad opens no pipes and no devices: opening a pipe waits for a writer, and reading a device
// may never end.
static bool isPipeOrDevice(const char *path)
{
    struct stat info;
    return stat(path, &info) == 0 && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode);
}

static void swapRedAndBlue(uint8_t *pixels, int64_t bytes, int bytesPerPixel)
{
    if (bytesPerPixel <= 2)
        return;
    for (int64_t i = 0; i + bytesPerPixel <= bytes; i += bytesPerPixel)
        std::swap(pixels[i], pixels[i + 2]);
}

static int32_t loadPixels(FILE *stream, TgaImage *image)
{
    const int32_t bytes = pixelBytes(image);
    if (bytes < 0)
        return TGA_ERROR_MEMORY;
    // Without this check, a header without pixels could make us allocate two gigabytes.
    if (bytesLeft(stream) < bytes)
        return TGA_ERROR_READ;
    image->imageData = static_cast<uint8_t *>(malloc(bytes > 0 ? bytes : 1));
    if (!image->imageData)
        return TGA_ERROR_MEMORY;
    tgaLoadImageData(stream, image);
    return ferror(stream) ? TGA_ERROR_READ : TGA_OK;
}

static int32_t loadStream(FILE *stream, TgaImage *image)
{
    tgaLoadHeader(stream, image);
    if (ferror(stream))
        return TGA_ERROR_READ;
    if (image->imageType == TYPE_COLOUR_MAPPED)
        return TGA_ERROR_COLOUR_MAP;
    if (image->imageType != TYPE_TRUE_COLOUR && image->imageType != TYPE_GREY)
        return TGA_ERROR_TYPE;
    return loadPixels(stream, image);
}

TgaImage *tgaLoad(const char *path)
{
    TgaImage *image = static_cast<TgaImage *>(calloc(1, sizeof(TgaImage)));
    if (!image)
        return nullptr;
    FILE *stream = isPipeOrDevice(path) ? nullptr : fopen(path, "rb");
    if (!stream)
    {
        image->status = TGA_ERROR_OPEN;
        return image;
    }
    image->status = loadStream(stream, image);
    fclose(stream);
    return image;
}

// One little-endian field of one or two bytes; 0 when the stream ends or fails before that.
static uint16_t readField(FILE *stream, size_t size)
{
    uint8_t bytes[2] = {0, 0};
    if (feof(stream) || ferror(stream) || fread(bytes, 1, size, stream) != size)
        return 0;
    return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

void tgaLoadHeader(FILE *stream, TgaImage *image)
{
    readField(stream, 1); // ID length
    readField(stream, 1); // colour-map type
    image->imageType = static_cast<uint8_t>(readField(stream, 1));
    readField(stream, 2); // first colour-map index
    readField(stream, 2); // colour-map length
    readField(stream, 1); // colour-map entry size
    readField(stream, 2); // x origin
    readField(stream, 2); // y origin
    image->width = static_cast<int16_t>(readField(stream, 2));
    image->height = static_cast<int16_t>(readField(stream, 2));
    image->pixelDepth = static_cast<uint8_t>(readField(stream, 1));
    readField(stream, 1); // descriptor
}

void tgaLoadImageData(FILE *stream, TgaImage *image)
{
    const int32_t bytes = pixelBytes(image);
    if (bytes <= 0)
        return;
    const size_t read = fread(image->imageData, 1, bytes, stream);
    memset(image->imageData + read, 0, bytes - read);
    swapRedAndBlue(image->imageData, bytes, tgaBytesPerPixel(image));
}

void tgaDestroy(TgaImage *image)
{
    if (!image)
        return;
    free(image->imageData);
    free(image);
}

static bool holdsRGB(const TgaImage *image)
{
    return image->imageData && image->width > 0 && image->height > 0 &&
           tgaBytesPerPixel(image) >= 3;
}

static void replacePixels(TgaImage *image, uint8_t *pixels, uint8_t depth, uint8_t type)
{
    free(image->imageData);
    image->imageData = pixels;
    image->pixelDepth = depth;
    image->imageType = type;
}

void tgaRGBtoGreyscale(TgaImage *image)
{
    if (image->pixelDepth == 8 || !holdsRGB(image))
        return;
    const int32_t count = image->width * image->height;
    uint8_t *grey = static_cast<uint8_t *>(malloc(count));
    if (!grey)
        return;
    const uint8_t *source = image->imageData;
    for (int32_t i = 0; i < count; ++i, source += tgaBytesPerPixel(image))
        grey[i] = static_cast<uint8_t>(0.3 * source[0] + 0.59 * source[1] + 0.11 * source[2]);
    replacePixels(image, grey, 8, TYPE_GREY);
}

void tgaRGBTransparency(TgaImage *image)
{
    if (!holdsRGB(image))
        return;
    const int64_t count = static_cast<int64_t>(image->width) * image->height;
    uint8_t *keyed = static_cast<uint8_t *>(malloc(count * 4));
    if (!keyed)
        return;
    const uint8_t *source = image->imageData;
    for (uint8_t *out = keyed; out != keyed + count * 4; out += 4, source += 3)
    {
        const bool key = source[0] == 255 && source[1] == 0 && source[2] == 255;
        memcpy(out, source, 3);
        out[3] = 255;
        if (key)
            memset(out, 0, 4);
    }
    replacePixels(image, keyed, 32, TYPE_TRUE_COLOUR);
}

static void writeField(FILE *stream, int value, size_t size)
{
    const uint8_t bytes[2] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)};
    fwrite(bytes, 1, size, stream);
}

int tgaSave(const char *path, int16_t width, int16_t height, uint8_t depth, uint8_t *pixels)
{
    FILE *stream = fopen(path, "wb");
    if (!stream)
        return TGA_ERROR_OPEN;
    writeField(stream, 0, 1);
    writeField(stream, 0, 1);
    writeField(stream, depth == 24 || depth == 32 ? TYPE_TRUE_COLOUR : TYPE_GREY, 1);
    writeField(stream, 0, 2);
    writeField(stream, 0, 2);
    writeField(stream, 0, 1);
    writeField(stream, 0, 2);
    writeField(stream, 0, 2);
    writeField(stream, width, 2);
    writeField(stream, height, 2);
    writeField(stream, depth, 1);
    writeField(stream, 0, 1);

    const int64_t bytes = static_cast<int64_t>(width) * height * (depth / 8);
    if (bytes > 0)
    {
        swapRedAndBlue(pixels, bytes, depth / 8);
        fwrite(pixels, 1, bytes, stream);
    }
    fclose(stream);
    free(pixels);
    return TGA_OK;
}

int tgaSaveSeries(const char *prefix, int16_t width, int16_t height, uint8_t depth, uint8_t *pixels)
{
    const size_t room = strlen(prefix) + SERIES_NAME_ROOM;
    char *name = static_cast<char *>(malloc(room));
    if (!name)
        return TGA_ERROR_MEMORY;
    snprintf(name, room, "%s%d.tga", prefix, savedImages);
    const int result = tgaSave(name, width, height, depth, pixels);
    if (result == TGA_OK)
        ++savedImages;
    free(name);
    return result;
}

int tgaGrabScreenSeries(const char *prefix, int x0, int y0, int x1, int y1)
{
    const int64_t width = static_cast<int64_t>(x1) - x0;
    const int64_t height = static_cast<int64_t>(y1) - y0;
    constexpr int64_t LONGEST = std::numeric_limits<int16_t>::max();
    if (width <= 0 || height <= 0 || width > LONGEST || height > LONGEST)
        return TGA_ERROR_MEMORY;
    uint8_t *pixels = static_cast<uint8_t *>(calloc(width * height, 4));
    if (!pixels)
        return TGA_ERROR_MEMORY;
    glReadPixels(x0, y0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_RGBA,
                 GL_UNSIGNED_BYTE, pixels);
    const int result = tgaSaveSeries(prefix, static_cast<int16_t>(width),
                                     static_cast<int16_t>(height), 32, pixels);
    if (result != TGA_OK)
        free(pixels);
    return result;
}
