// The off-screen frame and its stack of drawing levels on llvmpipe.
#include "RenderContextTest.h"

#include <gmock/gmock.h>

#include <vector>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::FloatNear;
using ::testing::IsEmpty;
using ::testing::Pointwise;

class MainFrameBufferTest : public RenderContextTest {
protected:
    // Fills the bound target with one colour.
    static void paint(float r, float g, float b, float a)
    {
        glClearColor(r, g, b, a);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    static std::vector<float> solid(std::size_t pixels, const std::vector<float>& rgba)
    {
        std::vector<float> result;
        for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
            result.insert(result.end(), rgba.begin(), rgba.end());
        }
        return result;
    }

    // The RGBA floats of level 0 of the texture, rows bottom first; then the texture is deleted.
    static std::vector<float> takeTexture(GLuint texture)
    {
        const std::vector<GLint> size = layout(texture);
        std::vector<float> contents(static_cast<std::size_t>(size[1]) * static_cast<std::size_t>(size[2]) * 4);
        glBindTexture(GL_TEXTURE_2D, texture);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, contents.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        glDeleteTextures(1, &texture);
        return contents;
    }

    static GLint attachment(GLenum target, GLenum point)
    {
        GLint name = 0;
        glGetFramebufferAttachmentParameteriv(target, point, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &name);
        return name;
    }

    static GLint renderbufferValue(GLuint renderbuffer, GLenum name)
    {
        GLint value = 0;
        glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
        glGetRenderbufferParameteriv(GL_RENDERBUFFER, name, &value);
        return value;
    }

    // The format, width and height of level 0 of a texture.
    static std::vector<GLint> layout(GLuint texture)
    {
        std::vector<GLint> values;
        glBindTexture(GL_TEXTURE_2D, texture);
        for (const GLenum name : {GL_TEXTURE_INTERNAL_FORMAT, GL_TEXTURE_WIDTH, GL_TEXTURE_HEIGHT}) {
            glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, name, &values.emplace_back());
        }
        glBindTexture(GL_TEXTURE_2D, 0);
        return values;
    }
};

TEST_F(MainFrameBufferTest, TargetsAreMadeOnlyWhenTheSizeOrFormatChangesAndGoAtSetDown)
{
    // Set-down leaves the frame 0 by 0 in the format it had.
    const auto before = liveObjects();
    frame().prepare(0, 0, true, frame().colourFormat());
    EXPECT_EQ(liveObjects(), before) << "a set-down frame of 0 by 0 made something";
    frame().prepare(8, 4, true);
    const GLuint first = frame().renderBuffer();
    ASSERT_EQ(glIsRenderbuffer(first), GL_TRUE);
    EXPECT_EQ(renderbufferValue(first, GL_RENDERBUFFER_WIDTH), 8);
    EXPECT_EQ(renderbufferValue(first, GL_RENDERBUFFER_INTERNAL_FORMAT), static_cast<GLint>(GL_RGBA8));
    const auto prepared = liveObjects();
    frame().prepare(8, 4, false);
    EXPECT_EQ(liveObjects(), prepared);
    EXPECT_EQ(frame().renderBuffer(), first);

    // A whole frame at each size, so that every target has been bound and
    // exists. A multisampled frame ends with nothing enabled or bound.
    frame().beginDrawing();
    EXPECT_EQ(glIsEnabled(GL_MULTISAMPLE), GL_TRUE);
    frame().endDrawing(1.0f);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE);
    EXPECT_EQ(glIsEnabled(GL_MULTISAMPLE), GL_FALSE);
    EXPECT_EQ(integer(GL_VERTEX_ARRAY_BINDING), 0);
    EXPECT_THAT(frame().renderBufferStack(), IsEmpty());
    for (const auto& [width, format] : {std::pair{6, GL_RGBA8}, std::pair{6, GL_RGBA16}}) {
        const GLuint old = frame().renderBuffer();
        const std::size_t objects = liveObjects().size();
        frame().prepare(width, 4, true, format);
        frame().beginDrawing();
        frame().endDrawing(1.0f);
        EXPECT_EQ(glIsRenderbuffer(old), GL_FALSE);
        EXPECT_EQ(liveObjects().size(), objects) << "the old targets were not all deleted";
        EXPECT_EQ(renderbufferValue(frame().renderBuffer(), GL_RENDERBUFFER_WIDTH), width);
        EXPECT_EQ(renderbufferValue(frame().renderBuffer(), GL_RENDERBUFFER_INTERNAL_FORMAT),
                  static_cast<GLint>(format));
    }
    glUseProgram(0);  // a program in use outlives its deletion
    frame().destory();
    EXPECT_EQ(liveObjects(), before) << "set-down kept a target, or the screen pass a program, vertex array or buffer";
}

