// The setters that take math types, read back from a program that a real GLSL compiler
// built: what GL holds is what the shader would see.
#include "GL/OpenglShader.h"

#include "Math/Affine.h"
#include "Math/Color.h"
#include "Math/Mat4.h"

#include "Support/GLContextTest.h"

#include <glbinding/gl/gl.h>
#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::ElementsAreArray;

const char* const kVertex = R"(#version 330
in vec2 position;
void main() { gl_Position = vec4(position, 0.0, 1.0); }
)";

// Every uniform feeds the output, so that none is optimised away.
const char* const kFragment = R"(#version 330
uniform vec2 v2;
uniform vec3 v3;
uniform vec4 v4;
uniform vec4 tint;
uniform mat3 affines[2];
uniform mat4 transforms[2];
out vec4 colour;
void main()
{
    vec3 mapped = affines[0] * v3 + affines[1] * v3;
    colour = transforms[0] * v4 + transforms[1] * tint + vec4(mapped, v2.x + v2.y);
}
)";

class OpenglShaderMathTest : public GLContextTest {
protected:
    // The floats GL holds for uniform `name`.
    std::vector<float> read(const std::string& name, std::size_t components) const
    {
        std::vector<float> values(components);
        const GLint location = mShader.getUniformLocation(name);
        EXPECT_NE(location, -1) << name;
        glGetUniformfv(mShader.program(), location, values.data());
        return values;
    }

    void SetUp() override
    {
        GLContextTest::SetUp();
        mShader.useProgram();
        ASSERT_NE(mShader.program(), 0u);
    }

    void TearDown() override
    {
        glUseProgram(0);
        GLContextTest::TearDown();
    }

    OpenglShader mShader{kVertex, kFragment};
};

TEST_F(OpenglShaderMathTest, VectorsAndColoursAreNarrowedToFloat)
{
    mShader.setUniform2f("v2", Vec2(0.1, -2.0));
    mShader.setUniform3f("v3", Vec3(1.0 / 3.0, 4.0, -0.5));
    mShader.setUniform4f("v4", Vec4(1e-3, 2.0, 3.0, 1e30));
    mShader.setUniform4f("tint", Color(0.2, 0.4, 0.6, 0.8));
    EXPECT_THAT(read("v2", 2), ElementsAreArray({0.1f, -2.0f}));
    EXPECT_THAT(read("v3", 3), ElementsAreArray({1.0f / 3.0f, 4.0f, -0.5f}));
    EXPECT_THAT(read("v4", 4), ElementsAreArray({1e-3f, 2.0f, 3.0f, static_cast<float>(1e30)}));
    EXPECT_THAT(read("tint", 4), ElementsAreArray({0.2f, 0.4f, 0.6f, 0.8f}));
}

TEST_F(OpenglShaderMathTest, AffinesBecomeColumnsWithTheImpliedLastRow)
{
    const Affine affines[2] = {Affine(1, 2, 3, 4, 5, 6), Affine(-0.5, 0.25, 7, 8, 0.1, -9)};
    mShader.setUniformMatrix3f("affines", affines, 2);
    // Each nine: s0, s3, 0, s1, s4, 0, s2, s5, 1, with the arguments running column by column.
    EXPECT_THAT(read("affines[0]", 9), ElementsAreArray({1.0f, 2.0f, 0.0f, 3.0f, 4.0f, 0.0f, 5.0f, 6.0f, 1.0f}));
    EXPECT_THAT(read("affines[1]", 9), ElementsAreArray({-0.5f, 0.25f, 0.0f, 7.0f, 8.0f, 0.0f, 0.1f, -9.0f, 1.0f}));
}

TEST_F(OpenglShaderMathTest, AMat4GoesInStorageOrderAndAloneWhateverTheCount)
{
    double values[16];
    for (int k = 0; k < 16; ++k) {
        values[k] = k + 0.1;
    }
    mShader.setUniformMatrix4f("transforms", Mat4(values, true), 2);
    std::vector<float> expected;
    for (double value : values) {
        expected.push_back(static_cast<float>(value));
    }
    EXPECT_THAT(read("transforms[0]", 16), ElementsAreArray(expected));
    EXPECT_THAT(read("transforms[1]", 16), ElementsAreArray(std::vector<float>(16, 0.0f)));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
