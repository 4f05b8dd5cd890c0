// The two fixed passes on llvmpipe: what ScreenRender and BackgroundRender
// write for known pixels, that they invert each other, and what a draw makes
// and leaves bound.
#include "GL/ScreenRender.h"

#include "RenderContextTest.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::Each;
using ::testing::FloatNear;
using ::testing::Pointwise;

constexpr float k16 = AEOpenGLUtilities::kMultiplier16bit;

class PassTest : public RenderContextTest {
protected:
    // Draws with `pass` into a float target of `width` by `height` pixels and
    // reads it back, rows bottom first; nothing clamps or rounds on the way.
    template <typename Pass>
    static std::vector<float> drawn(Pass& pass, GLuint texture, float multiplier, int width, int height)
    {
        const GLuint target = floatTexture(width, height, std::vector<float>(width * height * 4, -1.0f));
        GLuint framebuffer = 0;
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target, 0);
        glViewport(0, 0, width, height);
        pass.draw(texture, multiplier);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &framebuffer);
        std::vector<float> result = textureContents(target);
        glDeleteTextures(1, &target);
        return result;
    }
};

TEST_F(PassTest, ScreenRenderUnpremultipliesPutsAlphaFirstAndDividesByTheMultiplier)
{
    // Four texels, bottom row first: transparent with colour left in it,
    // opaque, half transparent, and opaque white.
    const std::vector<float> texels = {
        0.3f, 0.6f, 0.9f, 0.0f,   0.2f, 0.4f, 0.6f, 1.0f,
        0.1f, 0.2f, 0.3f, 0.5f,   1.0f, 1.0f, 1.0f, 1.0f,
    };
    const std::vector<float> expected = {
        0.0f, 0.0f, 0.0f, 0.0f,   1.0f, 0.2f, 0.4f, 0.6f,
        0.5f, 0.2f, 0.4f, 0.6f,   1.0f, 1.0f, 1.0f, 1.0f,
    };
    const GLuint texture = floatTexture(2, 2, texels);
    ScreenRender screen;

    for (const float multiplier : {1.0f, k16}) {
        SCOPED_TRACE(multiplier);
        std::vector<float> divided = expected;
        for (float& value : divided) {
            value /= multiplier;
        }
        EXPECT_THAT(drawn(screen, texture, multiplier, 2, 2), Pointwise(FloatNear(1e-6f), divided));
    }
    glDeleteTextures(1, &texture);
}

TEST_F(PassTest, BackgroundRenderThenScreenRenderGivesThePictureBack)
{
    // Host order (A, R, G, B) as an upload leaves it; 16-bit values arrive
    // over 65535, so they are half of what the multiplier makes of them.
    const std::vector<float> host = {
        1.0f, 0.25f, 0.5f, 0.75f,   0.5f, 0.1f, 0.9f, 0.3f,
        0.25f, 1.0f, 0.0f, 0.5f,    1.0f, 0.0f, 0.0f, 0.0f,
    };
    BackgroundRender background;
    ScreenRender screen;
    for (const float multiplier : {1.0f, k16}) {
        SCOPED_TRACE(multiplier);
        std::vector<float> uploaded = host;
        for (float& value : uploaded) {
            value /= multiplier;
        }
        const GLuint input = floatTexture(2, 2, uploaded);
        const std::vector<float> premultiplied = drawn(background, input, multiplier, 2, 2);
        // True RGBA, premultiplied: the second texel is (0.1, 0.9, 0.3) at alpha 0.5.
        EXPECT_THAT(std::vector<float>(premultiplied.begin() + 4, premultiplied.begin() + 8),
                    Pointwise(FloatNear(1e-5f), std::vector<float>{0.05f, 0.45f, 0.15f, 0.5f}));

        const GLuint middle = floatTexture(2, 2, premultiplied);
        EXPECT_THAT(drawn(screen, middle, multiplier, 2, 2), Pointwise(FloatNear(1e-5f), uploaded));
        glDeleteTextures(1, &input);
        glDeleteTextures(1, &middle);
    }
}

TEST_F(PassTest, ADrawLeavesNothingBoundASecondMakesNothingAndDestructionDeletesWhatTheFirstMade)
{
    // Host order (A, R, G, B): opaque.
    const GLuint texture = floatTexture(1, 1, {1.0f, 0.5f, 0.25f, 0.0f});
    const auto before = liveObjects();
    {
        BackgroundRender background;
        drawn(background, texture, 1.0f, 1, 1);
        const auto made = liveObjects();
        EXPECT_EQ(made.size(), before.size() + 3) << "a vertex array, a buffer and a program";
        EXPECT_EQ(integer(GL_VERTEX_ARRAY_BINDING), 0);
        EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
        GLint enabled[2] = {1, 1};
        glGetVertexAttribiv(0, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled[0]);
        glGetVertexAttribiv(1, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled[1]);
        EXPECT_THAT(enabled, Each(0));

        EXPECT_THAT(drawn(background, texture, 1.0f, 1, 1),
                    Pointwise(FloatNear(1e-6f), {0.5f, 0.25f, 0.0f, 1.0f}));
        EXPECT_EQ(liveObjects(), made) << "a second draw made or deleted something";
        glUseProgram(0);
    }
    EXPECT_EQ(liveObjects(), before) << "destruction kept what the first draw made";
    glDeleteTextures(1, &texture);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
