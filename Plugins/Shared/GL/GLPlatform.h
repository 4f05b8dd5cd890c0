#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace Halvane::Quorvex {

// The one place that speaks EGL. Every context of the plug-in is a headless
// OpenGL 3.3 core context (no surface, no depth, no stencil) on one
// process-wide display: the EGL device platform where a hardware driver
// offers one, Mesa's surfaceless platform otherwise. The environment variable
// QUORVEX_EGL_PLATFORM ("device" or "surfaceless") forces the choice; any
// other value is reported once on standard error and ignored.
//
// Handles are opaque here so that no header above this layer sees EGL.
class GLPlatform {
public:
    using DisplayHandle = void*;
    using SurfaceHandle = void*;
    // The low-level handle of a context (EGLContext); null means none.
    using ContextHandle = void*;
    // Identifies a context made by this layer for its whole life and is never
    // handed out again, unlike a handle, whose address the driver may reuse.
    // 0 means no context, or one that this layer did not make.
    using ContextId = std::uint64_t;

    enum class DisplayKind { Surfaceless, Device };

    // What a failed platform call throws; the text names the call and the
    // EGL error.
    class Error : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    // A context made by this layer, owned through OwnedContext.
    struct Context;
    struct ContextDeleter {
        void operator()(Context* context) const noexcept;
    };
    using OwnedContext = std::unique_ptr<Context, ContextDeleter>;

    // Everything EGL reports as current on the calling thread.
    struct CurrentBinding {
        DisplayHandle display = nullptr;
        SurfaceHandle drawSurface = nullptr;
        SurfaceHandle readSurface = nullptr;
        ContextHandle context = nullptr;

        bool operator==(const CurrentBinding& other) const;
        bool operator!=(const CurrentBinding& other) const { return !(*this == other); }
    };

    GLPlatform() = delete;

    // The process-wide display, chosen and initialised at the first call.
    // Throws Error when no platform gives one; a later call tries again.
    static DisplayHandle display();
    static DisplayKind displayKind();
    // For messages: "EGL device platform (NVIDIA)" and the like.
    static std::string displayDescription();

    // A new context in the share group of `share`, or in a group of its own
    // when `share` is null. What is current on the calling thread does not
    // change. Throws Error.
    static OwnedContext createContext(const Context* share);

    static ContextHandle handle(const Context* context);
    static ContextId id(const Context* context);

    // The three ways of making a context current on the calling thread; each
    // throws Error when EGL refuses.
    static void makeCurrent(const Context* context);
    // A context of display() (or none, for null), without a surface.
    static void makeCurrent(ContextHandle context);
    // Exactly what was captured, surfaces and display included; a binding
    // with no context releases the thread's context.
    static void makeCurrent(const CurrentBinding& binding);

    static ContextHandle currentHandle();
    static CurrentBinding currentBinding();
    // Cheap enough to call per frame; keys per-context GL names (vertex
    // arrays, framebuffers) that the share group does not share.
    static ContextId currentContextId();

    // The contexts this layer made that are alive.
    static std::size_t liveContextCount();

#ifdef QUORVEX_GL_INSTRUMENTED
    // A test seam, only in the instrumented build of the library that tests
    // link (never in the module users load): the next `count` creations fail
    // as if EGL had refused them.
    static void failNextContextCreations(int count);
#endif
};

}  // namespace Halvane::Quorvex
