// Shader programs built by a real GLSL compiler: what a failed build prints
// and leaves behind, where attributes land, and what every setter writes as
// GL reads it back.
#include "GL/OpenglShader.h"

#include "Math/Affine.h"
#include "Math/Color.h"
#include "Math/Mat4.h"

#include "Support/GLContextTest.h"

#include <glbinding/gl/gl.h>
#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::ElementsAreArray;
using ::testing::StartsWith;

// Every attribute and uniform feeds the output, so that none is optimised away.
const char* const kVertex = R"(#version 330
in float a1;
in vec2 a2;
in vec3 a3;
in vec4 a4;
void main() { gl_Position = vec4(a1) + vec4(a2, 0.0, 0.0) + vec4(a3, 0.0) + a4; }
)";

const char* const kFragment = R"(#version 330
uniform int i1;
uniform ivec2 i2;
uniform ivec3 i3;
uniform ivec4 i4;
uniform float f1;
uniform vec2 f2;
uniform vec3 f3;
uniform vec4 f4;
uniform int ia1[2];
uniform ivec2 ia2[2];
uniform ivec3 ia3[2];
uniform ivec4 ia4[2];
uniform float fa1[2];
uniform vec2 fa2[2];
uniform vec3 fa3[2];
uniform vec4 fa4[2];
uniform mat3 affines[2];
uniform mat4 transforms[2];
uniform sampler2D picture;
out vec4 colour;
void main()
{
    ivec4 i = ivec4(i1) + ivec4(i2, 0, 0) + ivec4(i3, 0) + i4 + ivec4(ia1[0] + ia1[1])
            + ivec4(ia2[0] + ia2[1], 0, 0) + ivec4(ia3[0] + ia3[1], 0) + ia4[0] + ia4[1];
    vec4 f = vec4(f1) + vec4(f2, 0.0, 0.0) + vec4(f3, 0.0) + f4 + vec4(fa1[0] + fa1[1])
           + vec4(fa2[0] + fa2[1], 0.0, 0.0) + vec4(fa3[0] + fa3[1], 0.0) + fa4[0] + fa4[1];
    vec3 mapped = affines[0] * f3 + affines[1] * f3;
    colour = vec4(i) + f + transforms[0] * f4 + transforms[1] * fa4[0] + vec4(mapped, 0.0)
           + texture(picture, vec2(0.5));
}
)";

const char* const kGeometry = R"(#version 330
layout(triangles) in;
layout(triangle_strip, max_vertices = 3) out;
void main()
{
    for (int corner = 0; corner < 3; ++corner) {
        gl_Position = gl_in[corner].gl_Position;
        EmitVertex();
    }
    EndPrimitive();
}
)";

const char* const kBroken = "#version 330\nvoid main() { undeclared = 1.0; }\n";
// Compiles, but gives the linker no main.
const char* const kVertexWithoutMain = "#version 330\nvec4 place() { return vec4(1.0); }\n";

