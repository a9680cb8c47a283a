// view.h - the volume that a frame shows, so that what lies wholly outside it is not sent. The
// answers err on the side of sending: what they leave out cannot reach a pixel.
// World units; y up. While no view is set, everything is in view.
#pragma once

#include "util.h"

struct Eye
{
    Vector position;
    double target[3];   // the point looked at, as gluLookAt takes it; up is +y
    double fieldOfView; // vertical, in degrees, 0 to 180 exclusive
    double aspect;      // width / height
    double near, far;   // distances of the clipping planes, 0 < near < far
};

struct ScreenArea
{
    int x, y; // pixels from the lower left corner of the display
    int width, height;
};

// Takes the view of gluLookAt and gluPerspective. An eye that looks straight up or down has no view
// of its own: everything is in view then.
void setView(const Eye *eye);
void clearView();

bool sphereInView(Vector centre, float radius); // false when the sphere lies wholly outside
// The heights that decide whether a box over the spans x and z is in view: it lies wholly outside
// if its top is below low or its bottom above high. low > high does not mean that it lies outside.
Span viewHeights(Span x, Span z);
// The z that the view covers, at any height, where x lies in the given span; low > high where it
// covers none.
Span viewSpan(Span x);
// The pixels of a display of that size that the convex hull of some points can cover: all without a
// view, an area without width or height where the hull is out of sight.
ScreenArea screenArea(const Vector *points, int count, int width, int height);
