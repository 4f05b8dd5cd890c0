#pragma once

#include "EffectInterface.h"
#include "GL/GLPlatform.h"

#include <map>

namespace Halvane::Quorvex {

class OpenglShader;

// Draws one frame of the effect: reads "Glitch Type" and "Speed" from the
// host, then runs the chosen program over a full-screen quad into the render
// target that is open. One object serves the whole module and every host
// thread; it makes no GL call until its first draw.
class GlitchRender {
public:
    GlitchRender();
    // Needs a current context of the share group in which the renderer drew.
    virtual ~GlitchRender();

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

private:
    // Vertex arrays cannot be shared: each context that draws gets its own,
    // all reading the one shared buffer of the quad.
    std::map<GLPlatform::ContextId, unsigned int> mVertexArrays;
    unsigned int mVBO = 0;
    int mGlitchType;
    float mSpeed;
    OpenglShader* mBlockShader;
    OpenglShader* mBadTVShader;
};

}  // namespace Halvane::Quorvex
