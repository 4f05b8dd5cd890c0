// The plug-in's own contexts on a real EGL display: creation, switching, the
// flush on the way out of a context, and what a failed creation reports.
#include "GL/AEOpenGLContext.h"

#include "HostTypes.h"
#include "Support/GLContextTest.h"

#include <glbinding/AbstractFunction.h>
#include <glbinding/FunctionCall.h>
#include <glbinding/callbacks.h>
#include <glbinding/gl/gl.h>
#include <gmock/gmock.h>

#include <atomic>
#include <cstring>
#include <string>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

// Counts glFlush calls through glbinding while it lives, in the context
// bound at its start: a flush is what a switch owes the context it leaves,
// and it leaves no state to read back.
class FlushCounter {
public:
    FlushCounter()
    {
        sFlushes = 0;
        glbinding::setBeforeCallback([](const glbinding::FunctionCall& call) {
            if (std::strcmp(call.function->name(), "glFlush") == 0) {
                ++sFlushes;
            }
        });
        glbinding::addCallbackMask(glbinding::CallbackMask::Before);
    }
    ~FlushCounter()
    {
        glbinding::removeCallbackMask(glbinding::CallbackMask::Before);
        glbinding::setBeforeCallback(nullptr);
    }
    static int flushes() { return sFlushes; }

private:
    static inline std::atomic<int> sFlushes{0};
};

using AEOpenGLContextTest = GLContextTest;

TEST_F(AEOpenGLContextTest, ANewContextIsCurrentAndBoundInGlbindingAndMakingItCurrentAgainFlushesNothing)
{
    AEOpenGLContext context(nullptr);
    const auto handle = static_cast<glbinding::ContextHandle>(GLPlatform::id(context.nsContext()));

    EXPECT_EQ(GLPlatform::currentHandle(), context.cglContext());
    EXPECT_EQ(glbindingContext(), handle);
    EXPECT_FALSE(context.extensions().empty());
    GLint major = 0;
    GLint minor = 0;
    GLint profile = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    EXPECT_GE(major * 10 + minor, 33);
    EXPECT_EQ(profile, static_cast<GLint>(GL_CONTEXT_CORE_PROFILE_BIT));

    glbinding::Binding::useContext(glbindingHandleOfHost());
    FlushCounter counter;
    context.makeContextCurrent();
    EXPECT_EQ(counter.flushes(), 0);
    EXPECT_EQ(GLPlatform::currentHandle(), context.cglContext());
    EXPECT_EQ(glbindingContext(), handle) << "glbinding was not pointed at the context again";
}

TEST_F(AEOpenGLContextTest, EveryContextPrintsItsBlockOnceAndSwitchingPrintsNothing)
{
    const std::string printed = standardOutputOf([] {
        AEOpenGLContext first(nullptr);
        AEOpenGLContext second(&first);
        first.makeContextCurrent();
        second.makeContextCurrent();
    });

    const std::string block = "\nOpenGL Version:  [0-9]+\\.[0-9]+\n"
                              "OpenGL Vendor:   [^\n]+\n"
                              "OpenGL Renderer: [^\n]+\n"
                              "OpenGL Revision: [0-9]+ \\(gl\\.xml\\)\n\n";
    EXPECT_THAT(printed, MatchesRegex(block + block));
}

TEST_F(AEOpenGLContextTest, LeavingAContextFlushesItUnlessItsFramebufferIsIncomplete)
{
    AEOpenGLContext context(nullptr);
    // The flushes of a switch to the host's context; the context is current again after.
    const auto flushesOfLeaving = [&] {
        int flushes = 0;
        {
            FlushCounter counter;
            AEOpenGLContext::makeCurrentFlush(hostHandle());
            flushes = counter.flushes();
        }
        EXPECT_EQ(GLPlatform::currentHandle(), hostHandle()) << "did not switch";
        context.makeContextCurrent();
        return flushes;
    };
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    ASSERT_NE(glCheckFramebufferStatus(GL_FRAMEBUFFER), GL_FRAMEBUFFER_COMPLETE);
    EXPECT_EQ(flushesOfLeaving(), 0) << "flushed with an incomplete framebuffer bound";

    GLuint renderbuffer = 0;
    glGenRenderbuffers(1, &renderbuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 4, 4);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, renderbuffer);
    ASSERT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GL_FRAMEBUFFER_COMPLETE);
    EXPECT_EQ(flushesOfLeaving(), 1) << "a complete framebuffer was not flushed";

    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    EXPECT_EQ(flushesOfLeaving(), 1) << "the default framebuffer was not flushed";

    glDeleteRenderbuffers(1, &renderbuffer);
    glDeleteFramebuffers(1, &framebuffer);
}

TEST_F(AEOpenGLContextTest, AContextThatCannotBeCreatedIsOneLineOnStandardErrorAndAThrownInt)
{
    GLPlatform::failNextContextCreations(1);
    int thrown = 0;
    const std::string errors = standardErrorOf([&] {
        try {
            AEOpenGLContext context(nullptr);
        } catch (int error) {
            thrown = error;
        }
    });

    EXPECT_EQ(thrown, PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(occurrences(errors, "\n"), 1u) << errors;
    EXPECT_THAT(errors, HasSubstr("cannot create an OpenGL context: eglCreateContext"));
    EXPECT_TRUE(hostIsCurrent());

    AEOpenGLContext next(nullptr);
    EXPECT_EQ(GLPlatform::currentHandle(), next.cglContext());
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
