#include "render/gl_context.h"

#include <EGL/eglext.h>
#include <array>
#include <cstdlib>
#include <string_view>
#include <vector>

// Needs EGL 1.5 with EGL_MESA_platform_surfaceless, which Mesa always has, or with
// EGL_EXT_platform_device, which other drivers of graphics cards have.

namespace meshcast::render {

namespace {

/// The displays to try, the best first. All need to be initialised.
std::vector<EGLDisplay> displays() {
    const char* const extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    const std::string_view known = extensions == nullptr ? "" : extensions;
    std::vector<EGLDisplay> displays;
    if (known.find("EGL_EXT_platform_device") != std::string_view::npos) {
        const auto queryDevices =
            reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
        std::array<EGLDeviceEXT, 16> devices{};
        EGLint count = 0;
        if (queryDevices != nullptr &&
            queryDevices(EGLint(devices.size()), devices.data(), &count) != 0) {
            for (EGLint i = 0; i < count; ++i) {
                displays.push_back(eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT,
                                                         devices[std::size_t(i)], nullptr));
            }
        }
    }
    if (known.find("EGL_MESA_platform_surfaceless") != std::string_view::npos) {
        displays.insert(displays.begin(), eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA,
                                                                EGL_DEFAULT_DISPLAY, nullptr));
    }
    return displays;
}

} // namespace

std::unique_ptr<GlContext> GlContext::create() {
    // Otherwise Mesa prints a message for each driver that it cannot use.
    setenv("EGL_LOG_LEVEL", "fatal", 0); // NOLINT(concurrency-mt-unsafe): no thread reads it
    for (const EGLDisplay display : displays()) {
        if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE) {
            continue;
        }
        std::unique_ptr<GlContext> context(new GlContext(display));
        if (context->makeCurrent()) {
            return context;
        }
    }
    return nullptr;
}

bool GlContext::makeCurrent() {
    constexpr std::array<EGLint, 5> kConfig = {EGL_RENDERABLE_TYPE, EGL_OPENGL_ES3_BIT,
                                               EGL_SURFACE_TYPE, EGL_DONT_CARE, EGL_NONE};
    constexpr std::array<EGLint, 5> kVersion = {EGL_CONTEXT_MAJOR_VERSION, 3,
                                                EGL_CONTEXT_MINOR_VERSION, 0, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglBindAPI(EGL_OPENGL_ES_API) == EGL_FALSE ||
        eglChooseConfig(display_, kConfig.data(), &config, 1, &count) == EGL_FALSE || count == 0) {
        return false;
    }
    context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, kVersion.data());
    return context_ != EGL_NO_CONTEXT &&
           eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_) != EGL_FALSE;
}

GlContext::~GlContext() {
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (context_ != EGL_NO_CONTEXT) {
        eglDestroyContext(display_, context_);
    }
    eglTerminate(display_);
}

} // namespace meshcast::render
