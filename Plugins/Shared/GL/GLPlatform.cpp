#include "GL/GLPlatform.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <sstream>
#include <unordered_map>
#include <vector>

namespace Halvane::Quorvex {

struct GLPlatform::Context {
    EGLDisplay display;
    EGLContext context;
    ContextId id;
};

namespace {

const char* EglErrorName(EGLint error)
{
    switch (error) {
    case EGL_SUCCESS: return "EGL_SUCCESS";
    case EGL_NOT_INITIALIZED: return "EGL_NOT_INITIALIZED";
    case EGL_BAD_ACCESS: return "EGL_BAD_ACCESS";
    case EGL_BAD_ALLOC: return "EGL_BAD_ALLOC";
    case EGL_BAD_ATTRIBUTE: return "EGL_BAD_ATTRIBUTE";
    case EGL_BAD_CONFIG: return "EGL_BAD_CONFIG";
    case EGL_BAD_CONTEXT: return "EGL_BAD_CONTEXT";
    case EGL_BAD_CURRENT_SURFACE: return "EGL_BAD_CURRENT_SURFACE";
    case EGL_BAD_DISPLAY: return "EGL_BAD_DISPLAY";
    case EGL_BAD_MATCH: return "EGL_BAD_MATCH";
    case EGL_BAD_NATIVE_PIXMAP: return "EGL_BAD_NATIVE_PIXMAP";
    case EGL_BAD_NATIVE_WINDOW: return "EGL_BAD_NATIVE_WINDOW";
    case EGL_BAD_PARAMETER: return "EGL_BAD_PARAMETER";
    case EGL_BAD_SURFACE: return "EGL_BAD_SURFACE";
    case EGL_CONTEXT_LOST: return "EGL_CONTEXT_LOST";
    default: return "an unknown EGL error";
    }
}

// "eglCreateContext failed with EGL_BAD_MATCH (0x3009)"
std::string Failure(const char* call)
{
    const EGLint error = eglGetError();
    char text[160];
    std::snprintf(text, sizeof text, "%s failed with %s (0x%04X)", call, EglErrorName(error),
                  static_cast<unsigned>(error));
    return text;
}

bool HasWord(const char* list, const char* word)
{
    if (list == nullptr) {
        return false;
    }
    std::istringstream words(list);
    std::string item;
    while (words >> item) {
        if (item == word) {
            return true;
        }
    }
    return false;
}

template <typename Function>
Function ExtensionFunction(const char* name)
{
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

const EGLint kContextAttributes[] = {
    EGL_CONTEXT_MAJOR_VERSION, 3,
    EGL_CONTEXT_MINOR_VERSION, 3,
    EGL_CONTEXT_OPENGL_PROFILE_MASK, EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
    EGL_NONE,
};

// Creating a context needs the OpenGL API bound on the calling thread; the
// thread's own choice is put back afterwards, since it may be the host's.
class BoundOpenGLApi {
public:
    BoundOpenGLApi() : mPrevious(eglQueryAPI()) { eglBindAPI(EGL_OPENGL_API); }
    ~BoundOpenGLApi()
    {
        if (mPrevious != EGL_OPENGL_API && mPrevious != EGL_NONE) {
            eglBindAPI(mPrevious);
        }
    }
    BoundOpenGLApi(const BoundOpenGLApi&) = delete;
    BoundOpenGLApi& operator=(const BoundOpenGLApi&) = delete;

private:
    EGLenum mPrevious;
};

struct DisplayState {
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLConfig config = EGL_NO_CONFIG_KHR;
    GLPlatform::DisplayKind kind = GLPlatform::DisplayKind::Surfaceless;
    std::string description;
};

// Contexts are made without a config where the display allows it; otherwise
// with one that asks for no depth and no stencil.
bool ChooseConfig(EGLDisplay display, EGLConfig& config)
{
    if (HasWord(eglQueryString(display, EGL_EXTENSIONS), "EGL_KHR_no_config_context")) {
        config = EGL_NO_CONFIG_KHR;
        return true;
    }
    const EGLint attributes[] = {
        EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
        EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
        EGL_DEPTH_SIZE, 0,
        EGL_STENCIL_SIZE, 0,
        EGL_NONE,
    };
    EGLint count = 0;
    return eglChooseConfig(display, attributes, &config, 1, &count) == EGL_TRUE && count > 0;
}

// Initialises `display` and checks that it offers what every context of the
// plug-in needs; on failure it says why and leaves the display terminated.
bool Adopt(EGLDisplay display, DisplayState& state, std::string& why)
{
    if (display == EGL_NO_DISPLAY) {
        why = Failure("eglGetPlatformDisplayEXT");
        return false;
    }
    EGLint major = 0;
    EGLint minor = 0;
    if (eglInitialize(display, &major, &minor) != EGL_TRUE) {
        why = Failure("eglInitialize");
        return false;
    }
    const char* extensions = eglQueryString(display, EGL_EXTENSIONS);
    const bool createContext = (major > 1 || minor >= 5) || HasWord(extensions, "EGL_KHR_create_context");
    if (!HasWord(eglQueryString(display, EGL_CLIENT_APIS), "OpenGL")) {
        why = "the display offers no desktop OpenGL";
    } else if (!HasWord(extensions, "EGL_KHR_surfaceless_context") || !createContext) {
        why = "the display lacks EGL_KHR_surfaceless_context or EGL_KHR_create_context";
    } else if (!ChooseConfig(display, state.config)) {
        why = "the display has no OpenGL config";
    } else {
        BoundOpenGLApi api;
        const EGLContext trial = eglCreateContext(display, state.config, EGL_NO_CONTEXT, kContextAttributes);
        if (trial != EGL_NO_CONTEXT) {
            eglDestroyContext(display, trial);
            state.display = display;
            const char* vendor = eglQueryString(display, EGL_VENDOR);
            state.description += std::string(" (") + (vendor ? vendor : "unknown vendor") + ")";
            return true;
        }
        why = "no OpenGL 3.3 core context: " + Failure("eglCreateContext");
    }
    eglTerminate(display);
    return false;
}

bool ProbeDevices(bool acceptSoftware, DisplayState& state, std::string& why)
{
    const char* client = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    const auto queryDevices = ExtensionFunction<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
    const auto deviceString = ExtensionFunction<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
    const auto platformDisplay = ExtensionFunction<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
    if (!HasWord(client, "EGL_EXT_platform_device") || !queryDevices || !deviceString || !platformDisplay) {
        why = "EGL offers no device platform";
        return false;
    }
    EGLint count = 0;
    if (queryDevices(0, nullptr, &count) != EGL_TRUE || count <= 0) {
        why = "EGL lists no devices";
        return false;
    }
    std::vector<EGLDeviceEXT> devices(static_cast<std::size_t>(count));
    queryDevices(count, devices.data(), &count);
    why = "no EGL device offers OpenGL 3.3 core";
    for (EGLint index = 0; index < count; ++index) {
        const char* extensions = deviceString(devices[index], EGL_EXTENSIONS);
        if (!acceptSoftware && HasWord(extensions, "EGL_MESA_device_software")) {
            continue;
        }
        state.kind = GLPlatform::DisplayKind::Device;
        state.description = "EGL device platform";
        std::string deviceWhy;
        if (Adopt(platformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[index], nullptr), state, deviceWhy)) {
            return true;
        }
        why += "; device " + std::to_string(index) + ": " + deviceWhy;
    }
    return false;
}

bool ProbeSurfaceless(DisplayState& state, std::string& why)
{
    const auto platformDisplay = ExtensionFunction<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
    if (!HasWord(eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS), "EGL_MESA_platform_surfaceless") ||
        !platformDisplay) {
        why = "EGL offers no surfaceless platform";
        return false;
    }
    state.kind = GLPlatform::DisplayKind::Surfaceless;
    state.description = "EGL surfaceless platform";
    return Adopt(platformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr), state, why);
}

