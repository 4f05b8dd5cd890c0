#pragma once

#include "GL/AEOpenGLContextManager.h"
#include "GL/AEOpenGLUtilities.h"
#include "GL/AEOpenglMainFrameBuffer.h"
#include "GL/BackgroundRender.h"
#include "HostPixels.h"
#include "Runtime/HostRuntime.h"
#include "Support/GLContextTest.h"

#include <glbinding/gl/gl.h>

#include <set>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

// A test in the plug-in's own share group, as a frame runs: the shared data
// context exists, and the thread's render context is current. A host runtime
// gives worlds and suites. TearDown sets down like the effect does: the main
// frame buffer is destroyed with the shared data context current, then every
// context goes.
class RenderContextTest : public GLContextTest {
protected:
    void SetUp() override
    {
        GLContextTest::SetUp();
        if (HasFatalFailure()) {
            return;
        }
        AEOpenGLContextManager::setupContextManager();
        AEOpenGLContextManager::getCurrentRenderContext()->makeContextCurrent();
    }

    void TearDown() override
    {
        if (AEOpenGLContext* shared = AEOpenGLContextManager::getSharedDataContext()) {
            shared->makeContextCurrent();
        }
        const gl::GLuint renderBuffer = frame().renderBuffer();
        frame().destory();
        EXPECT_FALSE(renderBuffer != 0 && gl::glIsRenderbuffer(renderBuffer) == gl::GL_TRUE)
            << "set-down kept the final renderbuffer";
        AEOpenGLContextManager::releaseContextManager();
        GLContextTest::TearDown();
    }

    static AEOpenglMainFrameBuffer& frame() { return *AEOpenglMainFrameBuffer::mainFrameBuffer(); }

    // The GL objects alive in the current context among the first names of
    // each kind, as "kind name": what a step made or deleted shows as a
    // difference of two of these.
    static std::set<std::string> liveObjects()
    {
        using namespace gl;
        const std::pair<const char*, GLboolean (*)(GLuint)> kinds[] = {
            {"framebuffer", glIsFramebuffer}, {"renderbuffer", glIsRenderbuffer}, {"texture", glIsTexture},
            {"vertex array", glIsVertexArray}, {"buffer", glIsBuffer}, {"program", glIsProgram},
            {"shader", glIsShader},
        };
        std::set<std::string> live;
        for (const auto& [kind, exists] : kinds) {
            for (GLuint name = 1; name < 100; ++name) {
                if (exists(name) == GL_TRUE) {
                    live.insert(std::string(kind) + " " + std::to_string(name));
                }
            }
        }
        return live;
    }

    static gl::GLint integer(gl::GLenum name)
    {
        gl::GLint value = 0;
        gl::glGetIntegerv(name, &value);
        return value;
    }

    Host::HostRuntime mHost;
};

}  // namespace Halvane::Quorvex::Testing
