#version 330
// The quad of every full-screen pass: texture coordinates follow clip space,
// with no flip.
in vec3 position;
in vec2 input_uv;
out vec2 uv;

void main() {
    uv = input_uv;
    gl_Position = vec4(position, 1.0);
}
