#include "erosion.h"

constexpr float DROPLETS = 1.27f; // droplets per sample; more of them dig deeper gullies
constexpr int DROPLET_STEPS = 40;
constexpr float INERTIA = 0.08f; // share of its old direction that a droplet keeps
constexpr float CAPACITY = 5;    // soil that a droplet can carry, per speed * water * fall
constexpr float DEPOSIT = 0.3f;  // share of the soil beyond its capacity that a droplet leaves
constexpr float EROSION = 0.35f; // share of its free capacity that a droplet fills in a step
constexpr float EVAPORATION = 0.02f;
constexpr float FALL_TO_SPEED = 4;

namespace
{
struct Droplet
{
    float x, z; // samples
    float dirX = 0, dirZ = 0, speed = 1, water = 1, sediment = 0;
};

struct Slope
{
    float height, alongX, alongZ;
};
} // namespace

static Slope slopeAt(const Field &height, float x, float z)
{
    const int ix = int(x);
    const int iz = int(z);
    const float u = x - float(ix);
    const float w = z - float(iz);
    const float a = height.at(ix, iz);
    const float b = height.at(ix + 1, iz);
    const float c = height.at(ix, iz + 1);
    const float d = height.at(ix + 1, iz + 1);
    return {mix(mix(a, b, u), mix(c, d, u), w), mix(b - a, d - c, w), mix(c - a, d - b, u)};
}

// Moves the droplet by one sample downhill. Returns 0 if it leaves the land or the ground is level.
static int move(const Field &height, Droplet &drop, const Slope &here)
{
    drop.dirX = drop.dirX * INERTIA - here.alongX * (1 - INERTIA);
    drop.dirZ = drop.dirZ * INERTIA - here.alongZ * (1 - INERTIA);
    const float size = length(drop.dirX, drop.dirZ);
    if (size < 1e-6f)
        return 0;
    drop.dirX /= size;
    drop.dirZ /= size;
    drop.x += drop.dirX;
    drop.z += drop.dirZ;
    const float last = float(height.width - 3);
    return drop.x >= 1 && drop.z >= 1 && drop.x <= last && drop.z <= last;
}

// The soil that the droplet takes up in a step; negative if it leaves soil. `rise` is the change of
// the ground's height in this step.
static float soilTaken(const Droplet &drop, float rise)
{
    const float capacity = std::max(-rise, 0.01f) * drop.speed * drop.water * CAPACITY;
    if (rise > 0) // in a hollow: fill it, but not above the next point
        return -std::min(rise, drop.sediment);
    if (drop.sediment > capacity)
        return -(drop.sediment - capacity) * DEPOSIT;
    return std::min((capacity - drop.sediment) * EROSION, -rise);
}

static int flow(Field &height, Droplet &drop)
{
    const Slope here = slopeAt(height, drop.x, drop.z);
    float &ground = height.at(int(drop.x + 0.5f), int(drop.z + 0.5f));
    if (!move(height, drop, here))
        return 0;
    const float rise = slopeAt(height, drop.x, drop.z).height - here.height;
    const float taken = soilTaken(drop, rise);
    ground -= taken;
    drop.sediment += taken;
    drop.speed = std::sqrt(std::max(square(drop.speed) - rise * FALL_TO_SPEED, 0.0f));
    drop.water *= 1 - EVAPORATION;
    return 1;
}

void erode(const Plan &plan, Field &height)
{
    for (float &h : height.cells)
        h /= HEIGHT_RANGE;
    const int drops = int(DROPLETS * float(plan.side) * float(plan.side));
    for (int i = 0; i < drops; ++i)
    {
        Droplet drop;
        drop.x = 2 + plan.random(i, 0, 31) * float(plan.side - 6);
        drop.z = 2 + plan.random(i, 1, 31) * float(plan.side - 6);
        for (int step = 0; step < DROPLET_STEPS && flow(height, drop); ++step)
        {
        }
    }
    height = blurred(height, 1); // each droplet digs at single samples
    for (float &h : height.cells)
        h *= HEIGHT_RANGE;
}
