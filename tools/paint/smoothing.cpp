#include "smoothing.h"

constexpr int SWEEPS = 3;
constexpr int SHARPENINGS = 10;

// One running mean along a row. The step is 1 or -1, the direction.
static void smoothRow(float *row, int count, int step)
{
    for (int i = 1; i < count; ++i)
        row[i * step] = 0.5f * row[(i - 1) * step] + 0.5f * row[i * step];
}

// One running mean along all columns. It advances by a whole row at a time, because that reads the
// memory in order.
static void smoothColumns(Field &height, int first, int step)
{
    for (int i = 1; i < height.height; ++i)
        for (int x = 0; x < height.width; ++x)
            height.at(x, first + i * step) =
                0.5f * height.at(x, first + (i - 1) * step) + 0.5f * height.at(x, first + i * step);
}

void smoothAsTheGame(Field &height)
{
    for (int sweep = 0; sweep < SWEEPS; ++sweep)
    {
        for (int z = 0; z < height.height; ++z)
            smoothRow(&height.at(0, z), height.width, 1);
        for (int z = 0; z < height.height; ++z)
            smoothRow(&height.at(height.width - 1, z), height.width, -1);
        smoothColumns(height, 0, 1);
        smoothColumns(height, height.height - 1, -1);
    }
}

// The smoothing flattens ridges and gullies. Each step therefore adds to the map the difference
// between the wanted heights and the smoothed ones.
Field sharpened(const Field &wanted)
{
    Field map = wanted;
    for (int i = 0; i < SHARPENINGS; ++i)
    {
        Field seen = map;
        smoothAsTheGame(seen);
        for (size_t k = 0; k < map.cells.size(); ++k)
            map.cells[k] = std::clamp(map.cells[k] + wanted.cells[k] - seen.cells[k], 0.0f,
                                      HEIGHT_RANGE * 255 / 256);
    }
    return map;
}
