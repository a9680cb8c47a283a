// canvas.h - what all painters share: grids of numbers and colours, soft edges, noise, writing out.
// Colours run from 0 to 1 as they stand in the file; x runs right and y up, so row 0 is the bottom.
// Only +, -, *, /, sqrt and floor are used, which round alike on every machine: the images must
// come out the same to the byte wherever they are painted.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

struct Colour
{
    float r, g, b;
};

struct Paint
{
    Colour colour;
    float opacity; // 0 clear .. 1 opaque
};

template <typename T> struct Grid
{
    int width, height;
    std::vector<T> cells;

    Grid(int w, int h, T fill = T()) : width(w), height(h), cells(size_t(w) * size_t(h), fill)
    {
    }
    T &at(int x, int y)
    {
        return cells[size_t(y) * size_t(width) + size_t(x)];
    }
    const T &at(int x, int y) const
    {
        return cells[size_t(y) * size_t(width) + size_t(x)];
    }
    const T &clamped(int x, int y) const
    {
        return at(std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1));
    }
    bool holds(int x, int y) const
    {
        return x >= 0 && y >= 0 && x < width && y < height;
    }
    template <typename Function> void paint(Function colourAt) // of x and y, row by row
    {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                at(x, y) = colourAt(x, y);
    }
};

using Field = Grid<float>;

struct Canvas : Grid<Colour>
{
    float unit; // texels per unit of the coordinates given to the functions that draw shapes

    Canvas(int w, int h, float texelsPerUnit = 1, Colour fill = Colour())
        : Grid(w, h, fill), unit(texelsPerUnit)
    {
    }
};

struct Box // or the two ends of a line
{
    float x0, y0, x1, y1;
};

constexpr Colour hex(unsigned rgb) // 0xRRGGBB
{
    return {float(rgb >> 16 & 255) / 255, float(rgb >> 8 & 255) / 255, float(rgb & 255) / 255};
}
constexpr Colour operator*(Colour c, float k)
{
    return {c.r * k, c.g * k, c.b * k};
}
constexpr Colour operator*(Colour a, Colour b)
{
    return {a.r * b.r, a.g * b.g, a.b * b.b};
}
constexpr Colour operator+(Colour a, Colour b)
{
    return {a.r + b.r, a.g + b.g, a.b + b.b};
}
constexpr float mix(float a, float b, float k)
{
    return a + (b - a) * k;
}
constexpr Colour mix(Colour a, Colour b, float k)
{
    return {mix(a.r, b.r, k), mix(a.g, b.g, k), mix(a.b, b.b, k)};
}
constexpr float square(float v)
{
    return v * v;
}

// 0 at from and before, 1 at to and beyond, an S between; from may be the larger one.
float soft(float from, float to, float v);
float length(float x, float y);
// v up to the shoulder, then ever more slowly toward the limit.
float pressed(float v, float shoulder, float limit);

float segmentDistance(float x, float y, Box ends);

// 0 <= value < 1, a fixed scatter over the whole numbers.
float scatter(int x, int y, int seed);

// Gradient noise of about -1..1 with cells of size 1, which repeats every `period` cells along x
// and y (0: never). The fractal adds octaves of half the size and `gain` times the strength each.
float noiseAt(float x, float y, int period, int seed);
float fractal(float x, float y, int period, int octaves, float gain, int seed);

// The mean over a square of 2 * radius + 1 cells, the edge cells repeated outside the grid.
Field blurred(const Field &field, int radius);

// For each cell the distance, in cells, to the nearest cell whose value lies from low to high.
// Diagonal steps are 1.4 cells long, so distances are up to 8 % too long. The distance is huge if
// no cell has such a value.
Field distanceTo(const Field &field, float low, float high);

// Shapes in the canvas's units, with edges one texel soft; strength 0..1 mixes the colour in.
void fillBox(Canvas &canvas, Box box, Colour colour, float strength = 1);
void fillDisc(Canvas &canvas, float x, float y, float radius, Colour colour, float strength = 1);
void fillRing(Canvas &canvas, float x, float y, float radius, float halfWidth, Colour colour,
              float strength = 1);
void drawLine(Canvas &canvas, Box ends, float halfWidth, Colour colour, float strength = 1);

struct Output
{
    const char *folder;
    int png; // 1: write a PNG beside each TGA
};

// Write <folder>/<name>.tga with 24 or 32 bits (alpha 255), or 8 bits for greys of 0 to 255.
// Return 1, or 0 after a line on standard error.
int saveColours(const Output &output, const char *name, const Grid<Colour> &canvas, int depth = 24);
int saveGreys(const Output &output, const char *name, const Grid<unsigned char> &greys);
// Writes <folder>/<width>.png with an alpha channel; returns the same.
int saveIcon(const char *folder, const Grid<Paint> &icon);