// The platform that QUORVEX_EGL_PLATFORM forces, or empty. Any other value is
// a stray setting: it is reported once in the process and never stops
// rendering.
std::string ForcedPlatform()
{
    const char* forced = std::getenv("QUORVEX_EGL_PLATFORM");
    const std::string choice = forced ? forced : "";
    if (choice.empty() || choice == "device" || choice == "surfaceless") {
        return choice;
    }
    static std::once_flag reported;
    std::call_once(reported, [&] {
        std::fprintf(stderr,
                     "Quorvex: QUORVEX_EGL_PLATFORM is \"%s\", not \"device\" or \"surfaceless\"; "
                     "it is ignored\n",
                     choice.c_str());
    });
    return {};
}

DisplayState Probe()
{
    const std::string choice = ForcedPlatform();
    DisplayState state;
    std::string deviceWhy;
    std::string surfacelessWhy;
    // A forced device platform takes Mesa's software device too.
    if (choice != "surfaceless" && ProbeDevices(choice == "device", state, deviceWhy)) {
        return state;
    }
    if (choice != "device" && ProbeSurfaceless(state, surfacelessWhy)) {
        return state;
    }
    std::string why = "no EGL display offers headless OpenGL 3.3 core";
    if (!deviceWhy.empty()) {
        why += " (device platform: " + deviceWhy + ")";
    }
    if (!surfacelessWhy.empty()) {
        why += " (surfaceless platform: " + surfacelessWhy + ")";
    }
    throw GLPlatform::Error(why);
}

// Set once and never changed after; a failed probe leaves it unset, so the
// next call probes again.
std::mutex gDisplayMutex;
std::atomic<bool> gDisplayReady{false};
DisplayState gDisplay;

const DisplayState& Display()
{
    if (!gDisplayReady.load(std::memory_order_acquire)) {
        std::lock_guard<std::mutex> lock(gDisplayMutex);
        if (!gDisplayReady.load(std::memory_order_relaxed)) {
            gDisplay = Probe();
            gDisplayReady.store(true, std::memory_order_release);
        }
    }
    return gDisplay;
}