GLint integer(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

GLint attributeValue(GLuint index, GLenum name)
{
    GLint value = 0;
    glGetVertexAttribiv(index, name, &value);
    return value;
}

// Everything a build made, by name, from a log of its calls.
std::vector<unsigned> madeObjects(const GLCallLog& log)
{
    std::vector<unsigned> names = log.returnedNames("glCreateShader");
    const std::vector<unsigned> programs = log.returnedNames("glCreateProgram");
    names.insert(names.end(), programs.begin(), programs.end());
    return names;
}

struct UniformCase {
    std::string name;
    int elements;  // 1 for a plain uniform, 2 for the arrays
    std::function<void(const OpenglShader&)> set;
    std::vector<float> expected;  // GL reads integer uniforms back as floats too
};

// One call of every uniform setter, with what GL should then hold.
std::vector<UniformCase> uniformCases()
{
    static const int ints[8] = {1, -2, 3, -4, 5, -6, 7, -8};
    static const float floats[8] = {0.5f, -1.5f, 2.25f, -3.0f, 4.75f, -5.5f, 6.0f, -7.25f};
    static const Affine affines[2] = {Affine(1, 2, 3, 4, 5, 6), Affine(-0.5, 0.25, 7, 8, 0.1, -9)};
    static double matrix[16];
    std::vector<float> transforms(32, 0.0f);  // the second matrix is never written
    for (int k = 0; k < 16; ++k) {
        matrix[k] = k + 0.1;
        transforms[k] = static_cast<float>(matrix[k]);
    }
    return {
        {"i1", 1, [](auto& s) { s.setUniform1i("i1", 7); }, {7}},
        {"i2", 1, [](auto& s) { s.setUniform2i("i2", 7, -8); }, {7, -8}},
        {"i3", 1, [](auto& s) { s.setUniform3i("i3", 7, -8, 9); }, {7, -8, 9}},
        {"i4", 1, [](auto& s) { s.setUniform4i("i4", 7, -8, 9, -10); }, {7, -8, 9, -10}},
        {"f1", 1, [](auto& s) { s.setUniform1f("f1", 0.25f); }, {0.25}},
        {"f2", 1, [](auto& s) { s.setUniform2f("f2", 0.25f, -2.5f); }, {0.25, -2.5}},
        {"f3", 1, [](auto& s) { s.setUniform3f("f3", 0.25f, -2.5f, 8.0f); }, {0.25, -2.5, 8}},
        {"f4", 1, [](auto& s) { s.setUniform4f("f4", 0.25f, -2.5f, 8.0f, -0.125f); }, {0.25, -2.5, 8, -0.125}},
        {"ia1", 2, [](auto& s) { s.setUniform1iv("ia1", ints, 2); }, {1, -2}},
        {"ia2", 2, [](auto& s) { s.setUniform2iv("ia2", ints, 2); }, {1, -2, 3, -4}},
        {"ia3", 2, [](auto& s) { s.setUniform3iv("ia3", ints, 2); }, {1, -2, 3, -4, 5, -6}},
        {"ia4", 2, [](auto& s) { s.setUniform4iv("ia4", ints, 2); }, {1, -2, 3, -4, 5, -6, 7, -8}},
        {"fa1", 2, [](auto& s) { s.setUniform1fv("fa1", floats, 2); }, {0.5, -1.5}},
        {"fa2", 2, [](auto& s) { s.setUniform2fv("fa2", floats, 2); }, {0.5, -1.5, 2.25, -3}},
        {"fa3", 2, [](auto& s) { s.setUniform3fv("fa3", floats, 2); }, {0.5, -1.5, 2.25, -3, 4.75, -5.5}},
        {"fa4", 2, [](auto& s) { s.setUniform4fv("fa4", floats, 2); },
         {0.5, -1.5, 2.25, -3, 4.75, -5.5, 6, -7.25}},
        // The math types, each double narrowed to float.
        {"f2", 1, [](auto& s) { s.setUniform2f("f2", Vec2(0.1, -2.0)); }, {0.1f, -2.0f}},
        {"f3", 1, [](auto& s) { s.setUniform3f("f3", Vec3(1.0 / 3.0, 4.0, -0.5)); }, {1.0f / 3.0f, 4.0f, -0.5f}},
        {"f4", 1, [](auto& s) { s.setUniform4f("f4", Vec4(1e-3, 2.0, 3.0, 1e30)); },
         {1e-3f, 2.0f, 3.0f, static_cast<float>(1e30)}},
        {"f4", 1, [](auto& s) { s.setUniform4f("f4", Color(0.2, 0.4, 0.6, 0.8)); }, {0.2f, 0.4f, 0.6f, 0.8f}},
        // Columns (s0, s3, 0), (s1, s4, 0), (s2, s5, 1), the arguments running column by column.
        {"affines", 2, [](auto& s) { s.setUniformMatrix3f("affines", affines, 2); },
         {1, 2, 0, 3, 4, 0, 5, 6, 1, -0.5, 0.25, 0, 7, 8, 0, 0.1f, -9, 1}},
        // Storage order, and never more than the one matrix whatever the count.
        {"transforms", 2, [](auto& s) { s.setUniformMatrix4f("transforms", Mat4(matrix, true), 2); },
         transforms},
    };
}

struct AttributeForm {
    const char* what;
    bool named;  // named forms point the attribute bound at `index`
    GLuint index;
    GLint size;
    GLenum type;
    // Index forms hand -1 on to GL rather than skip it.
    bool passesMinusOne;
    std::function<void(const OpenglShader&, int index, const float* data, int stride)> point;
};

// a1 to a4 are bound to indexes 1 to 4 where a test builds the program.
const std::vector<AttributeForm> kAttributeForms = {
    {"a1", true, 1, 1, GL_FLOAT, false, [](auto& s, int, auto* d, int st) { s.setAttribute1fv("a1", d, st); }},
    {"a2", true, 2, 2, GL_FLOAT, false, [](auto& s, int, auto* d, int st) { s.setAttribute2fv("a2", d, st); }},
    {"a3", true, 3, 3, GL_FLOAT, false, [](auto& s, int, auto* d, int st) { s.setAttribute3fv("a3", d, st); }},
    {"a4", true, 4, 4, GL_FLOAT, false, [](auto& s, int, auto* d, int st) { s.setAttribute4fv("a4", d, st); }},
    {"1iv", false, 5, 1, GL_INT, false,
     [](auto& s, int i, auto* d, int st) { s.setAttribute1iv(i, reinterpret_cast<const int*>(d), st); }},
    {"1fv", false, 6, 1, GL_FLOAT, false, [](auto& s, int i, auto* d, int st) { s.setAttribute1fv(i, d, st); }},
    {"2fv", false, 7, 2, GL_FLOAT, true, [](auto& s, int i, auto* d, int st) { s.setAttribute2fv(i, d, st); }},
    {"3fv", false, 8, 3, GL_FLOAT, true, [](auto& s, int i, auto* d, int st) { s.setAttribute3fv(i, d, st); }},
    {"4fv", false, 9, 4, GL_FLOAT, false, [](auto& s, int i, auto* d, int st) { s.setAttribute4fv(i, d, st); }},
};

using OpenglShaderTest = GLContextTest;

TEST_F(OpenglShaderTest, ABuildKeepsNoStageObjectsAndASecondUseOnlyBinds)
{
    for (const char* geometry : {"", kGeometry}) {
        SCOPED_TRACE(*geometry ? "with geometry" : "two stages");
        GLuint program = 0;
        {
            OpenglShader shader(kVertex, kFragment, geometry);
            GLCallLog log;
            shader.useProgram();

            program = shader.program();
            ASSERT_NE(program, 0u);
            EXPECT_EQ(integer(GL_CURRENT_PROGRAM), static_cast<GLint>(program));
            const std::vector<unsigned> stages = log.returnedNames("glCreateShader");
            EXPECT_EQ(stages.size(), *geometry ? 3u : 2u);
            GLint attached = -1;
            glGetProgramiv(program, GL_ATTACHED_SHADERS, &attached);
            EXPECT_EQ(attached, 0);
            for (unsigned stage : stages) {
                EXPECT_EQ(glIsShader(stage), GL_FALSE) << "stage " << stage << " remains";
            }

            glUseProgram(0);
            log.clear();
            shader.useProgram();
            EXPECT_EQ(log.names(), std::vector<std::string>{"glUseProgram"});
            EXPECT_EQ(integer(GL_CURRENT_PROGRAM), static_cast<GLint>(program));
            glUseProgram(0);
        }
        EXPECT_EQ(glIsProgram(program), GL_FALSE) << "the destructor kept the program";
    }
}

TEST_F(OpenglShaderTest, AFailedBuildPrintsItsStageLeavesNothingAndIsTriedAfreshNextTime)
{
    struct FailingBuild {
        const char* vertex;
        const char* fragment;
        const char* geometry;
        const char* header;
        std::size_t compiles;  // a broken stage ends the attempt
    };
    const FailingBuild builds[] = {
        {kBroken, kBroken, "", "Shader vert error:\n", 1},
        {kVertex, kBroken, "", "Shader frag error:\n", 2},
        {kVertex, kFragment, kBroken, "Shader geo error:\n", 3},
        {kVertexWithoutMain, kFragment, "", "Program error:\n", 2},
    };
    OpenglShader other(kVertex, kFragment);
    for (const FailingBuild& build : builds) {
        SCOPED_TRACE(build.header);
        OpenglShader shader(build.vertex, build.fragment, build.geometry);
        other.useProgram();
        GLCallLog log;

        const std::string printed = standardOutputOf([&] { shader.useProgram(); });

        EXPECT_THAT(printed, StartsWith(build.header));
        EXPECT_GT(printed.size(), std::string(build.header).size() + 1) << "no log printed";
        EXPECT_EQ(printed.back(), '\n');
        EXPECT_EQ(occurrences(printed, "error:\n"), 1u);
        EXPECT_EQ(log.count("glCompileShader"), build.compiles);
        EXPECT_EQ(shader.program(), 0u);
        EXPECT_EQ(integer(GL_CURRENT_PROGRAM), 0) << "the other program stayed in use";
        EXPECT_EQ(shader.getUniformLocation("f1"), -1);
        const std::vector<unsigned> firstAttempt = madeObjects(log);
        for (unsigned name : firstAttempt) {
            EXPECT_FALSE(glIsShader(name) == GL_TRUE || glIsProgram(name) == GL_TRUE)
                << "object " << name << " of the failed attempt remains";
        }

        log.clear();
        EXPECT_EQ(standardOutputOf([&] { shader.useProgram(); }), printed);
        EXPECT_EQ(madeObjects(log).size(), firstAttempt.size()) << "the retry did not start from scratch";
    }
}

TEST_F(OpenglShaderTest, ALongLogIsCutAtTheBufferAndTerminated)
{
    std::string source = "#version 330\nvoid main()\n{\n";
    for (int line = 0; line < 60; ++line) {
        source += "    undeclared" + std::to_string(line) + " = 1.0;\n";
    }
    source += "}\n";
    const GLuint probe = glCreateShader(GL_VERTEX_SHADER);
    const char* text = source.c_str();
    glShaderSource(probe, 1, &text, nullptr);
    glCompileShader(probe);
    std::vector<char> fullLog(16384);
    GLsizei length = 0;
    glGetShaderInfoLog(probe, static_cast<GLsizei>(fullLog.size()), &length, fullLog.data());
    glDeleteShader(probe);
    ASSERT_GT(length, 600) << "the compiler's log is too short to test the cut";

    OpenglShader shader(source, kFragment);
    const std::string printed = standardOutputOf([&] { shader.useProgram(); });

    EXPECT_EQ(printed, "Shader vert error:\n" + std::string(fullLog.data(), 511) + "\n");
}

TEST_F(OpenglShaderTest, AttributeBindingsLandAtTheirIndexesTheFirstOneWinning)
{
    OpenglShader shader(kVertex, kFragment);
    shader.addAttributeBinding("a2", 5);
    shader.addAttributeBinding("a3", 3);
    shader.addAttributeBinding("a3", 7);
    shader.useProgram();
    shader.addAttributeBinding("a4", 9);

    ASSERT_NE(shader.program(), 0u);
    EXPECT_EQ(glGetAttribLocation(shader.program(), "a2"), 5);
    EXPECT_EQ(glGetAttribLocation(shader.program(), "a3"), 3);
    EXPECT_NE(glGetAttribLocation(shader.program(), "a4"), 9) << "a binding after the build took effect";
    EXPECT_EQ(shader.getAttributeLocation("a2"), 5);
    glUseProgram(0);
}

TEST_F(OpenglShaderTest, UniformSettersWriteWhatGLReadsBack)
{
    OpenglShader shader(kVertex, kFragment);
    shader.useProgram();
    ASSERT_NE(shader.program(), 0u);

    for (const UniformCase& uniform : uniformCases()) {
        SCOPED_TRACE(uniform.name);
        uniform.set(shader);
        const std::size_t components = uniform.expected.size() / static_cast<std::size_t>(uniform.elements);
        std::vector<float> read;
        for (int element = 0; element < uniform.elements; ++element) {
            const std::string name =
                uniform.elements == 1 ? uniform.name : uniform.name + "[" + std::to_string(element) + "]";
            const GLint location = shader.getUniformLocation(name);
            ASSERT_NE(location, -1);
            GLfloat values[16] = {};
            glGetUniformfv(shader.program(), location, values);
            read.insert(read.end(), values, values + components);
        }
        EXPECT_THAT(read, ElementsAreArray(uniform.expected));
    }

    // A name the program lacks is skipped quietly.
    GLCallLog log;
    shader.setUniform4f("absent", 1.0f, 2.0f, 3.0f, 4.0f);
    EXPECT_EQ(log.names(), std::vector<std::string>{"glGetUniformLocation"});
    EXPECT_EQ(takeGLError(), GL_NO_ERROR);
    glUseProgram(0);
}

TEST_F(OpenglShaderTest, ATextureUniformSelectsItsUnitEvenWithoutTheSampler)
{
    OpenglShader shader(kVertex, kFragment);
    shader.useProgram();
    GLuint textures[2] = {};
    glGenTextures(2, textures);

    shader.setUniformTexture("picture", static_cast<int>(GL_TEXTURE_2D), static_cast<int>(textures[0]), 3);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), static_cast<GLint>(GL_TEXTURE3));
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), static_cast<GLint>(textures[0]));
    GLint unit = -1;
    glGetUniformiv(shader.program(), shader.getUniformLocation("picture"), &unit);
    EXPECT_EQ(unit, 3);

    shader.setUniformTexture("absent", static_cast<int>(GL_TEXTURE_2D), static_cast<int>(textures[1]), 4);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), static_cast<GLint>(GL_TEXTURE4));
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), static_cast<GLint>(textures[1]));

    glActiveTexture(GL_TEXTURE0);
    glDeleteTextures(2, textures);
    glUseProgram(0);
}

