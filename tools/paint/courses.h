// courses.h - lines through the land, such as rivers and tracks.
#pragma once

#include "plan.h"

// For each sample what lies nearest on any course, as far as `reach` from it.
struct Nearby
{
    Field distance; // units; reach and more where nothing is near
    Field level;
    Field halfWidth;
};

// Averages each point with as many neighbours on either side; the ends stay where they are.
Course smoothed(const Course &course, int neighbours);

// The point of a course that is nearest to a place; the course has one point at least.
const CoursePoint &nearestPoint(const Course &course, float x, float z);

// The height of a field between its samples.
float heightAt(const Field &height, float x, float z);

Nearby surveyCourses(const Plan &plan, const std::vector<Course> &courses, float reach);