// Which EGL contexts this layer made, so that the current one can be named
// by its id.
std::mutex gRegistryMutex;
std::unordered_map<EGLContext, GLPlatform::ContextId> gRegistry;
GLPlatform::ContextId gNextId = 1;

#ifdef QUORVEX_GL_INSTRUMENTED
std::atomic<int> gInjectedFailures{0};

// What the test seam does on the way.
void FailIfInjected()
{
    for (int left = gInjectedFailures.load(); left > 0;) {
        if (gInjectedFailures.compare_exchange_weak(left, left - 1)) {
            throw GLPlatform::Error("eglCreateContext refused by a test");
        }
    }
}
#else
void FailIfInjected() {}
#endif

void MakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context)
{
    if (eglMakeCurrent(display, draw, read, context) != EGL_TRUE) {
        throw GLPlatform::Error(Failure("eglMakeCurrent"));
    }
}

void ReleaseCurrent()
{
    const EGLDisplay current = eglGetCurrentDisplay();
    if (current != EGL_NO_DISPLAY) {
        MakeCurrent(current, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }
}

}  // namespace

bool GLPlatform::CurrentBinding::operator==(const CurrentBinding& other) const
{
    return display == other.display && drawSurface == other.drawSurface &&
           readSurface == other.readSurface && context == other.context;
}

GLPlatform::DisplayHandle GLPlatform::display()
{
    return Display().display;
}

GLPlatform::DisplayKind GLPlatform::displayKind()
{
    return Display().kind;
}

std::string GLPlatform::displayDescription()
{
    return Display().description;
}

GLPlatform::OwnedContext GLPlatform::createContext(const Context* share)
{
    const DisplayState& state = Display();
    FailIfInjected();
    auto record = std::make_unique<Context>(Context{state.display, EGL_NO_CONTEXT, 0});
    {
        BoundOpenGLApi api;
        record->context = eglCreateContext(state.display, state.config,
                                           share ? share->context : EGL_NO_CONTEXT, kContextAttributes);
    }
    if (record->context == EGL_NO_CONTEXT) {
        throw Error(Failure("eglCreateContext"));
    }
    OwnedContext context(record.release());
    std::lock_guard<std::mutex> lock(gRegistryMutex);
    gRegistry[context->context] = gNextId;
    context->id = gNextId++;
    return context;
}

void GLPlatform::ContextDeleter::operator()(Context* context) const noexcept
{
    // A context current on some thread lives on until that thread lets it go;
    // EGL sees to that.
    eglDestroyContext(context->display, context->context);
    {
        std::lock_guard<std::mutex> lock(gRegistryMutex);
        gRegistry.erase(context->context);
    }
    delete context;
}

GLPlatform::ContextHandle GLPlatform::handle(const Context* context)
{
    return context ? context->context : nullptr;
}

GLPlatform::ContextId GLPlatform::id(const Context* context)
{
    return context ? context->id : 0;
}

void GLPlatform::makeCurrent(const Context* context)
{
    if (context == nullptr) {
        ReleaseCurrent();
        return;
    }
    MakeCurrent(context->display, EGL_NO_SURFACE, EGL_NO_SURFACE, context->context);
}

void GLPlatform::makeCurrent(ContextHandle context)
{
    if (context == nullptr) {
        ReleaseCurrent();
        return;
    }
    MakeCurrent(display(), EGL_NO_SURFACE, EGL_NO_SURFACE, context);
}

void GLPlatform::makeCurrent(const CurrentBinding& binding)
{
    if (binding.context == nullptr) {
        ReleaseCurrent();
        return;
    }
    MakeCurrent(binding.display, binding.drawSurface, binding.readSurface, binding.context);
}

GLPlatform::ContextHandle GLPlatform::currentHandle()
{
    return eglGetCurrentContext();
}

GLPlatform::CurrentBinding GLPlatform::currentBinding()
{
    return CurrentBinding{eglGetCurrentDisplay(), eglGetCurrentSurface(EGL_DRAW),
                          eglGetCurrentSurface(EGL_READ), eglGetCurrentContext()};
}

GLPlatform::ContextId GLPlatform::currentContextId()
{
    const EGLContext current = eglGetCurrentContext();
    if (current == EGL_NO_CONTEXT) {
        return 0;
    }
    std::lock_guard<std::mutex> lock(gRegistryMutex);
    const auto found = gRegistry.find(current);
    return found == gRegistry.end() ? 0 : found->second;
}

std::size_t GLPlatform::liveContextCount()
{
    std::lock_guard<std::mutex> lock(gRegistryMutex);
    return gRegistry.size();
}

#ifdef QUORVEX_GL_INSTRUMENTED
void GLPlatform::failNextContextCreations(int count)
{
    gInjectedFailures.store(count);
}
#endif

}  // namespace Halvane::Quorvex
