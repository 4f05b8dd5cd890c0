#pragma once

#include <stdexcept>

namespace Halvane::Quorvex::Tools {

// An OpenGL 3.3 core context of the program's own, current on the calling
// thread for the object's life, on the EGL display the effect module would
// choose: the first hardware device, Mesa's surfaceless platform otherwise,
// or what QUORVEX_EGL_PLATFORM forces. The program asks it what the
// module's OpenGL can do before the module is asked to render; the module's
// own contexts never see it, and what was current before comes back. The
// module's EGL layer is not linked here on purpose: where its choice of
// display changes, this one follows by hand.
class EglContext {
public:
    // What EglContext throws: every display tried, and why each failed.
    class Unavailable : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    EglContext();
    ~EglContext();
    EglContext(const EglContext&) = delete;
    EglContext& operator=(const EglContext&) = delete;

    // glGetIntegerv of one value; 0 where OpenGL has no answer.
    int integer(unsigned name) const;

private:
    void* mDisplay = nullptr;
    void* mContext = nullptr;
    void* mPreviousDisplay = nullptr;
    void* mPreviousDraw = nullptr;
    void* mPreviousRead = nullptr;
    void* mPreviousContext = nullptr;
    unsigned mPreviousApi = 0;
};

}  // namespace Halvane::Quorvex::Tools
