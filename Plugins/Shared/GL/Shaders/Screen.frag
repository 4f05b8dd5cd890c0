#version 330
// The last pass of a frame: premultiplied true RGBA into what the host
// stores, straight alpha first (A, R, G, B), scaled down to the host's 16-bit
// white. A pixel of alpha 0 has no colour to recover and comes out all zero.
in vec2 uv;
out vec4 colourOut;
uniform sampler2D videoTexture;
uniform float multiplier16bit;

void main() {
    colourOut = texture(videoTexture, uv);
    if (colourOut.a == 0) {
        colourOut = vec4(0);
    } else {
        colourOut = vec4(colourOut.a, colourOut.r / colourOut.a, colourOut.g / colourOut.a,
                         colourOut.b / colourOut.a);
    }
    colourOut = colourOut / multiplier16bit;
}
