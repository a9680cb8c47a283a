// view.h - the volume that the eye sees, so that objects wholly outside of it need not be sent to
// OpenGL. In doubt the answer is "in view": what is said to be outside cannot change a pixel.
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

// Sets the view that gluLookAt and gluPerspective give the eye. For an eye that looks straight up
// or down no view is set.
void setView(const Eye *eye);
void clearView();

bool sphereInView(Vector centre, float radius); // false when the sphere lies wholly outside
// The heights that decide whether a box over the spans x and z is in view: it lies wholly outside
// if its top is below low or its bottom above high. low > high does not mean that it lies outside.
Span viewHeights(Span x, Span z);
// The span of z that contains every point of the view, at any height, whose x is in the given span.
// low > high if there is no such point.
Span viewSpan(Span x);
// The pixels of a display of that size in which the convex hull of the points can be seen: none if
// the hull is out of view, all while no view is set.
ScreenArea screenArea(const Vector *points, int count, int width, int height);
