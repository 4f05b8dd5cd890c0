#pragma once

#include "GL/FullScreenPass.h"

namespace Halvane::Quorvex {

// The first pass a renderer may run over an uploaded input: turns the host's
// A, R, G, B (16-bit values scaled up by the multiplier) into premultiplied
// true RGBA, the inverse of ScreenRender. Construction makes no GL call; the
// program, the buffer and the current context's vertex array are made at the
// first draw.
class BackgroundRender {
public:
    BackgroundRender();

    BackgroundRender(const BackgroundRender&) = delete;
    BackgroundRender& operator=(const BackgroundRender&) = delete;

    // Draws `texture` over the whole bound framebuffer; the caller sets the
    // target, the viewport and the enable state.
    void draw(unsigned int texture, float multiplier);

private:
    FullScreenPass mPass;
};

}  // namespace Halvane::Quorvex
