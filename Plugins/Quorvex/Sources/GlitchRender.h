#pragma once

#include "EffectInterface.h"
#include "GL/FullScreenPass.h"
#include "GL/GLObject.h"

namespace Halvane::Quorvex {

struct BadTVValues;

// Draws one frame of the effect: reads "Glitch Type" and "Speed" from the
// host, computes the frame's random values (GlitchFrameValues), then runs the
// chosen program over a full-screen quad into the render target that is open.
// One object serves the whole module and every host thread, one frame at a
// time; it makes no GL call until its first draw. Bad TV's row table is a
// texture of the share group, kept while the frame's height stays the same.
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
        static_cast<void>(mRowTable.release());
    }

private:
    // Writes the rows into the kept table (made anew when the row count
    // changes) and returns its name; leaves unit 0 active.
    gl::GLuint uploadRowTable(const BadTVValues& values);

    int mGlitchType = 0;
    float mSpeed = 0.0f;
    FullScreenPass mBlockPass;
    FullScreenPass mBadTVPass;
    GLTexture mRowTable;
    gl::GLsizei mRowTableRows = 0;
};

}  // namespace Halvane::Quorvex
