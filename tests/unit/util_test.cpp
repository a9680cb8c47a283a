#include "fixtures.h"

TEST(Util, ScalarHelpersGiveKnownValues)
{
    const struct
    {
        const char *what;
        double actual, expected;
    } rows[] = {
        {"whole part below 0", 1.0 * truncateToInt(-2.9), -2},
        {"whole part, too large", 1.0 * truncateToInt(3e9), 2147483647.0},
        {"whole part, too small", 1.0 * truncateToInt(-INFINITY), -2147483648.0},
        {"whole part of NaN", 1.0 * truncateToInt(NAN), 0},
        {"radians", decToRad(90), PI / 2},
        {"degrees", radToDec(PI), 180},
        {"hypotenuse whose square is beyond float", pithag(3e30f, -4e30f) / 5e30, 1},
        {"angle of a cosine above 1", clampedAcos(1.1), 0},
        {"angle of a cosine below -1", clampedAcos(-1.1), PI},
        {"heading to a point straight above", findDirection({5, 1, 9}, {5, 7, 9}), 0},
        {"heading along +x and +z", findDirection({5, 1, 9}, {9, 7, 12}), 36.86990},
        {"heading along -x and +z", findDirection({5, 1, 9}, {2, 7, 13}), 126.86990},
        {"heading along -x and -z", findDirection({5, 1, 9}, {1, 7, 6}), 216.86990},
        {"heading along +x and -z", findDirection({5, 1, 9}, {8, 7, 5}), 306.86990},
    };
    for (const auto &row : rows)
        EXPECT_FLOAT_EQ(float(row.actual), float(row.expected)) << row.what;
}

TEST(Util, VectorProductsNormalsAndPlanesGiveKnownValues)
{
    EXPECT_TRUE(isNear(vectorCrossProduct({1, 2, 4}, {3, 5, 9}), {-2, 3, -1}, 0));
    EXPECT_EQ(vectorDotProduct({1, 2, 3}, {5, 7, 11}), 52);
    EXPECT_EQ(vectorDotProduct({1e8f, 1, -1e8f}, {1, 1, 1}), 1) << "the sum is rounded too early";
    EXPECT_TRUE(isNear(normalizeVector({0, 0, 0}), {0, 0, 0}, 0));
    const Vector plane[] = {{1, 10, 3}, {1, 9, 5}, {4, 8, 5}}; // 2 x + 6 y + 3 z = 71
    const Vector up = normal(plane[0], plane[1], plane[2]);
    EXPECT_TRUE(isNear(vectorMultiply(up, 7), {2, 6, 3}, 1e-6));
    Vector q = {2.5f, 77, 1};
    findYvalue(plane[0], plane[1], plane[2], &q);
    EXPECT_TRUE(isNear(q, {2.5f, 10.5f, 1}, 1e-6));
}

TEST(Util, QuaternionAndAxisGiveTheSameRotation)
{
    const Quaternion quarter = normalize({7, 2, -3, 6}); // a quarter turn; the axis has length 7
    Matrix turn;
    quaternionToMatrix(quarter, turn);
    EXPECT_TRUE(isNear(matrixVectorMultiply(turn, {49, 98, 49}), {-101, 22, 61}, 1e-4));
    matrixRotate(turn, decToRad(90), {2, -3, 6});
    EXPECT_TRUE(isNear(matrixVectorMultiply(turn, {49, 98, 49}), {-101, 22, 61}, 1e-4));
}

TEST(Util, IdentityAndZeroQuaternionsAreNoRotation)
{
    float angle;
    Vector axis;
    quaternionGetAngleAxis({1, 0, 0, 0}, &angle, &axis);
    EXPECT_EQ(angle, 0);
    EXPECT_TRUE(isNear(axis, {1, 0, 0}, 0));
    EXPECT_EQ(normalize({0, 0, 0, 0}).w, 1);
}

TEST(Util, RigidTransformsAreStoredColumnByColumn)
{
    const Vector turnedMove = {-2, 1, 3};
    const Matrix expected = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, -2, 1, 3, 1};
    Matrix turn, move, product, rigid;
    matrixRotate(turn, decToRad(90), {0, 0, 1});
    matrixTranslate(move, 1, 2, 3);
    matrixMultiply(turn, move, product);
    Matrix3 star, transposed;
    createStarMatrix(star, {0, 0, 1});
    star[8] = 1; // makes it a quarter turn about z; the star matrix of the z axis has 0 here
    createOpenGLTransform(star, &turnedMove, rigid);
    matrixTranspose(star, transposed);
    for (int i = 0; i < 16; ++i)
    {
        EXPECT_NEAR(product[i], expected[i], 1e-6) << i;
        EXPECT_EQ(rigid[i], expected[i]) << i;
    }
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(transposed[row * 3 + column], star[column * 3 + row]);
}
