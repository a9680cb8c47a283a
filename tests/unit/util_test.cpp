#include "fixtures.h"

#include <cmath>

TEST(Util, ScalarsHaveTheirClosedForms)
{
    constexpr double LAST = 2147483647;
    expectNear({2, -2, LAST, -LAST - 1, LAST, -LAST - 1, 0}, 0, truncateToInt(2.9),
               truncateToInt(-2.9), truncateToInt(3e9), truncateToInt(-3e9),
               truncateToInt(INFINITY), truncateToInt(-INFINITY), truncateToInt(NAN));
    expectNear({3, 2.5, PI, 90, 1, 0, PI}, 1e-5, mod(-3), mod(2.5f), decToRad(180),
               radToDec(PI / 2), pithag(3e30f, -4e30f) / 5e30f, clampedAcos(1.1),
               clampedAcos(-1.1));
}

TEST(Util, VectorsKeepTheirZeroCasesAndRoundOnce)
{
    Vector q = {5, 77, 5};
    findYvalue({0, 0, 0}, {10, 10, 0}, {0, 0, 10}, &q);
    expectNear({5, 5, 5, 0, 0, 0}, 0, q, normalizeVector({}));
    expectNear({0, -1, 0, .6, 0, .8}, 1e-7, normal({}, {1, 0, 0}, {0, 0, 1}),
               normalizeVector({3, 0, 4}));
    expectNear({-3, 6, -3}, 0, vectorCrossProduct({1, 2, 3}, {4, 5, 6}));
    EXPECT_EQ(vectorDotProduct({1e8f, 1, -1e8f}, {1, 1, 1}), 1);
}

TEST(Util, HeadingsRunFromXTowardsZ)
{
    for (const auto &r :
         table("0 0 0 | 1 0 0 | 1 1 45 | 0 1 90 | -1 1 135 | -1 0 180 | 0 -1 270 | 1 -1 315"))
        EXPECT_NEAR(findDirection({5, 0, 9}, {5 + r[0], 7, 9 + r[1]}), r[2], 3e-5);
}

TEST(Util, QuaternionsTurnAsTheirAngleAndAxisSay)
{
    const Quaternion p = quaternionMultiplyQuaternion({1, 2, 3, 4}, {5, 6, 7, 8});
    expectNear({-60, 12, 30, 24, 1}, 0, p.w, p.x, p.y, p.z, normalize({}).w);
    float angle, none;
    Vector axis, anyAxis;
    Matrix m, n;
    quaternionGetAngleAxis({0.3f, 0, 0, 0}, &none, &anyAxis);
    const Quaternion turn = normalize({1, 0, 1, 0}); // +x towards -z
    quaternionToMatrix(turn, m);
    quaternionGetAngleAxis(turn, &angle, &axis);
    matrixRotate(n, angle, vectorMultiply(axis, 2));
    expectNear({3, 2, -1, 3, 2, -1, 0, 1, 0, 0}, 1e-6, matrixVectorMultiply(m, {1, 2, 3}),
               matrixVectorMultiply(n, {1, 2, 3}), none, anyAxis);
    matrixTranslate(m, 1, 2, 3);
    matrixMultiply(m, m, n);
    expectNear({2, 4, 6, 0}, 0, n[12], n[13], n[14], n[3]); // by columns
}
