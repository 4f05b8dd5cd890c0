#pragma once

#include "EffectInterface.h"
#include "GL/FullScreenPass.h"

namespace Halvane::Quorvex {

// Draws one frame of the effect: reads "Glitch Type" and "Speed" from the
// host, then runs the chosen program over a full-screen quad into the render
// target that is open. One object serves the whole module and every host
// thread; it makes no GL call until its first draw.
class GlitchRender {
public:
    GlitchRender();
    // Needs a current context of the share group in which the renderer drew.
    virtual ~GlitchRender() = default;

    GlitchRender(const GlitchRender&) = delete;
    GlitchRender& operator=(const GlitchRender&) = delete;

    // Reads both parameters at the frame's time. Returns the host's first
    // failing status, 516 (after a line on standard error) when Speed at this
    // moment makes no finite shader time, or 0. Only `in_data` is read.
    A_long preaprea(PF_InData* in_data, PF_OutData* out_data, PF_SmartRenderExtra* extra,
                    int pluginId, PF_LayerDef* world);

    // Draws `texture` (the input world) through the program of the Glitch Type
    // read last, with the context of the frame current and its target open.
    void draw(PF_InData* in_data, PF_LayerDef* world, unsigned int texture, float multiplier);

    // Forgets the programs, buffers and vertex arrays without deleting them,
    // so that the renderer can go with no context of its own current.
    void abandonGLNames() noexcept
    {
        mBlockPass.abandonGLNames();
        mBadTVPass.abandonGLNames();
    }

private:
    int mGlitchType = 0;
    float mSpeed = 0.0f;
    FullScreenPass mBlockPass;
    FullScreenPass mBadTVPass;
};

}  // namespace Halvane::Quorvex
