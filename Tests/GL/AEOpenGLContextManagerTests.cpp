#include "GL/AEOpenGLContextManager.h"

#include "HostTypes.h"
#include "Support/GLContextTest.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <thread>

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::Throws;

class AEOpenGLContextManagerTest : public GLContextTest {
protected:
    void TearDown() override
    {
        AEOpenGLContextManager::releaseContextManager();
        GLContextTest::TearDown();
    }

    // The render context of a new thread, asked for there.
    static AEOpenGLContext* renderContextOfANewThread()
    {
        AEOpenGLContext* context = nullptr;
        std::thread thread([&] {
            context = AEOpenGLContextManager::getCurrentRenderContext();
            context->makeContextCurrent();
            releaseCurrent();
        });
        thread.join();
        return context;
    }
};

TEST_F(AEOpenGLContextManagerTest, ThreadsGetTheirOwnContextOnceAndReleaseDestroysEveryOne)
{
    const auto atStart = GLPlatform::liveContextCount();
    // Before set-up there is no group to join: a render context stands alone, and goes at release too.
    ASSERT_NE(renderContextOfANewThread(), nullptr);
    AEOpenGLContextManager::setupContextManager();
    AEOpenGLContext* shared = AEOpenGLContextManager::getSharedDataContext();
    ASSERT_NE(shared, nullptr);
    EXPECT_EQ(GLPlatform::currentHandle(), shared->cglContext());
    const auto live = GLPlatform::liveContextCount();

    AEOpenGLContext* main = AEOpenGLContextManager::getCurrentRenderContext();
    EXPECT_EQ(AEOpenGLContextManager::getCurrentRenderContext(), main);
    EXPECT_EQ(GLPlatform::liveContextCount(), live + 1) << "two requests on one thread made two contexts";
    AEOpenGLContext* first = renderContextOfANewThread();
    AEOpenGLContext* second = renderContextOfANewThread();
    EXPECT_NE(first, main);
    EXPECT_NE(second, first);
    EXPECT_EQ(GLPlatform::liveContextCount(), live + 3);
    const GLPlatform::ContextId mainId = GLPlatform::id(main->nsContext());

    AEOpenGLContextManager::releaseContextManager();

    EXPECT_EQ(GLPlatform::liveContextCount(), atStart);
    EXPECT_EQ(AEOpenGLContextManager::getSharedDataContext(), nullptr);

    // This thread's context went with the release: a new one is made.
    AEOpenGLContextManager::setupContextManager();
    AEOpenGLContext* again = AEOpenGLContextManager::getCurrentRenderContext();
    ASSERT_NE(again, nullptr);
    EXPECT_NE(GLPlatform::id(again->nsContext()), mainId);
    EXPECT_EQ(GLPlatform::currentHandle(), again->cglContext());
}

TEST_F(AEOpenGLContextManagerTest, AFailedCreationIsOneLineAndAThrownIntAndLeavesTheManagerUsable)
{
    AEOpenGLContextManager::setupContextManager();
    GLPlatform::failNextContextCreations(1);
    const std::string errors = standardErrorOf([] {
        EXPECT_THAT([] { AEOpenGLContextManager::getCurrentRenderContext(); }, Throws<int>(PF_Err_BAD_CALLBACK_PARAM));
    });
    EXPECT_EQ(occurrences(errors, "\n"), 1u) << errors;
    EXPECT_NE(errors.find("cannot create an OpenGL context: eglCreateContext"), std::string::npos) << errors;

    // Another thread is not locked out, and this one may ask again.
    auto other = std::async(std::launch::async, [] { return renderContextOfANewThread(); });
    ASSERT_EQ(other.wait_for(std::chrono::seconds(30)), std::future_status::ready) << "the lock was kept";
    EXPECT_NE(other.get(), nullptr);
    AEOpenGLContext* retried = AEOpenGLContextManager::getCurrentRenderContext();
    ASSERT_NE(retried, nullptr);
    EXPECT_EQ(GLPlatform::currentHandle(), retried->cglContext());
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
