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

// A test in the plug-in's share group with the thread's render context current, as a frame runs. TearDown
// sets down as the effect does: the frame buffer goes with the shared data context current, then the contexts.
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
        frame().destory();
        AEOpenGLContextManager::releaseContextManager();
        GLContextTest::TearDown();
    }

    static AEOpenglMainFrameBuffer& frame() { return *AEOpenglMainFrameBuffer::mainFrameBuffer(); }

    // The GL objects alive in the current context among the first names of each kind, as "kind name".
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

    Host::HostRuntime mHost;
};

}  // namespace Halvane::Quorvex::Testing
