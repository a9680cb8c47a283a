#include "drainage.h"

#include <queue>

namespace
{
struct Entry // in the queue of the flood: the lowest first, then the one that was reached first
{
    float level;
    int turn, cell;

    bool operator<(const Entry &other) const
    {
        return level != other.level ? level > other.level : turn > other.turn;
    }
};

struct Flood
{
    std::priority_queue<Entry> front;
    std::vector<char> isReached;
    int turn = 0;

    void reach(int cell, float level)
    {
        isReached[size_t(cell)] = 1;
        front.push({level, turn++, cell});
    }
};
} // namespace

static void floodNeighbours(Drainage &drainage, Flood &flood, const Field &height, int cell)
{
    const int x = cell % height.width;
    const int z = cell / height.width;
    for (int k = 0; k < 9; ++k)
    {
        const int nx = x + k % 3 - 1;
        const int nz = z + k / 3 - 1;
        const int next = nz * height.width + nx;
        if (!height.holds(nx, nz) || flood.isReached[size_t(next)])
            continue;
        drainage.level.at(nx, nz) = std::max(height.at(nx, nz), drainage.level.at(x, z));
        drainage.toward[size_t(next)] = cell;
        flood.reach(next, drainage.level.at(nx, nz));
    }
}

// Priority flood: the water rises from the sea and reaches each sample by the lowest possible way.
static void floodFrom(const Grid<char> &sea, const Field &height, Drainage &drainage)
{
    Flood flood = {{}, std::vector<char>(height.cells.size()), 0};
    for (size_t i = 0; i < sea.cells.size(); ++i)
        if (sea.cells[i])
            flood.reach(int(i), height.cells[i]);
    while (!flood.front.empty())
    {
        const int cell = flood.front.top().cell;
        flood.front.pop();
        drainage.order.push_back(cell);
        floodNeighbours(drainage, flood, height, cell);
    }
}

Drainage drain(const Field &height, const Grid<char> &sea, const Field &rain)
{
    Drainage drainage = {{}, std::vector<int>(height.cells.size(), -1), height, rain};
    floodFrom(sea, height, drainage);
    for (size_t i = drainage.order.size(); i-- > 0;)
    {
        const size_t cell = size_t(drainage.order[i]);
        if (drainage.toward[cell] >= 0)
            drainage.flow.cells[size_t(drainage.toward[cell])] += drainage.flow.cells[cell];
    }
    return drainage;
}
