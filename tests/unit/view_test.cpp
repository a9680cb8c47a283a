#include "fixtures.h"
#include "view.h"

// Looks along +x, +z to the right: 1 up and 2 to the right for each unit ahead.
constexpr Eye AHEAD = {{100, 50, -200}, {300, 50, -200}, 90, 2, 1, 1000};

struct View : testing::Test
{
    View()
    {
        setView(&AHEAD);
    }
    ~View() override
    {
        clearView();
    }
};

static int cubeInView(Vector centre)
{
    return boxInView(vectorSubtract(centre, {9, 9, 9}), vectorAdd(centre, {9, 9, 9}));
}

TEST_F(View, SpheresAndBoxesAreOutWhenAllOfThemLiesBeyondOneOfThePlanes)
{
    const struct
    {
        const char *side;
        Vector inward, outward; // centres of spheres of radius 10 that just touch, and just do not
    } cases[] = {
        {"top", {200, 164, -200}, {200, 168, -200}}, {"bottom", {200, -64, -200}, {200, -68, -200}},
        {"right", {200, 50, 22}, {200, 50, 27}},     {"left", {200, 50, -422}, {200, 50, -427}},
        {"near", {92, 50, -200}, {88, 50, -200}},    {"far", {1109, 50, -200}, {1117, 50, -200}},
    };
    for (const auto &c : cases)
    {
        const Vector beyond = vectorMultiply(vectorSubtract(c.outward, c.inward), 2);
        EXPECT_TRUE(sphereInView(c.inward, 10) && cubeInView(c.inward)) << c.side;
        EXPECT_FALSE(sphereInView(c.outward, 10)) << c.side;
        EXPECT_FALSE(cubeInView(vectorAdd(c.outward, beyond))) << c.side;
    }
    EXPECT_TRUE(boxInView({0, 0, -300}, {200, 100, -100})) << "around the eye";
    EXPECT_TRUE(boxInView({500, 40, 0}, {700, 60, 2000})) << "far to the right, but wide";
    EXPECT_TRUE(boxInView({400, -900, -210}, {410, 900, -190})) << "a tower through the view";
}

TEST_F(View, SpanIsTheWidthOfTheViewInThatStripOfLand)
{
    const struct
    {
        const char *name;
        Span x, z;
    } cases[] = {{"ahead", {300, 350}, {-700, 300}}, // 2 to each side for each of 250 ahead
                 {"in front of all", {-INFINITY, 500}, {-1000, 600}},
                 {"up to the far plane", {900, INFINITY}, {-2200, 1800}}};
    for (const auto &c : cases)
    {
        const Span z = viewSpan(c.x);
        EXPECT_TRUE(isNear({z.low, z.high, 0}, {c.z.low, c.z.high, 0}, 6)) << c.name;
    }
    for (const Span x : {Span{0, 90}, {1110, 1300}})
        EXPECT_GT(viewSpan(x).low, viewSpan(x).high) << "out of view";
}

TEST_F(View, ScreenAreaHoldsTheHullAlsoWhereItPassesTheEye)
{
    const struct
    {
        const char *name;
        std::vector<Vector> points;
        ScreenArea area; // of 800 x 400 pixels
    } cases[] = {        // at 100 ahead 2 pixels are a unit; 8 pixels are added to each side
                 {"a tilted square ahead",
                  {{200, 30, -200}, {200, 60, -220}, {200, 90, -190}, {200, 50, -170}},
                  {352, 152, 116, 136}},
                 {"down past the eye", {{200, 60, -180}, {0, -140, -180}}, {432, 0, 368, 228}},
                 {"behind", {{90, 60, -180}, {0, -140, -180}}, {0, 0, 0, 0}}};
    for (const auto &c : cases)
    {
        const ScreenArea area = screenArea(c.points.data(), int(c.points.size()), 800, 400);
        const Vector corner = {1.0f * area.x, 1.0f * area.y, 0};
        const Vector extent = {1.0f * area.width, 1.0f * area.height, 0};
        EXPECT_TRUE(isNear(corner, {1.0f * c.area.x, 1.0f * c.area.y, 0}, 1)) << c.name;
        EXPECT_TRUE(isNear(extent, {1.0f * c.area.width, 1.0f * c.area.height, 0}, 1)) << c.name;
    }
}

TEST_F(View, EverythingIsInViewWhereThereIsNone)
{
    const Vector behind = {-500, 50, -200}, corner = {-490, 60, -190};
    const Eye eyes[] = {{{100, 50, -200}, {100, -350, -200}, 90, 2, 1, 1000}, // straight down
                        {{100, 50, -200}, {100, 950, -200}, 90, 2, 1, 1000},  // straight up
                        {{100, 50, -200}, {100, 50, -200}, 90, 2, 1, 1000},   // nowhere
                        {{NAN, 50, -200}, {300, 50, -200}, 90, 2, 1, 1000},   // from nowhere
                        {{100, 50, -200}, {300, 50, -200}, 90, 2, 1, 1}};     // no depth
    for (int i = 0; i < 6; ++i)
    {
        i < 5 ? setView(&eyes[i]) : clearView();
        EXPECT_TRUE(sphereInView(behind, 1) && boxInView(behind, corner)) << i;
        EXPECT_EQ(viewSpan({0, 1}).low, -INFINITY) << i;
        EXPECT_EQ(screenArea(&behind, 1, 800, 400).width, 800) << i;
        setView(&AHEAD);
        EXPECT_FALSE(sphereInView(behind, 1) || boxInView(behind, corner));
    }
}