TEST_F(MainFrameBufferTest, APopHandsBackWhatWasDrawnGivesUpItsRenderbuffersAndBringsTheLowerLevelBack)
{
    for (const bool multisample : {true, false}) {
        SCOPED_TRACE(multisample ? "multisampled" : "single-sampled");
        frame().prepare(multisample ? 3 : 5, 2, multisample, GL_RGBA16);
        const std::size_t pixels = multisample ? 6 : 10;
        frame().pushRenderContext(false, false);
        paint(1.0f, 0.0f, 0.0f, 1.0f);
        const GLuint lower = frame().renderBufferStack().back();
        // The upper level owns a stencil renderbuffer beside its colour.
        frame().pushRenderContext(true, true);
        const GLuint upper = frame().renderBufferStack().back();
        ASSERT_EQ(frame().stencilBuffers().count(upper), 1u);
        const GLuint stencil = frame().stencilBuffers().at(upper);
        const GLint samples = multisample ? frame().sampleCount() : 0;
        EXPECT_EQ(renderbufferValue(upper, GL_RENDERBUFFER_SAMPLES), samples);
        EXPECT_EQ(renderbufferValue(stencil, GL_RENDERBUFFER_SAMPLES), samples);
        EXPECT_EQ(attachment(GL_FRAMEBUFFER, GL_STENCIL_ATTACHMENT), static_cast<GLint>(stencil));
        EXPECT_EQ(AEOpenGLUtilities::CheckFramebufferStatus(), "OK");
        paint(0.25f, 0.5f, 0.75f, 0.5f);

        const GLuint texture = frame().popRenderContext();

        EXPECT_EQ(glIsRenderbuffer(upper), GL_FALSE);
        EXPECT_EQ(glIsRenderbuffer(stencil), GL_FALSE);
        EXPECT_THAT(frame().stencilBuffers(), IsEmpty());
        EXPECT_EQ(attachment(GL_FRAMEBUFFER, GL_STENCIL_ATTACHMENT), 0) << "the plain level kept the stencil";
        EXPECT_EQ(layout(texture)[0], static_cast<GLint>(GL_RGBA16));
        EXPECT_THAT(takeTexture(texture), Pointwise(FloatNear(1e-4f), solid(pixels, {0.25f, 0.5f, 0.75f, 0.5f})));
        EXPECT_THAT(frame().renderBufferStack(), ElementsAre(lower));
        EXPECT_EQ(attachment(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0), static_cast<GLint>(lower));
        EXPECT_THAT(takeTexture(frame().popRenderContext()), Pointwise(FloatNear(0.0f), solid(pixels, {1, 0, 0, 1})));
        EXPECT_THAT(frame().renderBufferStack(), IsEmpty());
    }
    EXPECT_GT(frame().sampleCount(), 0);
    EXPECT_LE(frame().sampleCount(), 8);

    // clearStack deletes every level, stencils included.
    frame().pushRenderContext(false, false);
    frame().pushRenderContext(false, true);
    std::vector<GLuint> names = frame().renderBufferStack();
    names.push_back(frame().stencilBuffers().begin()->second);
    frame().clearStack();
    EXPECT_THAT(frame().renderBufferStack(), IsEmpty());
    for (GLuint name : names) {
        EXPECT_EQ(glIsRenderbuffer(name), GL_FALSE) << name;
    }

    // With no level open a pop hands back nothing, and closing the frame does nothing.
    const auto before = liveObjects();
    const GLint bound = integer(GL_DRAW_FRAMEBUFFER_BINDING);
    EXPECT_EQ(frame().popRenderContext(), 0u);
    frame().endDrawing(1.0f);
    EXPECT_EQ(liveObjects(), before);
    EXPECT_EQ(integer(GL_DRAW_FRAMEBUFFER_BINDING), bound);

    // A normal level draws into an empty texture of its own size, and its pop brings the frame's level back.
    frame().beginDrawing();
    const GLuint top = frame().renderBufferStack().back();
    const GLuint floats = frame().createFloatRenderTexture(Vec2(4.99, 2.0), false, false);
    EXPECT_THAT(layout(floats), ElementsAre(GL_RGBA32F, 4, 2));
    const GLuint sized = frame().createRenderTexture(Vec2(5.9, 3.2), false);
    EXPECT_THAT(layout(sized), ElementsAre(GL_RGBA16, 5, 3));
    EXPECT_THAT(takeTexture(sized), Each(0.0f));
    frame().pushNormalRenderContext(floats, Vec2(4.0, 2.0), 0);
    const GLint normal = integer(GL_DRAW_FRAMEBUFFER_BINDING);
    paint(0.5f, 2.0f, -1.0f, 1.0f);
    frame().popNormalRenderContext();
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_THAT(viewport, ElementsAre(0, 0, 5, 2)) << "the frame's viewport was not brought back";
    EXPECT_EQ(glIsFramebuffer(static_cast<GLuint>(normal)), GL_FALSE);
    EXPECT_EQ(attachment(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0), static_cast<GLint>(top));
    EXPECT_THAT(takeTexture(floats), Pointwise(FloatNear(0.0f), solid(8, {0.5f, 2.0f, -1.0f, 1.0f})));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
