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

TEST(Util, QuaternionsTurnLikeMatricesAndSurviveNoTurnAndNoLength)
{
    const Quaternion quarter = normalize({7, 2, -3, 6}); // about an axis 7 long
    Matrix turn;
    quaternionToMatrix(quarter, turn);
    EXPECT_TRUE(isNear(matrixVectorMultiply(turn, {49, 98, 49}), {-101, 22, 61}, 1e-4));
    matrixRotate(turn, decToRad(90), {2, -3, 6});
    EXPECT_TRUE(isNear(matrixVectorMultiply(turn, {49, 98, 49}), {-101, 22, 61}, 1e-4));
    float angle;
    Vector axis;
    quaternionGetAngleAxis({1, 0, 0, 0}, &angle, &axis);
    EXPECT_EQ(angle, 0);
    EXPECT_TRUE(isNear(axis, {1, 0, 0}, 0));
    EXPECT_EQ(normalize({0, 0, 0, 0}).w, 1);
}

TEST(Util, MatricesMultiplyTransposeAndAreStoredColumnByColumn)
{
    const Vector place = {-2, 1, 3};
    Matrix turn, move, product, rigid;
    Matrix3 star, transposed;
    matrixRotate(turn, decToRad(90), {0, 0, 1});
    matrixTranslate(move, 1, 2, 3); // which the turn takes to the place
    matrixMultiply(turn, move, product);
    const Matrix expected = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, -2, 1, 3, 1};
    createStarMatrix(star, {0, 0, 1}); // and it is that turn but for the axis
    star[8] = 1;
    createOpenGLTransform(star, &place, rigid);
    matrixTranspose(star, transposed);
    for (int i = 0; i < 16; ++i)
    {
        EXPECT_NEAR(product[i], expected[i], 1e-6) << i;
        EXPECT_EQ(rigid[i], expected[i]) << i;
        EXPECT_EQ(transposed[i % 9], star[i % 9 % 3 * 3 + i % 9 / 3]) << i;
    }
}
