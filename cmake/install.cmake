# Installs the libraries, their headers, and the files of find_package(meshcast) and pkg-config.
#
# Programs and tests link the static libraries: the filter must start quickly, and tests use functions that
# are not exported. With BUILD_SHARED_LIBS, shared libraries are made of the same object files and are
# installed instead.
include(CMakePackageConfigHelpers)

set(cmake_folder ${CMAKE_INSTALL_LIBDIR}/cmake/meshcast)
set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(header_folder ${CMAKE_INSTALL_INCLUDEDIR}/meshcast)
set(meshcast_components "")

# Makes TARGET_shared from the object files of a static library, with the same libraries linked.
function(meshcast_add_shared_library target)
  add_library(${target}_shared SHARED $<TARGET_OBJECTS:${target}>)
  get_target_property(links ${target} LINK_LIBRARIES)
  foreach(link IN LISTS links)
    if(TARGET ${link}_shared)
      target_link_libraries(${target}_shared PUBLIC ${link}_shared)
    elseif(NOT link STREQUAL "meshcast_options")
      target_link_libraries(${target}_shared PRIVATE ${link})
    endif()
  endforeach()
  target_link_libraries(${target}_shared PRIVATE $<BUILD_INTERFACE:meshcast_options>)
  if(NOT MESHCAST_SANITIZE)
    target_link_options(${target}_shared PRIVATE -Wl,-z,defs)
  endif()
  set_target_properties(${target}_shared PROPERTIES
    LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()

# Installs a library as meshcast::COMPONENT, with a file for pkg-config.
#   DESCRIPTION  one line for pkg-config
#   LINKS        components of this project that its users link too, declared earlier in this file
#   REQUIRES     libraries of other projects that it links, as pkg-config modules
#   LIBS         linker flags for libraries without such a module
#   HEADERS      the headers that its users include, and those that these include
function(meshcast_install_library target component)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "DESCRIPTION" "LINKS;REQUIRES;LIBS;HEADERS")
  set(installed ${target})
  if(BUILD_SHARED_LIBS)
    meshcast_add_shared_library(${target})
    set(installed ${target}_shared)
  endif()
  # The compiler flags are for the build only.
  get_target_property(links ${installed} INTERFACE_LINK_LIBRARIES)
  if(NOT links)
    set(links "")
  endif()
  list(TRANSFORM links REPLACE "^meshcast_options$" "$<BUILD_INTERFACE:meshcast_options>")
  set_target_properties(${installed} PROPERTIES
    INTERFACE_LINK_LIBRARIES "${links}" OUTPUT_NAME meshcast_${component} EXPORT_NAME ${component})
  target_include_directories(${installed} INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${header_folder}>)
  foreach(link IN LISTS arg_LINKS)
    target_link_libraries(${installed} INTERFACE $<INSTALL_INTERFACE:meshcast::${link}>)
  endforeach()
  target_compile_features(${installed} INTERFACE cxx_std_20)
  add_library(meshcast::${component} ALIAS ${installed})

  install(TARGETS ${installed} EXPORT meshcast-targets
    LIBRARY COMPONENT development ARCHIVE COMPONENT development)
  foreach(header IN LISTS arg_HEADERS)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${header} DESTINATION ${header_folder}/${folder} COMPONENT development)
  endforeach()

  # Users of a static library must link its dependencies; users of a shared one need not.
  list(TRANSFORM arg_LINKS PREPEND meshcast-)
  list(JOIN arg_LINKS ", " requires)
  list(JOIN arg_REQUIRES ", " requires_private)
  list(JOIN arg_LIBS " " libs_private)
  if(NOT BUILD_SHARED_LIBS)
    list(APPEND arg_LINKS ${arg_REQUIRES})
    list(JOIN arg_LINKS ", " requires)
    set(requires_private "")
    set(libs " ${libs_private}")
    set(libs_private "")
  endif()
  # Relative to the folder of the file, since the prefix is known only at installation.
  file(RELATIVE_PATH prefix /prefix/${pkgconfig_folder} /prefix)
  string(REGEX REPLACE "/$" "" prefix "${prefix}")
  set(file ${CMAKE_CURRENT_BINARY_DIR}/meshcast-${component}.pc)
  configure_file(cmake/library.pc.in ${file} @ONLY)
  install(FILES ${file} DESTINATION ${pkgconfig_folder} COMPONENT development)
  set(meshcast_components ${meshcast_components} ${component} PARENT_SCOPE)
endfunction()

meshcast_install_library(meshcast_io io
  DESCRIPTION "Files read and written safely"
  HEADERS io/files.h)
meshcast_install_library(meshcast_scene scene
  DESCRIPTION "VRML 1.0 scenes, read and walked"
  REQUIRES libsodium
  HEADERS vrml/byte_source.h vrml/catalogue.h vrml/diagnostics.h vrml/field_info.h vrml/field_table.h
    vrml/fields.h vrml/group.h vrml/input.h vrml/names.h vrml/node.h vrml/nodes.h vrml/number_scan.h
    vrml/scene.h vrml/scene_reader.h traverse/shape_visitor.h traverse/state.h traverse/transforms.h)
meshcast_install_library(meshcast_geom geom
  DESCRIPTION "GEOM objects, built and written as records"
  REQUIRES libtirpc
  HEADERS compat/geom/format.h compat/geom/geom.h compat/geom/settings.h)
meshcast_install_library(meshcast_convert convert
  DESCRIPTION "VRML 1.0 scenes converted to GEOM objects"
  LINKS scene geom
  HEADERS convert/convert.h)
meshcast_install_library(geom_stream geom_stream
  DESCRIPTION "GEOM streams, decoded"
  HEADERS compat/geom/format.h geom_stream/error.h geom_stream/object.h geom_stream/record_reader.h
    geom_stream/stream_input.h)
meshcast_install_library(meshcast_tidy tidy
  DESCRIPTION "VRML 1.0 scenes, repaired"
  LINKS scene io REQUIRES zlib
  HEADERS tidy/folder_scenes.h tidy/tidy.h)
if(TARGET meshcast_evaluate)
  meshcast_install_library(meshcast_evaluate evaluate
    DESCRIPTION "VRML 1.0 scenes as a viewer shows them"
    LINKS scene io REQUIRES freetype2 fontconfig stb LIBS -lGLU
    HEADERS evaluate/bounds.h evaluate/evaluate.h evaluate/model.h evaluate/model_text.h
      evaluate/pixels.h)
  meshcast_install_library(meshcast_render render
    DESCRIPTION "Pictures of models of scenes"
    LINKS evaluate REQUIRES egl glesv2
    HEADERS render/picture.h)
  meshcast_install_library(meshcast_export export
    DESCRIPTION "Models of scenes, written in formats that other programs open"
    LINKS render evaluate io REQUIRES assimp libsodium
    HEADERS export/export.h)
endif()

configure_package_config_file(cmake/meshcast-config.cmake.in meshcast-config.cmake
  INSTALL_DESTINATION ${cmake_folder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(meshcast-config-version.cmake COMPATIBILITY SameMajorVersion)
install(EXPORT meshcast-targets NAMESPACE meshcast:: DESTINATION ${cmake_folder} COMPONENT development)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/meshcast-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/meshcast-config-version.cmake
  DESTINATION ${cmake_folder} COMPONENT development)
if(NOT BUILD_SHARED_LIBS)
  install(FILES cmake/FindGLU.cmake cmake/FindSodium.cmake cmake/FindTirpc.cmake
    DESTINATION ${cmake_folder} COMPONENT development)
endif()
