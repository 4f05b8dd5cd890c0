// The snapshot of the host's context against a context the test makes as the
// host would, with a pbuffer surface that has to come back too.
#include "GL/SaveRestoreGLContextMac.h"

#include "GL/AEOpenGLContext.h"
#include "Support/GLContextTest.h"

namespace Halvane::Quorvex::Testing {
namespace {

using SaveRestoreGLContextMacTest = GLContextTest;

TEST_F(SaveRestoreGLContextMacTest, RestoreGivesTheHostItsContextAndSurfacesBackOnce)
{
    AEOpenGLContext plugin(nullptr);
    makeHostCurrent();
    {
        SaveRestoreGLContextMac saver;
        EXPECT_EQ(saver.context(), hostBinding());
        EXPECT_EQ(saver.rc(), hostHandle());
        plugin.makeContextCurrent();
        ASSERT_FALSE(hostIsCurrent());

        saver.restore();
        EXPECT_TRUE(hostIsCurrent());
        EXPECT_TRUE(saver.restored());

        // Neither a second restore nor the destructor's puts the host back again.
        plugin.makeContextCurrent();
        saver.restore();
        EXPECT_EQ(GLPlatform::currentHandle(), plugin.cglContext()) << "restored a second time";
    }
    EXPECT_EQ(GLPlatform::currentHandle(), plugin.cglContext()) << "the destructor restored again";
}

TEST_F(SaveRestoreGLContextMacTest, RestoreSwitchesNothingWhileTheHostsContextIsCurrentOrWhenThereWasNone)
{
    {
        SaveRestoreGLContextMac saver;
        const auto switches = GLPlatform::makeCurrentCount();
        saver.restore();
        EXPECT_EQ(GLPlatform::makeCurrentCount(), switches);
        EXPECT_TRUE(saver.restored());
        EXPECT_TRUE(hostIsCurrent());
    }

    releaseCurrent();
    SaveRestoreGLContextMac saver;
    EXPECT_EQ(saver.rc(), nullptr);
    AEOpenGLContext plugin(nullptr);
    const auto switches = GLPlatform::makeCurrentCount();
    saver.restore();
    EXPECT_EQ(GLPlatform::makeCurrentCount(), switches);
    EXPECT_EQ(GLPlatform::currentHandle(), plugin.cglContext());
}

TEST_F(SaveRestoreGLContextMacTest, ASnapshotLeftByAnExceptionStillRestores)
{
    try {
        SaveRestoreGLContextMac saver;
        AEOpenGLContext plugin(nullptr);
        throw 516;
    } catch (int) {
    }
    EXPECT_TRUE(hostIsCurrent());
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