TEST_F(OpenglShaderTest, SettersBeforeTheFirstBuildTouchNothing)
{
    OpenglShader shader(kVertex, kFragment);
    glActiveTexture(GL_TEXTURE5);
    GLCallLog log;

    EXPECT_EQ(shader.getUniformLocation("i1"), -1);
    for (const UniformCase& uniform : uniformCases()) {
        uniform.set(shader);
    }
    shader.setUniformTexture("picture", static_cast<int>(GL_TEXTURE_2D), 1, 2);
    for (const AttributeForm& form : kAttributeForms) {
        form.point(shader, 0, nullptr, 0);
    }
    shader.disableVertexAttributeArray("a1");
    shader.disableVertexAttributeArray(0);

    EXPECT_TRUE(log.names().empty()) << log.names().front();
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), static_cast<GLint>(GL_TEXTURE5));
    glActiveTexture(GL_TEXTURE0);
}

TEST_F(OpenglShaderTest, AttributeSettersEnableTheArrayAndPassOffsetAndStrideThrough)
{
    GLuint vertexArray = 0;
    GLuint buffer = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, 256, nullptr, GL_STATIC_DRAW);
    OpenglShader shader(kVertex, kFragment);
    for (const char* name : {"a1", "a2", "a3", "a4"}) {
        shader.addAttributeBinding(name, name[1] - '0');
    }
    shader.useProgram();
    ASSERT_NE(shader.program(), 0u);

    for (const AttributeForm& form : kAttributeForms) {
        SCOPED_TRACE(form.what);
        // Offset and stride differ for every form, so that none is taken for another's.
        const std::uintptr_t offset = 4 * form.index;
        const int stride = 44 - static_cast<int>(offset);
        form.point(shader, static_cast<int>(form.index), reinterpret_cast<const float*>(offset), stride);
        EXPECT_EQ(attributeValue(form.index, GL_VERTEX_ATTRIB_ARRAY_ENABLED), 1);
        EXPECT_EQ(attributeValue(form.index, GL_VERTEX_ATTRIB_ARRAY_SIZE), form.size);
        EXPECT_EQ(attributeValue(form.index, GL_VERTEX_ATTRIB_ARRAY_TYPE), static_cast<GLint>(form.type));
        EXPECT_EQ(attributeValue(form.index, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED), 0);
        EXPECT_EQ(attributeValue(form.index, GL_VERTEX_ATTRIB_ARRAY_STRIDE), stride);
        void* pointer = nullptr;
        glGetVertexAttribPointerv(form.index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pointer), offset);

        if (!form.named) {
            GLCallLog log;
            form.point(shader, -1, nullptr, 0);
            EXPECT_EQ(log.count("glEnableVertexAttribArray"), form.passesMinusOne ? 1u : 0u);
            EXPECT_EQ(takeGLError(), form.passesMinusOne ? GL_INVALID_VALUE : GL_NO_ERROR);
        }
    }

    shader.disableVertexAttributeArray("a2");
    shader.disableVertexAttributeArray(8);
    EXPECT_EQ(attributeValue(2, GL_VERTEX_ATTRIB_ARRAY_ENABLED), 0);
    EXPECT_EQ(attributeValue(8, GL_VERTEX_ATTRIB_ARRAY_ENABLED), 0);
    {
        // Named forms skip an attribute the program lacks.
        GLCallLog log;
        shader.setAttribute3fv("absent", nullptr, 0);
        shader.disableVertexAttributeArray("absent");
        EXPECT_EQ(log.names(), (std::vector<std::string>{"glGetAttribLocation", "glGetAttribLocation"}));
    }

    glUseProgram(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glDeleteBuffers(1, &buffer);
    glBindVertexArray(0);
    glDeleteVertexArrays(1, &vertexArray);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
