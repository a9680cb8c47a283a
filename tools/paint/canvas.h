// canvas.h - what all painters share: grids of numbers and colours, soft edges, noise.
// Colour components run from 0 to 1, which are 0 and 255 in the file. x runs to the right and y
// upward, so row 0 is the bottom row.
// Painters calculate with +, -, *, /, sqrt and floor only. These give the same result on every
// machine, so the images are the same wherever they are painted; see also steady.
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
    // Sets each cell to what the function returns for its x and y, row by row.
    template <typename Function> void paint(Function colourAt)
    {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                at(x, y) = colourAt(x, y);
    }
};

using Field = Grid<float>;

struct Canvas : Grid<Colour>
{
    float unit; // texels per unit of the coordinates that the drawing functions take

    Canvas(int w, int h, float texelsPerUnit = 1, Colour fill = Colour())
        : Grid(w, h, fill), unit(texelsPerUnit)
    {
    }
};

struct Box // two opposite corners of a box, or the two ends of a line
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

// An S-shaped step: 0 where v has not reached `from`, 1 where v is past `to`, smooth in between.
// If `from` is larger than `to`, the step falls with growing v.
float soft(float from, float to, float v);
float length(float x, float y);
// Returns v itself up to the shoulder. Above it the result grows ever more slowly and stays below
// the limit.
float pressed(float v, float shoulder, float limit);

// The distance from a point to a line between two ends.
float segmentDistance(float x, float y, Box ends);

// A hash of the three numbers, as a random number: 0 <= value < 1.
float scatter(int x, int y, int seed);

// Rounds a value from libnoise to 1/16384. On some processors the last bits of libnoise's values
// differ, and the rain on a land would turn such a difference into other hills.
float steady(double value);

// Gradient noise with values of about -1..1 and cells of size 1. It repeats after `period` cells
// along x and along y, or never if the period is 0. The fractal adds octaves: each has cells of
// half the size and `gain` times the strength of the octave before.
float noiseAt(float x, float y, int period, int seed);
float fractal(float x, float y, int period, int octaves, float gain, int seed);

// Each cell becomes the mean of a square with sides of 2 * radius + 1 cells around it. Outside the
// grid the cells of its edge are repeated.
Field blurred(const Field &field, int radius);

// For each cell the distance, in cells, to the nearest cell whose value lies from low to high.
// Diagonal steps are 1.4 cells long, so distances are up to 8 % too long. The distance is huge if
// no cell has such a value.
Field distanceTo(const Field &field, float low, float high);

// Shapes in the canvas's units. Their edges are blurred over one texel. The strength, 0..1, tells
// how much of the colour is mixed into the canvas.
void fillBox(Canvas &canvas, Box box, Colour colour, float strength = 1);
void fillDisc(Canvas &canvas, float x, float y, float radius, Colour colour, float strength = 1);
void fillRing(Canvas &canvas, float x, float y, float radius, float halfWidth, Colour colour,
              float strength = 1);
void drawLine(Canvas &canvas, Box ends, float halfWidth, Colour colour, float strength = 1);
