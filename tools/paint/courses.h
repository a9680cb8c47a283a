// courses.h - lines through the land, such as rivers and tracks.
#pragma once

#include "plan.h"

// For each sample the nearest point of any course, if one is within `reach` units.
struct Nearby
{
    Field distance;  // units; `reach` where no course is near
    Field level;     // of the nearest point; 0 where no course is near
    Field halfWidth; // in the same way
};

// Replaces each point by the mean of it and its neighbours: `neighbours` points on each side, fewer
// near the ends. The two end points do not move.
Course smoothed(const Course &course, int neighbours);

// The point of a course that is nearest to a place; the course has one point at least.
const CoursePoint &nearestPoint(const Course &course, float x, float z);

// The height at a place in world units, interpolated between the four samples around the place.
float heightAt(const Field &height, float x, float z);

Nearby surveyCourses(const Plan &plan, const std::vector<Course> &courses, float reach);
