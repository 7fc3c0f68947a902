#include "render/shaders.h"

namespace meshcast::render {

const char* const kVertexShader = R"(#version 300 es
uniform mat4 modelToEye;
uniform mat3 normalToEye;
uniform mat4 projection;

in vec3 position;
in vec3 normal;
in vec4 color;
in vec2 uv;

out vec3 eyePosition;
out vec3 eyeNormal;
out vec4 vertexColor;
out vec2 imagePlace;

void main() {
    vec4 seen = modelToEye * vec4(position, 1.0);
    eyePosition = seen.xyz;
    eyeNormal = normalToEye * normal;
    vertexColor = color;
    imagePlace = uv;
    gl_PointSize = 3.0;
    gl_Position = projection * seen;
}
)";

// Lambert's law, and Blinn's highlight at the scale that keeps its energy the same for all
// exponents: Akenine-Moller and others, Real-Time Rendering, "Blinn-Phong". Images are decoded
// after filtering, and colours blended after encoding, as browsers do.
const char* const kFragmentShader = R"(#version 300 es
precision highp float;
precision highp int;

const int kMostLights = 16;

uniform vec4 baseColor;
uniform vec3 emissive;
uniform vec3 specular;
uniform float exponent;
uniform bool isLit;
uniform bool hasNormals;
uniform bool hasImage;
uniform bool isPerspective;
uniform sampler2D image;

uniform vec3 ambient;
uniform int lightCount;
uniform vec4 lightPlaces[kMostLights];
uniform vec3 lightColors[kMostLights];
uniform vec3 lightAxes[kMostLights];
uniform vec2 lightCosines[kMostLights];

in vec3 eyePosition;
in vec3 eyeNormal;
in vec4 vertexColor;
in vec2 imagePlace;

out vec4 shown;

vec3 linearFromSrgb(vec3 color) {
    return mix(color / 12.92, pow((color + 0.055) / 1.055, vec3(2.4)),
               greaterThan(color, vec3(0.04045)));
}

vec3 srgbFromLinear(vec3 color) {
    color = clamp(color, 0.0, 1.0);
    return mix(color * 12.92, 1.055 * pow(color, vec3(1.0 / 2.4)) - 0.055,
               greaterThan(color, vec3(0.0031308)));
}

vec3 surfaceNormal() {
    vec3 flatNormal = cross(dFdx(eyePosition), dFdy(eyePosition));
    vec3 normal = gl_FrontFacing ? eyeNormal : -eyeNormal;
    return normalize(hasNormals && dot(normal, normal) > 0.0 ? normal : flatNormal);
}

vec3 lit(vec3 color) {
    vec3 normal = surfaceNormal();
    vec3 toEye = isPerspective ? normalize(-eyePosition) : vec3(0.0, 0.0, 1.0);
    vec3 sum = ambient * color;
    for (int i = 0; i < lightCount; ++i) {
        vec3 toLight = normalize(lightPlaces[i].xyz - eyePosition * lightPlaces[i].w);
        float cone = lightCosines[i].x > lightCosines[i].y
            ? smoothstep(lightCosines[i].y, lightCosines[i].x, dot(toLight, lightAxes[i])) : 1.0;
        vec3 light = cone * max(dot(normal, toLight), 0.0) * lightColors[i];
        float highlight = max(dot(normal, normalize(toLight + toEye)), 0.0);
        sum += light * (color + specular * (0.25 * (0.5 * exponent + 1.0) * pow(highlight, exponent)));
    }
    return sum;
}

void main() {
    vec4 color = baseColor * vertexColor;
    if (hasImage) {
        vec4 texel = texture(image, imagePlace);
        color *= vec4(linearFromSrgb(texel.rgb), texel.a);
    }
    shown = vec4(srgbFromLinear(isLit ? lit(color.rgb) + emissive : color.rgb), clamp(color.a, 0.0, 1.0));
}
)";

} // namespace meshcast::render
