#include "view.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace
{
struct Direction
{
    double x, y, z;
};

// A side of the view. Points in view have a distance of 0 or more from it.
struct Plane
{
    Direction normal; // unit length
    double offset;
};

// The pyramid of the view, cut off at the near and the far plane.
struct View
{
    Direction eye;
    Direction ahead, right, up; // unit vectors
    double tanX, tanY;          // of half the field of view
    double near;
    Plane planes[6];
    Direction corners[8]; // bit 0: right, bit 1: up, bit 2: far
};
} // namespace

constexpr double SLACK = 1.0; // units by which single precision may misplace a vertex
// OpenGL clips at the far plane where the clip coordinate z is greater than w. There both are about
// as large as the distance of the far plane and have a rounding error of single precision. With the
// near plane at 1, their difference changes by only 2 / far per unit of distance. The error can
// therefore move the far plane by many units.
constexpr double CLIP_ROUNDING = 5e-7; // over four times the relative spacing of floats, 1.2e-7
// Pixels. Shadow prisms end ten million units away, where single precision is coarse.
constexpr double PIXEL_SLACK = 8.0;
// A view is set if the horizontal part of the unit vector ahead is longer than this. If this part
// were shorter, its rounding error would visibly turn the picture.
constexpr double STEEPEST = 0.002;

static View view;
static bool isSet = false;

static Direction direction(Vector v)
{
    return {v.x, v.y, v.z};
}

static double dot(Direction a, Direction b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

static Direction sum(Direction a, double s, Direction b) // a + s b
{
    return {a.x + s * b.x, a.y + s * b.y, a.z + s * b.z};
}

static Direction difference(Direction a, Direction b)
{
    return sum(a, -1, b);
}

static Direction cross(Direction a, Direction b)
{
    return {a.y * b.z - b.y * a.z, a.z * b.x - b.z * a.x, a.x * b.y - b.x * a.y};
}

static Direction unit(Direction v)
{
    return sum({0, 0, 0}, 1 / std::sqrt(dot(v, v)), v);
}

static Plane planeThrough(Direction point, Direction inward)
{
    const Direction normal = unit(inward);
    return {normal, -dot(normal, point)};
}

static Plane sidePlane(double tangent, double sign, Direction across)
{
    return planeThrough(view.eye, sum(sum({0, 0, 0}, tangent, view.ahead), -sign, across));
}

static void setPlanes(double far)
{
    const Direction back = sum({0, 0, 0}, -1, view.ahead);
    const Plane planes[] = {sidePlane(view.tanX, -1, view.right),
                            sidePlane(view.tanX, 1, view.right),
                            planeThrough(sum(view.eye, far, view.ahead), back),
                            sidePlane(view.tanY, -1, view.up),
                            sidePlane(view.tanY, 1, view.up),
                            planeThrough(sum(view.eye, view.near, view.ahead), view.ahead)};
    std::copy(std::begin(planes), std::end(planes), view.planes);
}

static void setCorners(double far)
{
    for (int i = 0; i < 8; ++i)
    {
        const double depth = i & 4 ? far : view.near;
        const double x = depth * view.tanX * (i & 1 ? 1 : -1);
        const double y = depth * view.tanY * (i & 2 ? 1 : -1);
        const Direction middle = sum(view.eye, depth, view.ahead);
        view.corners[i] = sum(sum(middle, x, view.right), y, view.up);
    }
}

void setView(const Eye *eye)
{
    view.eye = direction(eye->position);
    view.ahead = unit(difference({eye->target[0], eye->target[1], eye->target[2]}, view.eye));
    // No view is set either if eye and target are the same point or if near is not below far.
    isSet = std::hypot(view.ahead.x, view.ahead.z) > STEEPEST && eye->near < eye->far;
    if (!isSet)
        return;
    view.right = unit(cross(view.ahead, {0, 1, 0}));
    view.up = cross(view.right, view.ahead);
    view.tanY = std::tan(eye->fieldOfView * 0.5 / 180 * PI);
    view.tanX = view.tanY * eye->aspect;
    view.near = eye->near;
    // About the largest coordinates in view. Rounding errors are proportional to them.
    const double reach = std::sqrt(dot(view.eye, view.eye)) + eye->far;
    const double far = eye->far + CLIP_ROUNDING * eye->far * reach;
    setPlanes(far);
    setCorners(far);
}

void clearView()
{
    isSet = false;
}

bool sphereInView(Vector centre, float radius)
{
    if (!isSet)
        return true;
    const Direction point = direction(centre);
    for (const Plane &plane : view.planes)
        if (dot(plane.normal, point) + plane.offset < -(radius + SLACK))
            return false;
    return true;
}

static float toFloat(double value)
{
    constexpr double LARGEST = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -LARGEST, LARGEST));
}

