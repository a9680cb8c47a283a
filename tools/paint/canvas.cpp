#include "canvas.h"

#include <libnoise/noise.h>

float soft(float from, float to, float v)
{
    const float k = std::clamp((v - from) / (to - from), 0.0f, 1.0f);
    return k * k * (3 - 2 * k);
}

float length(float x, float y)
{
    return std::sqrt(x * x + y * y);
}

float pressed(float v, float shoulder, float limit)
{
    const float room = limit - shoulder;
    const float above = std::max(v - shoulder, 0.0f) / room;
    return std::min(v, shoulder) + room * above / (1 + above);
}

float segmentDistance(float x, float y, Box ends)
{
    const float dx = ends.x1 - ends.x0;
    const float dy = ends.y1 - ends.y0;
    const float lengthSquared = dx * dx + dy * dy;
    const float along =
        lengthSquared > 0 ? ((x - ends.x0) * dx + (y - ends.y0) * dy) / lengthSquared : 0;
    const float t = std::clamp(along, 0.0f, 1.0f);
    return length(x - ends.x0 - dx * t, y - ends.y0 - dy * t);
}

float scatter(int x, int y, int seed)
{
    unsigned h =
        unsigned(x) * 0x9E3779B1u ^ unsigned(y) * 0x85EBCA77u ^ unsigned(seed) * 0xC2B2AE3Du;
    h = (h ^ h >> 15) * 0x2C1B3C6Du;
    h = (h ^ h >> 12) * 0x297A2D39u;
    return float((h ^ h >> 15) >> 8) / 16777216.0f;
}

static int wrapped(int i, int period)
{
    return period > 0 ? (i % period + period) % period : i;
}

float steady(double value)
{
    constexpr double STEPS = 16384;
    return float(std::floor(value * STEPS + 0.5) / STEPS);
}

// libnoise hashes the whole coordinates of the lattice. Wrapping these makes the noise repeat.
static float latticeNoise(float x, float y, int ix, int iy, int period, int seed)
{
    const int wx = wrapped(ix, period);
    const int wy = wrapped(iy, period);
    return steady(
        noise::GradientNoise3D(double(x) - ix + wx, double(y) - iy + wy, 0, wx, wy, 0, seed));
}

float noiseAt(float x, float y, int period, int seed)
{
    const int ix = int(std::floor(x));
    const int iy = int(std::floor(y));
    const float u = soft(0, 1, x - float(ix));
    const float low = mix(latticeNoise(x, y, ix, iy, period, seed),
                          latticeNoise(x, y, ix + 1, iy, period, seed), u);
    const float high = mix(latticeNoise(x, y, ix, iy + 1, period, seed),
                           latticeNoise(x, y, ix + 1, iy + 1, period, seed), u);
    return mix(low, high, soft(0, 1, y - float(iy)));
}

float fractal(float x, float y, int period, int octaves, float gain, int seed)
{
    float sum = 0;
    float strength = 1;
    float total = 0;
    for (int octave = 0; octave < octaves; ++octave)
    {
        sum += strength * noiseAt(x, y, period, seed + octave);
        total += strength;
        strength *= gain;
        x *= 2;
        y *= 2;
        period *= 2;
    }
    return sum / total;
}

static Field blurredRows(const Field &field, int radius)
{
    Field result(field.height, field.width); // transposed: a second call blurs the columns
    for (int y = 0; y < field.height; ++y)
    {
        double sum = 0;
        for (int i = -radius; i <= radius; ++i)
            sum += field.clamped(i, y);
        for (int x = 0; x < field.width; ++x)
        {
            result.at(y, x) = float(sum / (2 * radius + 1));
            sum += double(field.clamped(x + radius + 1, y)) - field.clamped(x - radius, y);
        }
    }
    return result;
}

Field blurred(const Field &field, int radius)
{
    return blurredRows(blurredRows(field, radius), radius);
}

// One sweep over the grid in reading order, forward or backward, along rows.
static void spreadDistance(Field &distance, int step)
{
    constexpr float DIAGONAL = 1.4f;
    const int count = distance.width * distance.height;
    for (int i = 0; i < count; ++i)
    {
        const int cell = step > 0 ? i : count - 1 - i;
        const int x = cell % distance.width;
        const int y = cell / distance.width;
        float &here = distance.at(x, y);
        here = std::min({here, distance.clamped(x - step, y) + 1, distance.clamped(x, y - step) + 1,
                         distance.clamped(x - step, y - step) + DIAGONAL,
                         distance.clamped(x + step, y - step) + DIAGONAL});
    }
}

Field distanceTo(const Field &field, float low, float high)
{
    Field distance(field.width, field.height, 1e6f);
    for (size_t i = 0; i < field.cells.size(); ++i)
        if (field.cells[i] >= low && field.cells[i] <= high)
            distance.cells[i] = 0;
    spreadDistance(distance, 1);
    spreadDistance(distance, -1);
    return distance;
}

// Fills a shape that is given by distance(x, y), the distance from the shape's outline in units,
// negative inside. The shape must lie within the box, made larger by `reach` units on all sides.
template <typename Distance>
static void fillShape(Canvas &canvas, Box box, float reach, Colour colour, float strength,
                      Distance distance)
{
    const int right = int((std::max(box.x0, box.x1) + reach) * canvas.unit) + 1;
    const int top = int((std::max(box.y0, box.y1) + reach) * canvas.unit) + 1;
    for (int y = int(std::floor((std::min(box.y0, box.y1) - reach) * canvas.unit)); y <= top; ++y)
        for (int x = int(std::floor((std::min(box.x0, box.x1) - reach) * canvas.unit)); x <= right;
             ++x)
        {
            const float outside =
                distance((float(x) + 0.5f) / canvas.unit, (float(y) + 0.5f) / canvas.unit);
            const float cover = std::clamp(0.5f - outside * canvas.unit, 0.0f, 1.0f) * strength;
            if (canvas.holds(x, y) && cover > 0)
                canvas.at(x, y) = mix(canvas.at(x, y), colour, cover);
        }
}

void fillBox(Canvas &canvas, Box box, Colour colour, float strength)
{
    const auto distance = [=](float x, float y)
    { return std::max(std::max(box.x0 - x, x - box.x1), std::max(box.y0 - y, y - box.y1)); };
    fillShape(canvas, box, 0, colour, strength, distance);
}

void fillDisc(Canvas &canvas, float x, float y, float radius, Colour colour, float strength)
{
    drawLine(canvas, {x, y, x, y}, radius, colour, strength);
}

void fillRing(Canvas &canvas, float x, float y, float radius, float halfWidth, Colour colour,
              float strength)
{
    const auto distance = [=](float px, float py)
    { return std::fabs(length(px - x, py - y) - radius) - halfWidth; };
    fillShape(canvas, {x, y, x, y}, radius + halfWidth, colour, strength, distance);
}

void drawLine(Canvas &canvas, Box ends, float halfWidth, Colour colour, float strength)
{
    fillShape(canvas, ends, halfWidth, colour, strength,
              [=](float x, float y) { return segmentDistance(x, y, ends) - halfWidth; });
}
