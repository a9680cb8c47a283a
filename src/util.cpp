#include "util.h"

#include <cmath>
#include <limits>

float mod(float a)
{
    return a > 0 ? a : -a;
}

float decToRad(float angle)
{
    return static_cast<float>((angle / 180.0) * PI);
}

float radToDec(float angle)
{
    return static_cast<float>((angle / PI) * 180.0);
}

float pithag(float a, float b)
{
    return static_cast<float>(std::sqrt(std::pow(a, 2.0) + std::pow(b, 2.0)));
}

int truncateToInt(double value)
{
    if (std::isnan(value))
        return 0;
    if (value <= std::numeric_limits<int>::min())
        return std::numeric_limits<int>::min();
    if (value >= std::numeric_limits<int>::max())
        return std::numeric_limits<int>::max();
    return static_cast<int>(value);
}

double clampedAcos(double c)
{
    return std::acos(c > 1.0 ? 1.0 : c < -1.0 ? -1.0 : c);
}

// Rounds each component once, from double to float.
static Vector roundedVector(double x, double y, double z)
{
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

Vector vectorInit(float x, float y, float z)
{
    return {x, y, z};
}

Vector vectorMultiply(Vector v, float s)
{
    return {v.x * s, v.y * s, v.z * s};
}

Vector vectorAdd(Vector a, Vector b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Vector vectorSubtract(Vector a, Vector b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

Vector vectorCrossProduct(Vector a, Vector b)
{
    const double ax = a.x, ay = a.y, az = a.z;
    return roundedVector(ay * b.z - b.y * az, az * b.x - b.z * ax, ax * b.y - b.x * ay);
}

float vectorDotProduct(Vector a, Vector b)
{
    return static_cast<float>(static_cast<double>(a.x) * b.x + static_cast<double>(a.y) * b.y +
                              static_cast<double>(a.z) * b.z);
}

Vector normalizeVector(Vector v)
{
    const double x = v.x, y = v.y, z = v.z;
    float length = static_cast<float>(std::sqrt(x * x + y * y + z * z));
    if (length == 0)
        length = 1;
    return vectorMultiply(v, static_cast<float>(1.0 / length));
}

Vector normal(Vector p1, Vector p2, Vector p3)
{
    return normalizeVector(vectorCrossProduct(vectorSubtract(p1, p2), vectorSubtract(p2, p3)));
}

float findDirection(Vector from, Vector to)
{
    const float dx = to.x - from.x;
    const float dz = to.z - from.z;
    if (dx == 0 && dz == 0)
        return 0;
    const double cosine = static_cast<double>(dx) / pithag(dx, dz);
    const float angle = radToDec(static_cast<float>(clampedAcos(cosine)));
    return dz < 0 ? static_cast<float>(360.0 - angle) : angle;
}

void findYvalue(Vector p1, Vector p2, Vector p3, Vector *q)
{
    const Vector n = vectorCrossProduct(vectorSubtract(p2, p1), vectorSubtract(p3, p1));
    const double dx = static_cast<double>(q->x) - p1.x;
    const double dz = static_cast<double>(q->z) - p1.z;
    q->y = static_cast<float>(p1.y - (n.x * dx + n.z * dz) / n.y);
}

Quaternion quaternionInit(float w, float x, float y, float z)
{
    return {w, x, y, z};
}

Quaternion quaternionMultiplyQuaternion(Quaternion a, Quaternion b)
{
    const double w = a.w, x = a.x, y = a.y, z = a.z;
    return {static_cast<float>(w * b.w - x * b.x - y * b.y - z * b.z),
            static_cast<float>(w * b.x + x * b.w + y * b.z - z * b.y),
            static_cast<float>(w * b.y - x * b.z + y * b.w + z * b.x),
            static_cast<float>(w * b.z + x * b.y - y * b.x + z * b.w)};
}

Quaternion quaternionMultiplyFloat(Quaternion q, float s)
{
    return {q.w * s, q.x * s, q.y * s, q.z * s};
}

Quaternion normalize(Quaternion q)
{
    const double w = q.w, x = q.x, y = q.y, z = q.z;
    const float length = static_cast<float>(std::sqrt(w * w + x * x + y * y + z * z));
    if (length == 0)
        return quaternionInit(1, 0, 0, 0);
    return quaternionMultiplyFloat(q, static_cast<float>(1.0 / length));
}

void quaternionGetAngleAxis(Quaternion q, float *angle, Vector *axis)
{
    const double x = q.x, y = q.y, z = q.z;
    const float square = static_cast<float>(x * x + y * y + z * z);
    if (!(square > 0))
    {
        *angle = 0;
        *axis = vectorInit(1, 0, 0);
        return;
    }
    *angle = 2 * static_cast<float>(clampedAcos(q.w));
    const float length = static_cast<float>(std::pow(square, 0.5));
    *axis = vectorMultiply(vectorInit(q.x, q.y, q.z), static_cast<float>(1.0 / length));
}

void quaternionToMatrix(Quaternion q, Matrix out)
{
    const float x2 = q.x + q.x, y2 = q.y + q.y, z2 = q.z + q.z;
    const float wx = q.w * x2, wy = q.w * y2, wz = q.w * z2;
    const float xx = q.x * x2, xy = q.x * y2, xz = q.x * z2;
    const float yy = q.y * y2, yz = q.y * z2, zz = q.z * z2;

    matrixIdentity(out);
    out[0] = static_cast<float>(1.0 - (static_cast<double>(yy) + zz));
    out[1] = xy - wz;
    out[2] = xz + wy;
    out[4] = xy + wz;
    out[5] = static_cast<float>(1.0 - (static_cast<double>(xx) + zz));
    out[6] = yz - wx;
    out[8] = xz - wy;
    out[9] = yz + wx;
    out[10] = static_cast<float>(1.0 - (static_cast<double>(xx) + yy));
}

Vector matrixVectorMultiply(const Matrix m, Vector v)
{
    const double x = v.x, y = v.y, z = v.z;
    return roundedVector(m[0] * x + m[1] * y + m[2] * z + m[3],
                         m[4] * x + m[5] * y + m[6] * z + m[7],
                         m[8] * x + m[9] * y + m[10] * z + m[11]);
}

void matrixIdentity(Matrix out)
{
    for (int i = 0; i < 16; ++i)
        out[i] = i % 5 == 0 ? 1.0f : 0.0f;
}

void matrixZero(Matrix out)
{
    for (int i = 0; i < 16; ++i)
        out[i] = 0;
}

void matrixTranslate(Matrix out, float x, float y, float z)
{
    matrixIdentity(out);
    out[3] = x;
    out[7] = y;
    out[11] = z;
}

void matrixRotate(Matrix out, float angle, Vector axis)
{
    matrixIdentity(out);
    if (axis.x == 0 && axis.y == 0 && axis.z == 0)
        return;
    const Vector u = normalizeVector(axis);
    const float c = static_cast<float>(std::cos(static_cast<double>(angle)));
    const float s = static_cast<float>(std::sin(static_cast<double>(angle)));
    const float t = static_cast<float>(1.0 - c);
    const float xx = u.x * u.x, yy = u.y * u.y, zz = u.z * u.z;
    const float xyt = static_cast<float>(static_cast<double>(u.x) * u.y * t);
    const float xzt = static_cast<float>(static_cast<double>(u.x) * u.z * t);
    const float yzt = static_cast<float>(static_cast<double>(u.y) * u.z * t);
    const float xs = u.x * s, ys = u.y * s, zs = u.z * s;

    out[0] = static_cast<float>(static_cast<double>(xx) * t + c);
    out[1] = xyt - zs;
    out[2] = xzt + ys;
    out[4] = xyt + zs;
    out[5] = static_cast<float>(static_cast<double>(yy) * t + c);
    out[6] = yzt - xs;
    out[8] = xzt - ys;
    out[9] = yzt + xs;
    out[10] = static_cast<float>(static_cast<double>(zz) * t + c);
}

void matrixMultiply(const Matrix a, const Matrix b, Matrix out)
{
    matrixZero(out);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            for (int k = 0; k < 4; ++k)
            {
                const double product = static_cast<double>(a[4 * i + k]) * b[4 * k + j];
                out[4 * j + i] = static_cast<float>(out[4 * j + i] + product);
            }
}

void matrixTranspose(const Matrix3 in, Matrix3 out)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            out[3 * i + j] = in[3 * j + i];
}

void createStarMatrix(Matrix3 out, Vector v)
{
    const Matrix3 rows = {0, -v.z, v.y, v.z, 0, -v.x, -v.y, v.x, 0};
    for (int i = 0; i < 9; ++i)
        out[i] = rows[i];
}

void createOpenGLTransform(const Matrix3 rotation, const Vector *position, float out[16])
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            out[4 * j + i] = rotation[3 * i + j];
    out[3] = out[7] = out[11] = 0;
    out[12] = position->x;
    out[13] = position->y;
    out[14] = position->z;
    out[15] = 1;
}
