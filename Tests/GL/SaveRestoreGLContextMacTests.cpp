// The snapshot of the host's context against a context the test makes as the
// host would, with a pbuffer surface that has to come back too.
#include "GL/SaveRestoreGLContextMac.h"

#include "GL/AEOpenGLContext.h"
#include "Support/GLContextTest.h"

namespace Halvane::Quorvex::Testing {
namespace {

class SaveRestoreGLContextMacTest : public GLContextTest {};

TEST_F(SaveRestoreGLContextMacTest, RestoreGivesTheHostItsContextAndSurfacesBack)
{
    SaveRestoreGLContextMac saver;
    EXPECT_EQ(saver.context(), hostBinding());
    EXPECT_EQ(saver.rc(), hostHandle());

    AEOpenGLContext plugin(nullptr);
    ASSERT_FALSE(hostIsCurrent());
    saver.restore();

    EXPECT_TRUE(hostIsCurrent());
    EXPECT_TRUE(saver.restored());
}

TEST_F(SaveRestoreGLContextMacTest, RestoresAtMostOnce)
{
    SaveRestoreGLContextMac saver;
    AEOpenGLContext plugin(nullptr);
    saver.restore();
    plugin.makeContextCurrent();

    saver.restore();

    EXPECT_EQ(GLPlatform::currentHandle(), plugin.cglContext());
}

TEST_F(SaveRestoreGLContextMacTest, AContextStillCurrentIsLeftUntouched)
{
    SaveRestoreGLContextMac saver;
    const auto switches = GLPlatform::makeCurrentCount();
    GLCallLog log;

    saver.restore();

    EXPECT_EQ(GLPlatform::makeCurrentCount(), switches);
    EXPECT_TRUE(log.calls().empty()) << "GL was called, a flush perhaps";
    EXPECT_TRUE(saver.restored());
    EXPECT_TRUE(hostIsCurrent());
}

TEST_F(SaveRestoreGLContextMacTest, WithNothingCurrentAtTheStartNothingIsRestored)
{
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

    AEOpenGLContext plugin(nullptr);
    {
        SaveRestoreGLContextMac saver;
        makeHostCurrent();
        saver.restore();
        plugin.makeContextCurrent();
    }
    EXPECT_EQ(GLPlatform::currentHandle(), plugin.cglContext()) << "restored a second time";
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
