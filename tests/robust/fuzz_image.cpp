// Gives arbitrary bytes to the image module as a file. The module loads, converts and saves the
// image and loads what it saved.
#include "image.h"

#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

constexpr char INPUT[] = "/proc/self/fd/100", OUTPUT[] = "/proc/self/fd/101"; // files in memory

static void require(bool holds)
{
    if (!holds)
        abort();
}

static size_t pixelBytes(const TgaImage *image)
{
    return static_cast<size_t>(image->width * image->height) * tgaBytesPerPixel(image);
}

// Saves the pixels under another name and returns what a load gives back.
static TgaImage *saveAndLoadAgain(const TgaImage *image)
{
    uint8_t *copy = static_cast<uint8_t *>(malloc(pixelBytes(image) + 1));
    memcpy(copy, image->imageData, pixelBytes(image));
    require(tgaSave(OUTPUT, image->width, image->height, image->pixelDepth, copy) == TGA_OK);
    TgaImage *again = tgaLoad(OUTPUT);
    require(again->status == TGA_OK && again->width == image->width);
    require(again->height == image->height && again->pixelDepth == image->pixelDepth);
    require(memcmp(again->imageData, image->imageData, pixelBytes(image)) == 0);
    return again;
}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    require(dup2(memfd_create("input", 0), 100) == 100);
    require(dup2(memfd_create("output", 0), 101) == 101);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    require(ftruncate(100, 0) == 0);
    require(pwrite(100, data, size, 0) == static_cast<ssize_t>(size));
    TgaImage *image = tgaLoad(INPUT);
    require(image->status >= TGA_ERROR_READ && image->status <= TGA_OK && image->status != 0);
    require((image->status == TGA_OK) == (image->imageData != nullptr));
    if (image->status == TGA_OK)
    {
        TgaImage *keyed = saveAndLoadAgain(image);
        tgaRGBTransparency(keyed); // makes four bytes of each pixel
        tgaDestroy(saveAndLoadAgain(keyed));
        tgaDestroy(keyed);
        tgaRGBtoGreyscale(image);
        tgaDestroy(saveAndLoadAgain(image));
    }
    tgaDestroy(image);
    return 0;
}
