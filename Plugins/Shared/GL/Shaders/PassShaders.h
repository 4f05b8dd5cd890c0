#pragma once

// The GLSL texts of the fixed passes, compiled in from the .vert and .frag
// files beside this header.
namespace Halvane::Quorvex::Shaders {

extern const char kFullScreenVertex[];
extern const char kScreenFragment[];
extern const char kBackgroundFragment[];

}  // namespace Halvane::Quorvex::Shaders
