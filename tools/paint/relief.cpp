#include "relief.h"

#include <libnoise/noise.h>

constexpr float PLAIN_LEVEL = 112;
constexpr float PLAIN_CALM = 0.6f; // factor on the height of waves at the landing place
constexpr float LANDING_RISE = 16; // units that the landing place is raised, against water there
constexpr float VALLEY[] = {450, 1100}; // distance from the landing way: all valley .. none
constexpr float SOFT_CEILING = 470; // higher peaks are compressed so that they stay below HIGHEST
constexpr float HIGHEST = 585;

constexpr float PEAK_SPACING = 2100; // units between peaks, about
constexpr float PEAK_SHARE = 0.75f;  // share of the possible places that have a peak
constexpr float LONGEST_LINK = 3300; // longest distance between linked peaks
constexpr float SADDLE = 0.38f;      // share by which a crest is lower half-way between its peaks
constexpr float COAST_GAP = 1900;    // from the edge of the land to the nearest peak
constexpr float PLAIN_GAP = 250;     // from the foot of a range to the landing way

constexpr float HOLLOW_SPACING = 3600; // units between hollows, about; lakes fill them
constexpr float HOLLOW_DEPTH = 90;
constexpr float HOLLOW_GAP = 1500; // from the landing way and from the edge of the land

namespace
{
struct CountryShape // heights in units
{
    float level;   // of the plain
    float swell;   // height of waves of 1300 units
    float hummock; // height of waves of 340 units, which the rolling cube follows
    float fold;    // height of ridges several hundred units apart, which stop shots
    float terrace; // height of a step; 0: none
};

struct Range
{
    Box crest;       // a line, with z as the y of its ends
    float reach;     // from the crest to the foot
    float height[2]; // of the crest at its ends, above the plain
};

struct Peak
{
    float x, z, height;
};

struct Hollow
{
    float x, z, reach, depth;
};
} // namespace

constexpr CountryShape SHAPES[COUNTRIES] = {
    {PLAIN_LEVEL, 64, 28, 46, 0}, // meadow
    {215, 95, 18, 30, 62},        // highland
    {135, 80, 36, 54, 0},         // forest
    {54, 7, 17, 6, 0},            // marsh
    {290, 80, 26, 52, 0},         // snowfield
};

float landingDistance(const Plan &plan, float x, float z)
{
    return segmentDistance(x, z, {0, -plan.half(), 0, 2 * LANDING_Z});
}

static bool isOpen(const Plan &plan, float x, float z, float reach)
{
    return landingDistance(plan, x, z) > reach + PLAIN_GAP;
}

static bool staysOpen(const Plan &plan, const Range &range)
{
    for (int i = 0; i <= 8; ++i)
    {
        const float k = float(i) / 8;
        if (!isOpen(plan, mix(range.crest.x0, range.crest.x1, k),
                    mix(range.crest.y0, range.crest.y1, k), range.reach))
            return false;
    }
    return true;
}

static std::vector<Peak> placePeaks(const Plan &plan, const std::vector<Field> &countries)
{
    std::vector<Peak> peaks;
    const float inner = plan.half() - COAST_GAP;
    const int last = int(inner / PEAK_SPACING) + 1;
    for (int k = -last; k <= last; ++k)
        for (int i = -last; i <= last; ++i)
        {
            const float x = (float(i) + 0.8f * (plan.random(i, k, 1) - 0.5f)) * PEAK_SPACING;
            const float z = (float(k) + 0.8f * (plan.random(i, k, 2) - 0.5f)) * PEAK_SPACING;
            if (std::max(std::fabs(x), std::fabs(z)) > inner || !isOpen(plan, x, z, 800))
                continue;
            const float marsh = countries[COUNTRY_MARSH].at(plan.toSample(x), plan.toSample(z));
            if (plan.random(i, k, 3) < PEAK_SHARE * (1 - marsh))
                peaks.push_back({x, z, 330 + 210 * plan.random(i, k, 4)});
        }
    return peaks;
}

static Range rangeBetween(const Plan &plan, const Peak &a, const Peak &b)
{
    return {{a.x, a.z, b.x, b.z},
            850 + 350 * plan.random(int(a.x + b.x), int(a.z + b.z), 5),
            {a.height, b.height}};
}

// A range from the peak to a random place near it, where it is half as high.
static Range spurOf(const Plan &plan, const Peak &peak)
{
    const float x = peak.x + 1300 * (plan.random(int(peak.x), int(peak.z), 6) - 0.5f);
    const float z = peak.z + 1300 * (plan.random(int(peak.x), int(peak.z), 7) - 0.5f);
    return rangeBetween(plan, peak, {x, z, 0.5f * peak.height});
}

// Links each peak to its two nearest neighbours and to a spur. Two peaks may be linked twice. The
// two ranges are then equal, so the second changes nothing.
static std::vector<Range> linkPeaks(const Plan &plan, const std::vector<Peak> &peaks)
{
    std::vector<Range> ranges;
    for (const Peak &peak : peaks)
    {
        std::vector<Peak> others(peaks);
        const auto isNearer = [&](const Peak &a, const Peak &b)
        { return length(a.x - peak.x, a.z - peak.z) < length(b.x - peak.x, b.z - peak.z); };
        std::stable_sort(others.begin(), others.end(), isNearer);
        const Range spur = spurOf(plan, peak);
        if (staysOpen(plan, spur))
            ranges.push_back(spur);
        for (size_t i = 1; i <= 2 && i < others.size(); ++i)
        {
            const Range range = rangeBetween(plan, peak, others[i]);
            const float span = length(others[i].x - peak.x, others[i].z - peak.z);
            if (span < LONGEST_LINK && staysOpen(plan, range))
                ranges.push_back(range);
        }
    }
    return ranges;
}

