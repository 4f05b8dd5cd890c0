#include "Math/BitCompare.h"
#include "Math/TransformTesting.h"

#include <gtest/gtest.h>

namespace Halvane::Quorvex {
namespace {

TEST(Vec3Transforms, AgreeWithTheMatrixAndQuaternionForms)
{
    Testing::SeededRandom random;
    for (int i = 0; i < 100; ++i) {
        Mat4 const m = random.invertibleMatrix();
        Quaternion const q = random.unitQuaternion();
        Vec3 const v = random.vec3(-10, 10);
        Vec3 point(v);
        point.applyMatrix4(m);
        EXPECT_SAME_BITS(m.mult(v), point);
        point = v;
        point.applyProjection(m);
        EXPECT_TRUE(point.equal(m.multAndProject(v), 1e-13));
        point = v;
        point.applyQuaternion(q);
        EXPECT_TRUE(point.equal(Quaternion::quaternionMulVec3(q, v), 1e-13));
        // Unnormalised, the length scales by the squared length of q.
        point = v;
        point.applyQuaternion(Quaternion(q.x * 2, q.y * 2, q.z * 2, q.w * 2));
        EXPECT_NEAR(4.0 * v.length(), point.length(), 1e-12);
    }

    Mat4 const m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, false);
    Vec3 v;
    v.setFromMatrixPosition(m);
    EXPECT_SAME_BITS(Vec3(4, 8, 12), v);
    v.setFromMatrixColumn(m, 1);
    EXPECT_SAME_BITS(Vec3(2, 6, 10), v);
    v.transformDirection(m); // untranslated, then unit length
    EXPECT_TRUE(v == Vec3(44, 116, 188) * (1.0 / Vec3(44, 116, 188).length()));
    v.transformDirection(Mat4(false));
    EXPECT_SAME_BITS(Vec3(1, 0, 0), v);
}

} // namespace
} // namespace Halvane::Quorvex
