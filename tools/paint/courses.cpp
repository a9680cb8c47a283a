#include "courses.h"

static CoursePoint meanOf(const Course &course, int first, int last)
{
    CoursePoint sum = {};
    for (int i = first; i <= last; ++i)
    {
        const CoursePoint &p = course[size_t(i)];
        sum = {sum.x + p.x, sum.z + p.z, sum.level + p.level, sum.halfWidth + p.halfWidth};
    }
    const float n = float(last - first + 1);
    return {sum.x / n, sum.z / n, sum.level / n, sum.halfWidth / n};
}

Course smoothed(const Course &course, int neighbours)
{
    Course result;
    const int last = int(course.size()) - 1;
    for (int i = 0; i <= last; ++i)
    {
        const int n = std::min({neighbours, i, last - i});
        result.push_back(meanOf(course, i - n, i + n));
    }
    return result;
}

const CoursePoint &nearestPoint(const Course &course, float x, float z)
{
    return *std::min_element(course.begin(), course.end(),
                             [=](const CoursePoint &a, const CoursePoint &b)
                             { return length(a.x - x, a.z - z) < length(b.x - x, b.z - z); });
}

float heightAt(const Field &height, float x, float z)
{
    const float u = x / SPACING + float(height.width) / 2;
    const float w = z / SPACING + float(height.height) / 2;
    const int ix = int(std::floor(u));
    const int iz = int(std::floor(w));
    const float low = mix(height.clamped(ix, iz), height.clamped(ix + 1, iz), u - float(ix));
    const float high =
        mix(height.clamped(ix, iz + 1), height.clamped(ix + 1, iz + 1), u - float(ix));
    return mix(low, high, w - float(iz));
}

static float shareAlong(const CoursePoint &a, const CoursePoint &b, float x, float z)
{
    const float dx = b.x - a.x;
    const float dz = b.z - a.z;
    const float span = dx * dx + dz * dz;
    return span > 0 ? std::clamp(((x - a.x) * dx + (z - a.z) * dz) / span, 0.0f, 1.0f) : 0;
}

static void surveyStretch(const Plan &plan, Nearby &near, const CoursePoint &a,
                          const CoursePoint &b, float reach)
{
    const int right = plan.toSample(std::max(a.x, b.x) + reach);
    const int top = plan.toSample(std::max(a.z, b.z) + reach);
    for (int z = plan.toSample(std::min(a.z, b.z) - reach); z <= top; ++z)
        for (int x = plan.toSample(std::min(a.x, b.x) - reach); x <= right; ++x)
        {
            const float t = shareAlong(a, b, plan.toWorld(x), plan.toWorld(z));
            const float d =
                length(mix(a.x, b.x, t) - plan.toWorld(x), mix(a.z, b.z, t) - plan.toWorld(z));
            if (d >= near.distance.at(x, z))
                continue;
            near.distance.at(x, z) = d;
            near.level.at(x, z) = mix(a.level, b.level, t);
            near.halfWidth.at(x, z) = mix(a.halfWidth, b.halfWidth, t);
        }
}

Nearby surveyCourses(const Plan &plan, const std::vector<Course> &courses, float reach)
{
    Nearby near = {plan.field(reach), plan.field(), plan.field()};
    for (const Course &course : courses)
        for (size_t i = 1; i < course.size(); ++i)
            surveyStretch(plan, near, course[i - 1], course[i], reach);
    return near;
}
