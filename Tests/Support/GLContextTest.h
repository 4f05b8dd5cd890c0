#pragma once

#include "GL/GLPlatform.h"

#include <EGL/egl.h>
#include <glbinding/AbstractFunction.h>
#include <glbinding/Binding.h>
#include <glbinding/CallbackMask.h>
#include <glbinding/FunctionCall.h>
#include <glbinding/callbacks.h>
#include <glbinding/gl/enum.h>
#include <glbinding/gl/functions.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace Halvane::Quorvex::Testing {

// A GL context of the host's own, made with EGL directly as a host's would be, current on the test's thread
// and bound in glbinding. At TearDown every platform-layer context must be gone, and every GL error that a
// call through glbinding raised (any thread, any context) fails the test.
class GLContextTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        watchGlbinding();
        takeGLErrors();
        mLiveContextsAtStart = GLPlatform::liveContextCount();
        mHostDisplay = static_cast<EGLDisplay>(GLPlatform::display());

        const EGLint configAttributes[] = {
            EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
            EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_NONE,
        };
        EGLConfig config = nullptr;
        EGLint configs = 0;
        ASSERT_TRUE(eglChooseConfig(mHostDisplay, configAttributes, &config, 1, &configs) && configs == 1)
            << "no pbuffer config for the host's context";
        const EGLint surfaceAttributes[] = {EGL_WIDTH, 16, EGL_HEIGHT, 16, EGL_NONE};
        mHostSurface = eglCreatePbufferSurface(mHostDisplay, config, surfaceAttributes);
        ASSERT_NE(mHostSurface, EGL_NO_SURFACE);
        const EGLint contextAttributes[] = {
            EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 3,
            EGL_CONTEXT_OPENGL_PROFILE_MASK, EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, EGL_NONE,
        };
        eglBindAPI(EGL_OPENGL_API);
        mHostContext = eglCreateContext(mHostDisplay, config, EGL_NO_CONTEXT, contextAttributes);
        ASSERT_NE(mHostContext, EGL_NO_CONTEXT);
        makeHostCurrent();
        ASSERT_TRUE(hostIsCurrent());
    }

    void TearDown() override
    {
        for (const std::string& error : takeGLErrors()) {
            ADD_FAILURE() << "GL error: " << error;
        }
        EXPECT_EQ(GLPlatform::liveContextCount(), mLiveContextsAtStart)
            << "the test left contexts of the platform layer alive";
        releaseCurrent();
        if (mHostContext != EGL_NO_CONTEXT) {
            eglDestroyContext(mHostDisplay, mHostContext);
        }
        if (mHostSurface != EGL_NO_SURFACE) {
            eglDestroySurface(mHostDisplay, mHostSurface);
        }
    }

    GLPlatform::CurrentBinding hostBinding() const
    {
        return {mHostDisplay, mHostSurface, mHostSurface, mHostContext};
    }

    bool hostIsCurrent() const { return GLPlatform::currentBinding() == hostBinding(); }

    // As a host that draws with glbinding itself would.
    void makeHostCurrent() const
    {
        ASSERT_TRUE(eglMakeCurrent(mHostDisplay, mHostSurface, mHostSurface, mHostContext));
        const auto handle = glbindingHandleOfHost();
        glbinding::Binding::initialize(handle, true, false);
        glbinding::Binding::useContext(handle);
    }

    glbinding::ContextHandle glbindingHandleOfHost() const
    {
        return static_cast<glbinding::ContextHandle>(reinterpret_cast<std::intptr_t>(mHostContext));
    }

    static void releaseCurrent()
    {
        const EGLDisplay display = eglGetCurrentDisplay();
        if (display != EGL_NO_DISPLAY) {
            eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        }
    }

    // The context that glbinding last bound on the calling thread.
    static glbinding::ContextHandle glbindingContext() { return tLastGlbindingContext; }

    static gl::GLint integer(gl::GLenum name)
    {
        gl::GLint value = 0;
        gl::glGetIntegerv(name, &value);
        return value;
    }

    static std::string standardOutputOf(const std::function<void()>& work)
    {
        ::testing::internal::CaptureStdout();
        work();
        return ::testing::internal::GetCapturedStdout();
    }

    static std::string standardErrorOf(const std::function<void()>& work)
    {
        ::testing::internal::CaptureStderr();
        work();
        return ::testing::internal::GetCapturedStderr();
    }

    static std::size_t occurrences(const std::string& text, const std::string& part)
    {
        std::size_t count = 0;
        for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
            ++count;
        }
        return count;
    }

private:
    // glbinding keeps its callback switches per context: every context bound
    // gets the after-call switch, for every function but glGetError itself.
    static void watchGlbinding()
    {
        static std::once_flag once;
        std::call_once(once, [] {
            glbinding::Binding::addContextSwitchCallback([](glbinding::ContextHandle handle) {
                tLastGlbindingContext = handle;
                glbinding::addCallbackMaskExcept(glbinding::CallbackMask::After, {"glGetError"});
            });
            glbinding::setAfterCallback(recordGLError);
        });
    }

    static void recordGLError(const glbinding::FunctionCall& call)
    {
        static thread_local bool tAsking = false;
        if (tAsking || std::string(call.function->name()) == "glGetError") {
            return;
        }
        tAsking = true;
        const gl::GLenum error = gl::glGetError();
        tAsking = false;
        if (error != gl::GL_NO_ERROR) {
            std::ostringstream text;
            text << call.function->name() << " gave 0x" << std::hex << static_cast<unsigned>(error);
            std::lock_guard<std::mutex> lock(sErrorMutex);
            sErrors.push_back(text.str());
        }
    }

    static std::vector<std::string> takeGLErrors()
    {
        std::lock_guard<std::mutex> lock(sErrorMutex);
        return std::exchange(sErrors, {});
    }

    static inline std::mutex sErrorMutex;
    static inline std::vector<std::string> sErrors;

    static inline thread_local glbinding::ContextHandle tLastGlbindingContext = -1;

    EGLDisplay mHostDisplay = EGL_NO_DISPLAY;
    EGLSurface mHostSurface = EGL_NO_SURFACE;
    EGLContext mHostContext = EGL_NO_CONTEXT;
    std::size_t mLiveContextsAtStart = 0;
};

}  // namespace Halvane::Quorvex::Testing
