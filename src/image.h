// image.h - uncompressed TGA files: load, convert, save under numbered names, grab the screen.
// Pixel rows keep the order of the file (bottom row first for the usual origin), so that OpenGL
// takes a buffer as it is. Colours are red, green, blue (alpha) in memory.
#pragma once

#include <cstdint>
#include <cstdio>

struct TgaImage
{
    int32_t status;     // 1 usable; otherwise one of the negative codes below
    uint8_t imageType;  // 2 true-colour, 3 greyscale
    uint8_t pixelDepth; // bits per pixel
    int16_t width;      // pixels per row
    int16_t height;     // rows
    uint8_t *imageData; // width * height * bytes per pixel; owned; null until it is allocated
};

constexpr int32_t TGA_OK = 1;
constexpr int32_t TGA_ERROR_TYPE = -1;       // neither true-colour nor grey, or run-length encoded
constexpr int32_t TGA_ERROR_MEMORY = -2;     // a pixel buffer of that size cannot be allocated
constexpr int32_t TGA_ERROR_COLOUR_MAP = -3; // colour-mapped
constexpr int32_t TGA_ERROR_READ = -4;       // read error, or fewer bytes than the header announces
constexpr int32_t TGA_ERROR_OPEN = -5;       // no such file, or it cannot be created

extern int savedImages; // the number of the next numbered file; never decreases

// Queries
int tgaBytesPerPixel(const TgaImage *image);
// Whether the image was loaded, has pixels and at least three bytes for each of them, as an upload
// of RGB pixels needs. Accepts null.
bool tgaIsRGB(const TgaImage *image);

// Loading. tgaLoad returns a record, or null if the record itself cannot be allocated. The status
// of the record tells whether loading succeeded. The caller releases the record with tgaDestroy.
TgaImage *tgaLoad(const char *path);
void tgaLoadHeader(FILE *stream, TgaImage *image);    // 18 bytes; fields missing in the file are 0
void tgaLoadImageData(FILE *stream, TgaImage *image); // fills imageData, which must be allocated
void tgaDestroy(TgaImage *image);                     // accepts null

// Conversions in place, to a pixelDepth of 8 or 32. An image stays as it is if it has no pixels, if
// it has fewer than three bytes for each pixel, or if there is not enough memory.
void tgaRGBtoGreyscale(TgaImage *image);  // 0.3 r + 0.59 g + 0.11 b, truncated
void tgaRGBTransparency(TgaImage *image); // of 24 bits: magenta becomes transparent black

// Saving. depth is in bits per pixel; pixels is a malloc buffer. Returns 1 after freeing pixels, or
// TGA_ERROR_OPEN, after which the caller still owns pixels.
int tgaSave(const char *path, int16_t width, int16_t height, uint8_t depth, uint8_t *pixels);
// Saves as "<prefix><number>.tga". Returns what tgaSave does, or TGA_ERROR_MEMORY. A failed save
// does not use up a number.
int tgaSaveSeries(const char *prefix, int16_t width, int16_t height, uint8_t depth,
                  uint8_t *pixels);
// Saves a rectangle of the read buffer as a 32-bit image: columns x0 to x1 - 1, rows y0 to y1 - 1,
// from the bottom left. Call it between the last drawing command and the swap. Returns what
// tgaSaveSeries does, or TGA_ERROR_MEMORY for a rectangle that is empty, too large for a TGA file
// or for memory. Without an OpenGL context all pixels are 0.
int tgaGrabScreenSeries(const char *prefix, int x0, int y0, int x1, int y1);