static float alongLine(float x, float z, const Box &line)
{
    const float dx = line.x1 - line.x0;
    const float dz = line.y1 - line.y0;
    return std::clamp(((x - line.x0) * dx + (z - line.y0) * dz) / (dx * dx + dz * dz), 0.0f, 1.0f);
}

static float rangeHeight(const std::vector<Range> &ranges, float x, float z)
{
    float highest = 0;
    for (const Range &range : ranges)
    {
        const float k = soft(range.reach, 0, segmentDistance(x, z, range.crest));
        if (k <= 0)
            continue;
        const float t = alongLine(x, z, range.crest);
        const float crest =
            mix(range.height[0], range.height[1], t) * (1 - SADDLE * 4 * t * (1 - t));
        highest = std::max(highest, crest * k * (0.55f + 0.45f * k));
    }
    return highest;
}

static std::vector<Hollow> placeHollows(const Plan &plan)
{
    std::vector<Hollow> hollows;
    const float inner = plan.half() - HOLLOW_GAP;
    const int last = int(inner / HOLLOW_SPACING) + 1;
    for (int k = -last; k <= last; ++k)
        for (int i = -last; i <= last; ++i)
        {
            const float x = (float(i) + 0.9f * (plan.random(i, k, 11) - 0.5f)) * HOLLOW_SPACING;
            const float z = (float(k) + 0.9f * (plan.random(i, k, 12) - 0.5f)) * HOLLOW_SPACING;
            if (std::max(std::fabs(x), std::fabs(z)) < inner && isOpen(plan, x, z, HOLLOW_GAP))
                hollows.push_back({x, z, 450 + 350 * plan.random(i, k, 13),
                                   HOLLOW_DEPTH * (0.6f + 0.6f * plan.random(i, k, 14))});
        }
    return hollows;
}

static float hollowDepth(const std::vector<Hollow> &hollows, float x, float z)
{
    float deepest = 0;
    for (const Hollow &h : hollows)
        deepest = std::max(deepest, h.depth * soft(h.reach, 0, length(x - h.x, z - h.z)));
    return deepest;
}

static float terraced(float height, float step)
{
    const float level = std::floor(height / step);
    return step * (level + soft(0.5f, 1, height / step - level));
}

// The mean of the countries' shapes, weighted by their shares of the sample. The terrace is left 0.
static CountryShape shapeAt(const std::vector<Field> &countries, int x, int z)
{
    CountryShape sum = {};
    for (size_t i = 0; i < COUNTRIES; ++i)
    {
        const float w = countries[i].at(x, z);
        sum.level += w * SHAPES[i].level;
        sum.swell += w * SHAPES[i].swell;
        sum.hummock += w * SHAPES[i].hummock;
        sum.fold += w * SHAPES[i].fold;
    }
    return sum;
}

static float foldAt(const Plan &plan, float x, float z)
{
    const float n = plan.waves(x, z, 1150, 2, 24);
    return 1 - std::min(std::fabs(n) * 5, 2.0f);
}

static float openGround(const Plan &plan, const std::vector<Field> &countries, int sampleX,
                        int sampleZ)
{
    const float x = plan.toWorld(sampleX);
    const float z = plan.toWorld(sampleZ);
    const CountryShape shape = shapeAt(countries, sampleX, sampleZ);
    const float plain = soft(2300, 700, length(x, (z - 700) * 0.6f));
    const float swell = 1.6f * shape.swell * plan.waves(x, z, 1300, 2, 21);
    const float hummock = 1.6f * shape.hummock * plan.waves(x, z, 340, 2, 22);
    const float fold = shape.fold * foldAt(plan, x, z) * (1 - plain);
    const float height = shape.level + (swell + hummock) * mix(1, PLAIN_CALM, plain) + fold;
    const float dry = countries[COUNTRY_HIGHLAND].at(sampleX, sampleZ);
    return mix(height, terraced(height, SHAPES[COUNTRY_HIGHLAND].terrace), 0.85f * dry);
}

// Factor on the heights of mountains and the depths of hollows: 0 near the landing way, 1 far away.
static float closedness(const Plan &plan, float x, float z)
{
    return soft(VALLEY[0], VALLEY[1], landingDistance(plan, x, z));
}

Field raiseGround(const Plan &plan, const std::vector<Field> &countries)
{
    noise::module::RidgedMulti ridges;
    ridges.SetSeed(noiseSeed(plan.seed, 23));
    ridges.SetFrequency(1 / 1500.0);
    ridges.SetOctaveCount(5);
    const std::vector<Range> ranges = linkPeaks(plan, placePeaks(plan, countries));
    const std::vector<Hollow> hollows = placeHollows(plan);
    Field field = plan.field();
    field.paint(
        [&](int sampleX, int sampleZ)
        {
            const float x = plan.toWorld(sampleX);
            const float z = plan.toWorld(sampleZ);
            const float warpX = x + 420 * plan.waves(x, z, 1500, 3, 25);
            const float warpZ = z + 420 * plan.waves(x, z, 1500, 3, 26);
            const float mass = rangeHeight(ranges, warpX, warpZ);
            const float ridge =
                mass > 0 ? std::clamp(steady(ridges.GetValue(x, 0, z)) * 0.5f + 0.5f, 0.0f, 1.1f)
                         : 0;
            const float closed = closedness(plan, x, z);
            const float ground =
                openGround(plan, countries, sampleX, sampleZ) +
                closed * (mass * (0.36f + 0.84f * ridge) - hollowDepth(hollows, warpX, warpZ));
            const float landing = LANDING_RISE * soft(900, 100, length(x, z - LANDING_Z));
            return pressed(std::max(ground + landing, WATER_LEVEL), SOFT_CEILING, HIGHEST);
        });
    return field;
}
