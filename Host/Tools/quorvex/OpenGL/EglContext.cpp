#include "OpenGL/EglContext.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Tools {

namespace {

const EGLint kContextAttributes[] = {
    EGL_CONTEXT_MAJOR_VERSION, 3,
    EGL_CONTEXT_MINOR_VERSION, 3,
    EGL_CONTEXT_OPENGL_PROFILE_MASK, EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
    EGL_NONE,
};

bool HasWord(const char* list, const char* word)
{
    const std::size_t length = std::strlen(word);
    for (const char* at = list ? std::strstr(list, word) : nullptr; at; at = std::strstr(at + 1, word)) {
        if ((at == list || at[-1] == ' ') && (at[length] == ' ' || at[length] == '\0')) {
            return true;
        }
    }
    return false;
}

std::string Failure(const char* call)
{
    char text[64];
    std::snprintf(text, sizeof text, "%s failed (EGL error 0x%04X)", call, static_cast<unsigned>(eglGetError()));
    return text;
}

// A context on `display`, or null with the reason in `why`. A display that
// fails is left initialised: the module may hold contexts on the same one.
EGLContext CreateOn(EGLDisplay display, std::string& why)
{
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) != EGL_TRUE) {
        why = Failure("eglInitialize");
        return EGL_NO_CONTEXT;
    }
    EGLConfig config = EGL_NO_CONFIG_KHR;
    if (!HasWord(eglQueryString(display, EGL_EXTENSIONS), "EGL_KHR_no_config_context")) {
        const EGLint attributes[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_NONE};
        EGLint count = 0;
        if (eglChooseConfig(display, attributes, &config, 1, &count) != EGL_TRUE || count == 0) {
            why = "no OpenGL config";
            return EGL_NO_CONTEXT;
        }
    }
    const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, kContextAttributes);
    if (context == EGL_NO_CONTEXT) {
        why = "no OpenGL 3.3 core context: " + Failure("eglCreateContext");
    }
    return context;
}

}  // namespace

EglContext::EglContext()
    : mPreviousDisplay(eglGetCurrentDisplay()),
      mPreviousDraw(eglGetCurrentSurface(EGL_DRAW)),
      mPreviousRead(eglGetCurrentSurface(EGL_READ)),
      mPreviousContext(eglGetCurrentContext()),
      mPreviousApi(eglQueryAPI())
{
    const auto platformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    const auto queryDevices = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    const auto deviceString =
        reinterpret_cast<PFNEGLQUERYDEVICESTRINGEXTPROC>(eglGetProcAddress("eglQueryDeviceStringEXT"));
    const char* forced = std::getenv("QUORVEX_EGL_PLATFORM");
    const std::string choice = forced ? forced : "";
    eglBindAPI(EGL_OPENGL_API);

    // The module's order: hardware devices, then surfaceless; a forced
    // device platform takes Mesa's software device too.
    std::vector<EGLDisplay> displays;
    EGLint count = 0;
    if (choice != "surfaceless" && platformDisplay && queryDevices && deviceString &&
        queryDevices(0, nullptr, &count) == EGL_TRUE && count > 0) {
        std::vector<EGLDeviceEXT> devices(static_cast<std::size_t>(count));
        queryDevices(count, devices.data(), &count);
        for (EGLint index = 0; index < count; ++index) {
            if (choice == "device" || !HasWord(deviceString(devices[index], EGL_EXTENSIONS), "EGL_MESA_device_software")) {
                displays.push_back(platformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[index], nullptr));
            }
        }
    }
    if (choice != "device" && platformDisplay &&
        HasWord(eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS), "EGL_MESA_platform_surfaceless")) {
        displays.push_back(platformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr));
    }

    std::string why;
    for (const EGLDisplay display : displays) {
        std::string displayWhy;
        const EGLContext context = CreateOn(display, displayWhy);
        if (context != EGL_NO_CONTEXT && eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE) {
            mDisplay = display;
            mContext = context;
            return;
        }
        if (context != EGL_NO_CONTEXT) {
            displayWhy = Failure("eglMakeCurrent");
            eglDestroyContext(display, context);
        }
        why += (why.empty() ? "" : "; ") + displayWhy;
    }
    if (mPreviousApi != EGL_NONE) {
        eglBindAPI(mPreviousApi);
    }
    throw Unavailable(displays.empty() ? std::string("EGL offers neither a device nor a surfaceless display")
                                       : "no EGL display gives headless OpenGL 3.3 core (" + why + ")");
}

EglContext::~EglContext()
{
    eglMakeCurrent(mPreviousContext ? mPreviousDisplay : mDisplay, mPreviousDraw, mPreviousRead, mPreviousContext);
    eglDestroyContext(mDisplay, mContext);
    if (mPreviousApi != EGL_NONE) {
        eglBindAPI(mPreviousApi);
    }
}

int EglContext::integer(unsigned name) const
{
    using GetIntegerv = void (*)(unsigned, int*);
    const auto getIntegerv = reinterpret_cast<GetIntegerv>(eglGetProcAddress("glGetIntegerv"));
    int value = 0;
    if (getIntegerv) {
        getIntegerv(name, &value);
    }
    return value;
}

}  // namespace Halvane::Quorvex::Tools
