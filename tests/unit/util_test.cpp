#include "fixtures.h"

TEST(Util, ScalarsHaveTheirClosedForms)
{
    const struct
    {
        const char *what;
        double actual, expected;
    } rows[] = {
        {"whole part below 0", 1.0 * truncateToInt(-2.9), -2},
        {"too large", 1.0 * truncateToInt(3e9), 2147483647.0},
        {"too small", 1.0 * truncateToInt(-INFINITY), -2147483648.0},
        {"not a number", 1.0 * truncateToInt(NAN), 0},
        {"radians", decToRad(90), PI / 2},
        {"degrees", radToDec(PI), 180},
        {"hypotenuse beyond float's squares", pithag(3e30f, -4e30f) / 5e30, 1},
        {"angle of a cosine rounded past 1", clampedAcos(1.1), 0},
        {"angle of a cosine rounded past -1", clampedAcos(-1.1), PI},
        {"heading nowhere", findDirection({5, 1, 9}, {5, 7, 9}), 0},
        {"heading along +x and +z", findDirection({5, 1, 9}, {9, 7, 12}), 36.86990},
        {"heading along -x and +z", findDirection({5, 1, 9}, {2, 7, 13}), 126.86990},
        {"heading along -x and -z", findDirection({5, 1, 9}, {1, 7, 6}), 216.86990},
        {"heading along +x and -z", findDirection({5, 1, 9}, {8, 7, 5}), 306.86990},
    };
    for (const auto &row : rows)
        EXPECT_FLOAT_EQ(float(row.actual), float(row.expected)) << row.what;
}

TEST(Util, VectorsFollowTheirFormulasAndRoundOnce)
{
    EXPECT_TRUE(isNear(vectorCrossProduct({1, 2, 4}, {3, 5, 9}), {-2, 3, -1}, 0));
    EXPECT_EQ(vectorDotProduct({1, 2, 3}, {5, 7, 11}), 52);
    EXPECT_EQ(vectorDotProduct({1e8f, 1, -1e8f}, {1, 1, 1}), 1);
    EXPECT_TRUE(isNear(normalizeVector({0, 0, 0}), {0, 0, 0}, 0));
    const Vector plane[] = {{1, 10, 3}, {1, 9, 5}, {4, 8, 5}}; // 2 x + 6 y + 3 z = 71
    const Vector up = normal(plane[0], plane[1], plane[2]);
    EXPECT_TRUE(isNear(vectorMultiply(up, 7), {2, 6, 3}, 1e-6));
    Vector q = {2.5f, 77, 1};
    findYvalue(plane[0], plane[1], plane[2], &q);
    EXPECT_TRUE(isNear(q, {2.5f, 10.5f, 1}, 1e-6));
}

TEST(Util, QuaternionsAndMatricesTurnAlikeAboutEveryAxis)
{
    const struct
    {
        Vector axis; // of any length
        float degrees;
        Vector point, turned;
    } rows[] = {
        {{2, -3, 6}, 90, {49, 98, 49}, {-101, 22, 61}}, // the axis is 7 long
        {{2, 2, 2}, 120, {1, 2, 3}, {3, 1, 2}},
        {{3, 5, 7}, 0, {1, 2, 3}, {1, 2, 3}},
    };
    for (const auto &row : rows)
    {
        const float radians = decToRad(row.degrees);
        const Vector unit = normalizeVector(row.axis);
        const Vector part = vectorMultiply(unit, std::sin(radians / 2));
        const Quaternion q = {std::cos(radians / 2), part.x, part.y, part.z};
        Matrix byQuaternion, byAxis;
        quaternionToMatrix(q, byQuaternion);
        matrixRotate(byAxis, radians, row.axis);
        EXPECT_TRUE(isNear(matrixVectorMultiply(byQuaternion, row.point), row.turned, 1e-4));
        EXPECT_TRUE(isNear(matrixVectorMultiply(byAxis, row.point), row.turned, 1e-4));
        float angle;
        Vector axis;
        quaternionGetAngleAxis(q, &angle, &axis);
        EXPECT_NEAR(angle, radians, 1e-6);
        EXPECT_TRUE(isNear(axis, radians > 0 ? unit : Vector{1, 0, 0}, 1e-6));
    }
    const Quaternion p = quaternionMultiplyQuaternion({1, 2, 3, 4}, {5, 6, 7, 8});
    EXPECT_EQ(p.w, -60);
    EXPECT_TRUE(isNear({p.x, p.y, p.z}, {12, 30, 24}, 0));
    EXPECT_EQ(normalize({0, 0, 0, 0}).w, 1);
}

TEST(Util, MatricesMultiplyTransposeAndAreStoredColumnByColumn)
{
    const Vector place = {-2, 1, 3};
    const Matrix3 quarterAboutZ = {0, -1, 0, 1, 0, 0, 0, 0, 1};
    Matrix turn, move, product, rigid;
    matrixRotate(turn, decToRad(90), {0, 0, 1});
    matrixTranslate(move, 1, 2, 3); // which the turn takes to the place
    matrixMultiply(turn, move, product);
    createOpenGLTransform(quarterAboutZ, &place, rigid);
    const Matrix expected = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, -2, 1, 3, 1};
    Matrix3 star, transposed;
    createStarMatrix(star, {1, 2, 4});
    matrixTranspose(star, transposed);
    EXPECT_EQ(std::vector<float>(star, star + 9),
              std::vector<float>({0, -4, 2, 4, 0, -1, -2, 1, 0}));
    for (int i = 0; i < 16; ++i)
    {
        EXPECT_NEAR(product[i], expected[i], 1e-6) << i;
        EXPECT_EQ(rigid[i], expected[i]) << i;
        EXPECT_EQ(transposed[i % 9], -star[i % 9]) << i;
    }
}
