// The EGL layer on its own: contexts that leave the current one alone, ids
// that outlive the driver's handles, and refusals that say what failed.
#include "GL/GLPlatform.h"

#include "Support/GLContextTest.h"

#include <set>
#include <thread>

namespace Halvane::Quorvex::Testing {
namespace {

using GLPlatformTest = GLContextTest;

TEST_F(GLPlatformTest, CreatingAContextLeavesTheCurrentOneAloneAndGivesAnIdNeverSeenBefore)
{
    std::set<GLPlatform::ContextId> ids;
    for (int round = 0; round < 8; ++round) {
        GLPlatform::OwnedContext context = GLPlatform::createContext(nullptr);
        EXPECT_TRUE(hostIsCurrent());
        EXPECT_EQ(GLPlatform::currentContextId(), 0u) << "the host's context is not the layer's";
        EXPECT_NE(GLPlatform::id(context.get()), 0u);
        ids.insert(GLPlatform::id(context.get()));

        GLPlatform::makeCurrent(context.get());
        EXPECT_EQ(GLPlatform::currentHandle(), GLPlatform::handle(context.get()));
        EXPECT_EQ(GLPlatform::currentContextId(), GLPlatform::id(context.get()));
        EXPECT_EQ(GLPlatform::currentBinding().drawSurface, nullptr);
        GLPlatform::makeCurrent(hostBinding());
        EXPECT_TRUE(hostIsCurrent());
    }
    EXPECT_EQ(ids.size(), 8u) << "an id was handed out twice";
    GLPlatform::makeCurrent(GLPlatform::CurrentBinding{});
    EXPECT_EQ(GLPlatform::currentHandle(), nullptr);
}

TEST_F(GLPlatformTest, ARefusalNamesTheCallAndTheError)
{
    GLPlatform::OwnedContext context = GLPlatform::createContext(nullptr);
    GLPlatform::makeCurrent(context.get());

    // A context current on one thread cannot be made current on another.
    std::string message;
    std::thread other([&] {
        try {
            GLPlatform::makeCurrent(context.get());
        } catch (const GLPlatform::Error& error) {
            message = error.what();
        }
    });
    other.join();

    EXPECT_EQ(message, "eglMakeCurrent failed with EGL_BAD_ACCESS (0x3002)");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
