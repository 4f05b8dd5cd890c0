// Contexts on a real EGL display: the platform layer's, the plug-in's own, and the snapshot of the host's.
#include "GL/AEOpenGLContext.h"
#include "GL/SaveRestoreGLContextMac.h"

#include "Support/GLContextTest.h"

#include <glbinding/gl/gl.h>
#include <gmock/gmock.h>

#include <set>
#include <string>
#include <thread>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::MatchesRegex;

using ContextTest = GLContextTest;

TEST_F(ContextTest, APlatformContextLeavesTheCurrentOneAloneGetsANewIdAndIsRefusedWhereCurrentElsewhere)
{
    std::set<GLPlatform::ContextId> ids;
    for (int round = 0; round < 8; ++round) {
        GLPlatform::OwnedContext context = GLPlatform::createContext(nullptr);
        EXPECT_TRUE(hostIsCurrent());
        EXPECT_EQ(GLPlatform::currentContextId(), 0u) << "the host's context is not the layer's";
        ids.insert(GLPlatform::id(context.get()));
        GLPlatform::makeCurrent(context.get());
        EXPECT_EQ(GLPlatform::currentHandle(), GLPlatform::handle(context.get()));
        EXPECT_EQ(GLPlatform::currentContextId(), GLPlatform::id(context.get()));
        EXPECT_EQ(GLPlatform::currentBinding().drawSurface, nullptr);
        GLPlatform::makeCurrent(hostBinding());
    }
    EXPECT_EQ(ids.size(), 8u) << "an id was handed out twice";
    EXPECT_EQ(ids.count(0), 0u);

    // A context current on one thread cannot be made current on another: the refusal names call and error.
    GLPlatform::OwnedContext context = GLPlatform::createContext(nullptr);
    GLPlatform::makeCurrent(context.get());
    std::string message;
    std::thread([&] {
        try {
            GLPlatform::makeCurrent(context.get());
        } catch (const GLPlatform::Error& error) {
            message = error.what();
        }
    }).join();
    EXPECT_EQ(message, "eglMakeCurrent failed with EGL_BAD_ACCESS (0x3002)");
    GLPlatform::makeCurrent(GLPlatform::CurrentBinding{});
    EXPECT_EQ(GLPlatform::currentHandle(), nullptr);
}

TEST_F(ContextTest, ANewContextPrintsItsBlockOnceAndIsCurrentInGlbinding)
{
    std::unique_ptr<AEOpenGLContext> context;
    const std::string printed = standardOutputOf([&] {
        context = std::make_unique<AEOpenGLContext>(nullptr);
        AEOpenGLContext second(context.get());
        context->makeContextCurrent();
    });
    const std::string block = "\nOpenGL Version:  [0-9]+\\.[0-9]+\n"
                              "OpenGL Vendor:   [^\n]+\n"
                              "OpenGL Renderer: [^\n]+\n"
                              "OpenGL Revision: [0-9]+ \\(gl\\.xml\\)\n\n";
    EXPECT_THAT(printed, MatchesRegex(block + block));

    const auto handle = static_cast<glbinding::ContextHandle>(GLPlatform::id(context->nsContext()));
    EXPECT_EQ(GLPlatform::currentHandle(), context->cglContext());
    EXPECT_EQ(glbindingContext(), handle);
    EXPECT_FALSE(context->extensions().empty());
    EXPECT_GE(integer(GL_MAJOR_VERSION) * 10 + integer(GL_MINOR_VERSION), 33);
    EXPECT_EQ(integer(GL_CONTEXT_PROFILE_MASK), static_cast<GLint>(GL_CONTEXT_CORE_PROFILE_BIT));

    glbinding::Binding::useContext(glbindingHandleOfHost());
    context->makeContextCurrent();
    EXPECT_EQ(glbindingContext(), handle) << "glbinding was not pointed at the context again";
}

TEST_F(ContextTest, ASnapshotRestoresTheHostOnceAndNothingWhenNothingWasCurrent)
{
    AEOpenGLContext plugin(nullptr);
    makeHostCurrent();
    {
        SaveRestoreGLContextMac saver;
        plugin.makeContextCurrent();
        saver.restore();
        EXPECT_TRUE(hostIsCurrent());
        // Neither a second restore nor the destructor's puts the host back again.
        plugin.makeContextCurrent();
        saver.restore();
    }
    EXPECT_EQ(GLPlatform::currentHandle(), plugin.cglContext()) << "restored a second time";

    // With nothing current at the snapshot, restoring leaves the plug-in's context alone.
    releaseCurrent();
    SaveRestoreGLContextMac saver;
    plugin.makeContextCurrent();
    saver.restore();
    EXPECT_EQ(GLPlatform::currentHandle(), plugin.cglContext());
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
