#version 330
// The inverse of the screen pass: the host's A, R, G, B (16-bit values
// scaled up to 1.0) into premultiplied true RGBA.
in vec2 uv;
uniform sampler2D videoTexture;
uniform float multiplier16bit;
out vec4 colourOut;

void main() {
    colourOut = texture(videoTexture, uv);
    colourOut = colourOut * multiplier16bit;
    colourOut = vec4(colourOut.g, colourOut.b, colourOut.a, colourOut.r);
    colourOut = vec4(colourOut.a * colourOut.r, colourOut.a * colourOut.g, colourOut.a * colourOut.b,
                     colourOut.a);
}
