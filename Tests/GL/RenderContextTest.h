#pragma once

#include "GL/AEOpenGLContextManager.h"
#include "GL/AEOpenGLUtilities.h"
#include "GL/AEOpenglMainFrameBuffer.h"
#include "GL/BackgroundRender.h"
#include "Runtime/HostRuntime.h"
#include "Runtime/World.h"
#include "Support/GLContextTest.h"

#include <glbinding/gl/gl.h>

#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <thread>
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
        mBackground.reset();
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

    // One frame as the effect runs it, with BackgroundRender as an effect that
    // changes nothing: the output should come back equal to the input. The
    // sample mode takes effect with a new size only.
    void runFrame(Host::World& input, Host::World& output, bool multisample = true)
    {
        PF_InData inData = mHost.inData();
        const PF_PixelFormat format = input.format();
        frame().prepare(input.width(), input.height(), multisample, AEOpenGLUtilities::RenderTargetFormat(format));
        frame().beginDrawing();
        unsigned long pixelSize = 0;
        gl::GLenum type = gl::GL_NONE;
        float multiplier = 0.0f;
        const gl::GLuint texture = AEOpenGLUtilities::UploadTexture(
            format, input.layer(), output.layer(), &inData, pixelSize, type, multiplier, false);
        mBackground->draw(texture, multiplier);
        gl::glDeleteTextures(1, &texture);
        frame().endDrawing(multiplier);
        AEOpenGLUtilities::DownloadTexture(static_cast<unsigned>(input.width()),
                                           static_cast<unsigned>(input.height()), input.layer(),
                                           output.layer(), &inData, format, pixelSize, type);
    }

    // Runs `work` on a new thread with that thread's render context current,
    // and lets the context go from the thread before it ends.
    static void onAnotherThread(const std::function<void()>& work)
    {
        std::thread thread([&] {
            AEOpenGLContextManager::getCurrentRenderContext()->makeContextCurrent();
            work();
            releaseCurrent();
        });
        thread.join();
    }

    // The RGBA floats of level 0 of a 2D texture, rows bottom first.
    static std::vector<float> textureContents(gl::GLuint texture)
    {
        using namespace gl;
        GLint width = 0;
        GLint height = 0;
        glBindTexture(GL_TEXTURE_2D, texture);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
        std::vector<float> values(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, values.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        return values;
    }

    // A float texture of `width` by `height` pixels holding `rgba`, unbound.
    static gl::GLuint floatTexture(int width, int height, const std::vector<float>& rgba)
    {
        using namespace gl;
        GLuint texture = 0;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(GL_RGBA32F), width, height, 0, GL_RGBA, GL_FLOAT,
                     rgba.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        return texture;
    }

    static gl::GLint integer(gl::GLenum name)
    {
        gl::GLint value = 0;
        gl::glGetIntegerv(name, &value);
        return value;
    }

    Host::HostRuntime mHost;
    std::optional<BackgroundRender> mBackground{std::in_place};
};

// Host pixels by channel in units of the depth's white (1 is 255, 32768 or
// 1.0f), channel 0 being alpha as the host stores it.
struct HostPixels {
    static double white(PF_PixelFormat format)
    {
        return format == PF_PixelFormat_ARGB32 ? 255.0 : format == PF_PixelFormat_ARGB64 ? 32768.0 : 1.0;
    }

    static double get(Host::World& world, A_long x, A_long y, int channel)
    {
        switch (world.format()) {
        case PF_PixelFormat_ARGB32:
            return reinterpret_cast<const A_u_char*>(&world.pixel8(x, y))[channel] / 255.0;
        case PF_PixelFormat_ARGB64:
            return reinterpret_cast<const A_u_short*>(&world.pixel16(x, y))[channel] / 32768.0;
        default:
            return reinterpret_cast<const PF_FpShort*>(&world.pixelFloat(x, y))[channel];
        }
    }

    // Integer depths round to the nearest step.
    static void fill(Host::World& world, const std::function<double(A_long x, A_long y, int channel)>& value)
    {
        for (A_long y = 0; y < world.height(); ++y) {
            for (A_long x = 0; x < world.width(); ++x) {
                for (int channel = 0; channel < 4; ++channel) {
                    const double v = value(x, y, channel);
                    switch (world.format()) {
                    case PF_PixelFormat_ARGB32:
                        reinterpret_cast<A_u_char*>(&world.pixel8(x, y))[channel] =
                            static_cast<A_u_char>(std::lround(v * 255.0));
                        break;
                    case PF_PixelFormat_ARGB64:
                        reinterpret_cast<A_u_short*>(&world.pixel16(x, y))[channel] =
                            static_cast<A_u_short>(std::lround(v * 32768.0));
                        break;
                    default:
                        reinterpret_cast<PF_FpShort*>(&world.pixelFloat(x, y))[channel] = static_cast<PF_FpShort>(v);
                    }
                }
            }
        }
    }

    // Every byte of the world, padding included.
    static std::vector<unsigned char> bytes(Host::World& world)
    {
        return {world.row(0), world.row(0) + static_cast<std::size_t>(world.rowBytes()) * world.height()};
    }
};

}  // namespace Halvane::Quorvex::Testing
