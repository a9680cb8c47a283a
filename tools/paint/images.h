// images.h - the images of a land: the painters collect them, and one call writes them all.
#pragma once

#include "canvas.h"

#include <string>
#include <vector>

struct Image
{
    const char *name; // of the file, without ".tga"
    int width, height;
    int depth;                        // bits per pixel: 8 grey, 24 colour, 32 colour and alpha 255
    std::vector<unsigned char> bytes; // rows from the bottom up
};

using Images = std::vector<Image>;

void addColours(Images &images, const char *name, const Grid<Colour> &canvas, int depth = 24);
void addGreys(Images &images, const char *name, const Grid<unsigned char> &greys);

unsigned char toByte(float channel); // 0..1 to 0..255; what lies outside is clamped

std::string pathOf(const std::string &folder, const char *name); // <folder>/<name>.tga

// Writes each image as <folder>/<name>.tga and makes the folder if it is missing; folders above it
// must exist. Each image is first written under a temporary name. When all are complete, all are
// renamed. Signals wait until then. So no image in the folder is ever half-written, whatever fails
// or stops the program. If an image is there already and `replace` is not set, that is a failure,
// and the image is kept. Returns an empty string, or one line that says what failed.
std::string saveImages(const std::string &folder, const Images &images, bool replace);

// Tries whether saveImages could write into the folder, and leaves no trace. Returns an empty
// string, or one line that says what failed.
std::string findFault(const std::string &folder);
