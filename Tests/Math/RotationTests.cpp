#include "Math/MathTesting.h"

#include "Math/Euler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace Halvane::Quorvex {
namespace {

using Testing::nearMatrix;
using Testing::rotationMatrix;
using Testing::sameRotation;

TEST(QuaternionTests, ProductsMatchMatricesInEveryForm)
{
    Testing::SeededRandom random;
    for (int i = 0; i < 400; ++i) {
        Quaternion const a = random.unitQuaternion();
        Quaternion const b = random.unitQuaternion();
        Quaternion product(a);
        product.multiply(b);
        EXPECT_TRUE(rotationMatrix(a) * rotationMatrix(b) == rotationMatrix(product));
        Quaternion reversed(a);
        reversed.premultiply(b);
        EXPECT_TRUE(rotationMatrix(b) * rotationMatrix(a) == rotationMatrix(reversed));
        reversed = b;
        reversed.multiplyQuaternions(a, reversed);
        EXPECT_EQ(product, reversed);

        Vec3 const v = random.vec3(-5.0, 5.0);
        EXPECT_TRUE(Quaternion::quaternionMulVec3(a, v).equal(rotationMatrix(a).mult(v), 1e-13));
        // Every other a turns by more than 2.6 radians, so all four branches are taken.
        Quaternion back;
        back.setWithMat4(rotationMatrix(a));
        EXPECT_TRUE(sameRotation(a, back, 1e-14));
        // Slerp turns the shorter way, in proportion to t.
        double const t = random.uniform(0.0, 1.0);
        Quaternion const between = Quaternion::lerp(a, b, t);
        EXPECT_NEAR(t * std::acos(std::abs(a.dot(b))), std::acos(std::min(1.0, std::abs(a.dot(between)))), 1e-7);
    }
}

constexpr Euler::RotationOrder kOrders[] = {Euler::XYZ, Euler::YZX, Euler::ZXY, Euler::XZY, Euler::YXZ, Euler::ZYX};
// The factors of each order, left to right.
char const* const kLetters[] = {"", "XYZ", "YZX", "ZXY", "XZY", "YXZ", "ZYX"};

double& angle(Euler& e, char letter)
{
    return letter == 'X' ? e.x : letter == 'Y' ? e.y : e.z;
}

Vec3 anglesOf(Euler const& e)
{
    return {e.x, e.y, e.z};
}

// The order's product of one-axis rotations, built without Euler.
Mat4 rotationOf(Euler e)
{
    Mat4 result(true);
    for (char const* letter = kLetters[e.order]; *letter != '\0'; ++letter) {
        *letter == 'X' ? result.rotateX(e.x) : *letter == 'Y' ? result.rotateY(e.y) : result.rotateZ(e.z);
    }
    return result;
}

// Outer angles in -pi..pi, the middle one as given.
Euler randomAngles(Testing::SeededRandom& random, Euler::RotationOrder order, double middle)
{
    Euler e(random.uniform(-M_PI, M_PI), random.uniform(-M_PI, M_PI), random.uniform(-M_PI, M_PI), order);
    angle(e, kLetters[order][1]) = middle;
    return e;
}

// At gimbal lock exactly one of the outer angles is fixed at 0.
bool oneOuterAngleIsZero(Euler e)
{
    return (angle(e, kLetters[e.order][0]) == 0.0) != (angle(e, kLetters[e.order][2]) == 0.0);
}

TEST(EulerTests, EveryOrderFromMatrixAndQuaternionAwayFromAndAtGimbalLock)
{
    Testing::SeededRandom random;
    for (Euler::RotationOrder order : kOrders) {
        SCOPED_TRACE(kLetters[order]);
        for (int i = 0; i < 100; ++i) {
            Euler const angles = randomAngles(random, order, random.uniform(-1.4, 1.4));
            Euler back(0, 0, 0, order);
            back.setWithMat4(rotationOf(angles));
            EXPECT_TRUE(anglesOf(back).equal(anglesOf(angles), 1e-13));
            // The quaternion form runs in single precision.
            Quaternion q;
            q.setWithEuler(angles);
            for (double field : {q.x, q.y, q.z, q.w}) {
                EXPECT_EQ(static_cast<double>(static_cast<float>(field)), field);
            }
            EXPECT_TRUE(nearMatrix(rotationOf(angles), rotationMatrix(q), 1e-6));
            back.setWithQuaternion(q);
            EXPECT_TRUE(anglesOf(back).equal(anglesOf(angles), 1e-5));
        }
        for (double middle : {M_PI / 2.0, -M_PI / 2.0}) {
            Euler const angles = randomAngles(random, order, middle);
            Euler back(0, 0, 0, order);
            back.setWithMat4(rotationOf(angles));
            EXPECT_TRUE(oneOuterAngleIsZero(back) && !oneOuterAngleIsZero(angles));
            EXPECT_TRUE(nearMatrix(rotationOf(angles), rotationOf(back), 1e-13));
        }
    }
}

} // namespace
} // namespace Halvane::Quorvex