// Finds for each plane the edge of the box along y that is farthest inward, and computes the height
// at which this edge crosses the plane.
Span viewHeights(Span x, Span z)
{
    Span heights = {-INFINITY, INFINITY};
    if (!isSet)
        return heights;
    for (const Plane &plane : view.planes)
    {
        const Direction n = plane.normal;
        const double inward = n.x * (n.x > 0 ? x.high : x.low) + n.z * (n.z > 0 ? z.high : z.low) +
                              plane.offset + SLACK;
        if (n.y > 0)
            heights.low = std::max(heights.low, toFloat(-inward / n.y));
        else if (n.y < 0)
            heights.high = std::min(heights.high, toFloat(-inward / n.y));
        else if (inward < 0)
            return {INFINITY, -INFINITY};
    }
    return heights;
}

static void extend(Span *span, double value)
{
    span->low = std::min(span->low, toFloat(value - SLACK));
    span->high = std::max(span->high, toFloat(value + SLACK));
}

// Extends z to the point where the edge from a to b crosses x, if there is one.
static void extendAtCrossing(Span *z, Direction a, Direction b, double x)
{
    if ((a.x < x) != (b.x < x))
        extend(z, a.z + (b.z - a.z) * (x - a.x) / (b.x - a.x));
}

Span viewSpan(Span x)
{
    if (!isSet)
        return {-INFINITY, INFINITY};
    const double low = x.low - SLACK, high = x.high + SLACK;
    Span z = {INFINITY, -INFINITY};
    for (int i = 0; i < 8; ++i)
    {
        const Direction &corner = view.corners[i];
        if (low <= corner.x && corner.x <= high)
            extend(&z, corner.z);
        for (int bit = 1; bit < 8; bit <<= 1)
            if (!(i & bit)) // each edge once
            {
                extendAtCrossing(&z, corner, view.corners[i | bit], low);
                extendAtCrossing(&z, corner, view.corners[i | bit], high);
            }
    }
    return z;
}

namespace
{
struct Bounds // in units of half the display from its middle
{
    double left = INFINITY, right = -INFINITY, bottom = INFINITY, top = -INFINITY;
};
} // namespace

// Coordinates of the eye: x to the right and y up, both divided by the tangent of half the field of
// view, and z ahead.
static Direction seenFrom(Vector point)
{
    const Direction offset = difference(direction(point), view.eye);
    return {dot(offset, view.right) / view.tanX, dot(offset, view.up) / view.tanY,
            dot(offset, view.ahead)};
}

static void extendByPoint(Bounds *bounds, Direction seen)
{
    const double x = seen.x / seen.z, y = seen.y / seen.z;
    bounds->left = std::min(bounds->left, x);
    bounds->right = std::max(bounds->right, x);
    bounds->bottom = std::min(bounds->bottom, y);
    bounds->top = std::max(bounds->top, y);
}

static int toPixel(double position, double slack, int size)
{
    return truncateToInt(std::clamp((position * 0.5 + 0.5) * size + slack, 0.0, 1.0 * size));
}

// The near plane cuts a part off the hull. The corners of the rest are the points in front of the
// plane and the crossings of the plane with the lines from a point in front to a point behind.
ScreenArea screenArea(const Vector *points, int count, int width, int height)
{
    if (!isSet)
        return {0, 0, width, height};
    Bounds bounds;
    for (int i = 0; i < count; ++i)
    {
        const Direction a = seenFrom(points[i]);
        if (a.z < view.near)
            continue;
        extendByPoint(&bounds, a);
        for (int k = 0; k < count; ++k)
        {
            const Direction b = seenFrom(points[k]);
            if (b.z < view.near)
                extendByPoint(&bounds, sum(a, (a.z - view.near) / (a.z - b.z), difference(b, a)));
        }
    }
    if (bounds.left > bounds.right)
        return {0, 0, 0, 0};
    const int x = toPixel(bounds.left, -PIXEL_SLACK, width);
    const int y = toPixel(bounds.bottom, -PIXEL_SLACK, height);
    return {x, y, toPixel(bounds.right, PIXEL_SLACK, width) - x,
            toPixel(bounds.top, PIXEL_SLACK, height) - y};
}
