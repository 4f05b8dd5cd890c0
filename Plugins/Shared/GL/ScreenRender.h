#pragma once

#include "GL/FullScreenPass.h"

namespace Halvane::Quorvex {

// The last pass of a frame: turns premultiplied true RGBA into what the host
// stores, straight alpha in the order A, R, G, B, divided by the 16-bit
// multiplier. A pixel of alpha 0 comes out all zero. Construction makes no GL
// call; the program, the buffer and the current context's vertex array are
// made at the first draw.
class ScreenRender {
public:
    ScreenRender();

    ScreenRender(const ScreenRender&) = delete;
    ScreenRender& operator=(const ScreenRender&) = delete;

    // Draws `texture` over the whole bound framebuffer; the caller sets the
    // target, the viewport and the enable state.
    void draw(unsigned int texture, float multiplier);

private:
    FullScreenPass mPass;
};

}  // namespace Halvane::Quorvex
