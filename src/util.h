// util.h - scalar helpers, vectors, matrices and quaternions: plain values in, plain values out.
// Formulas are evaluated in double precision and rounded to float where a component is stored.
// Nothing here allocates, keeps state or fails.
#pragma once

struct Vector
{
    float x, y, z; // y points up; x and z span the ground
};

struct Span
{
    float low, high;
};

struct Quaternion
{
    float w, x, y, z; // scalar part first; the identity is (1, 0, 0, 0)
};

typedef float Matrix[16]; // 4 x 4, row by row; translation in entries 3, 7 and 11
typedef float Matrix3[9]; // 3 x 3, row by row

constexpr double PI = 3.141592653589793;

// Scalars
float mod(float a);              // absolute value
float decToRad(float angle);     // degrees to radians
float radToDec(float angle);     // radians to degrees
float pithag(float a, float b);  // sqrt(a^2 + b^2)
int truncateToInt(double value); // toward zero; clamped to the range of int, NaN gives 0
double clampedAcos(double c);    // acos for a c that rounding may have pushed past +-1; radians

// Vectors
Vector vectorInit(float x, float y, float z);
Vector vectorMultiply(Vector v, float s);
Vector vectorAdd(Vector a, Vector b);
Vector vectorSubtract(Vector a, Vector b);
Vector vectorCrossProduct(Vector a, Vector b);
float vectorDotProduct(Vector a, Vector b);
Vector normalizeVector(Vector v); // unit length; the zero vector stays zero
// Unit normal of the plane through the points. It points up if they run counter-clockwise as seen
// from above.
Vector normal(Vector p1, Vector p2, Vector p3);

// Heading in degrees, 0 to 360, in the ground plane: 0 along +x, 90 along +z.
// 0 when both points share x and z.
float findDirection(Vector from, Vector to);

// Sets q->y to the height at (q->x, q->z) of the plane through p1, p2 and p3, whose projection on
// the ground must have an area.
void findYvalue(Vector p1, Vector p2, Vector p3, Vector *q);

// Quaternions; angles in radians
Quaternion quaternionInit(float w, float x, float y, float z);
Quaternion quaternionMultiplyQuaternion(Quaternion a, Quaternion b); // Hamilton product a b
Quaternion quaternionMultiplyFloat(Quaternion q, float s);
Quaternion normalize(Quaternion q); // unit length; the zero quaternion gives the identity
void quaternionGetAngleAxis(Quaternion q, float *angle, Vector *axis); // no rotation: 0 about +x
void quaternionToMatrix(Quaternion q, Matrix out);                     // q must have unit length

// Matrices; points are column vectors with an implied fourth component of 1
Vector matrixVectorMultiply(const Matrix m, Vector v); // the first three rows of m (v, 1)
void matrixIdentity(Matrix out);
void matrixZero(Matrix out);
void matrixTranslate(Matrix out, float x, float y, float z);
void matrixRotate(Matrix out, float angle, Vector axis);         // zero axis: the identity
void matrixMultiply(const Matrix a, const Matrix b, Matrix out); // a b, stored column by column
void matrixTranspose(const Matrix3 in, Matrix3 out);             // out must differ from in
void createStarMatrix(Matrix3 out, Vector v);                    // out w = v x w for every w

// A rigid transform in OpenGL's column-major order, ready for glMultMatrixf.
void createOpenGLTransform(const Matrix3 rotation, const Vector *position, float out[16]);
