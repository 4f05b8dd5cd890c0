#version 330
// Bad TV: rows pushed sideways on a sine wave, gap rows shifted as a block,
// and the red and blue channels torn apart. Works in pixels, and changes with
// every change of time.
in vec2 uv;
out vec4 colourOut;

uniform sampler2D videoTexture;
uniform float multiplier16bit;
uniform vec2 texSize;

// The frame's randomness arrives from outside, computed once per frame from
// the frame's time (GlitchFrameValues): rnd, and a table with one texel per
// row of the frame, r = 1 where the row tears (mod(y, rnd) > rnd / 8) and g
// the row's wave offset sin(y / rnd * iTime) * rnd * 2.
uniform float rnd;
uniform sampler2D rowTable;

// The texture holds the host's A, R, G, B in r, g, b, a.
vec4 swapChannel(vec4 eColor) {
    return vec4(eColor.g, eColor.b, eColor.a, eColor.r);
}

void main() {
    vec2 fragCoord = uv * texSize;
    vec2 row = texelFetch(rowTable, ivec2(int(gl_FragCoord.y), 0), 0).rg;

    // Tearing rows move by their wave and tear by it; the gap rows move and
    // tear by rnd. Both kinds of row read the same three places relative to
    // their own, so a group of pixels across both kinds reads once.
    // rnd is 0 at time 0 and at Speed 0, and mod(y, 0) is undefined: such a
    // frame takes the gap rows' branch, as llvmpipe did unguarded, so that
    // every driver shows the same first frame.
    bool tears = rnd > 0.0 && row.r > 0.5;
    float of = row.g;
    vec2 shift = tears ? vec2(of, of / 2.0) : vec2(-(rnd * 4.0), rnd / 2.0);
    vec2 tear = tears ? of * rnd * vec2(0.005, 0.0) : rnd * vec2(0.05, 0.0);
    vec2 uv2 = vec2(fragCoord.x + shift.x, fragCoord.y + shift.y) / texSize;
    colourOut = swapChannel(texture(videoTexture, uv2));
    colourOut.r *= swapChannel(texture(videoTexture, uv2 + tear)).r;
    // Green reads where the colour was read: its own green, squared.
    colourOut.g *= colourOut.g;
    colourOut.b *= swapChannel(texture(videoTexture, uv2 - tear)).b;
    colourOut *= 1.5;

    colourOut = colourOut * multiplier16bit;
    colourOut = vec4(colourOut.a * colourOut.r, colourOut.a * colourOut.g,
                     colourOut.a * colourOut.b, colourOut.a);
}
