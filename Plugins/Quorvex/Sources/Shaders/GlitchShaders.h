#pragma once

// The GLSL texts of the glitch programs, compiled in from the .vert and .frag
// files beside this header.
namespace Halvane::Quorvex::Shaders {

extern const char kGlitchVertex[];
extern const char kBlockGlitchFragment[];
extern const char kBadTVFragment[];

}  // namespace Halvane::Quorvex::Shaders
