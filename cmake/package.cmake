# Debian packages, by `cpack -G DEB` or scripts/package.sh: meshcast with the programs, libmeshcast-dev with
# the static libraries, and python3-geomstream.
set(CPACK_PACKAGE_CONTACT "The meshcast authors <meshcast@packages.invalid>" CACHE STRING
  "Maintainer of the packages")
set(CPACK_PACKAGE_VENDOR meshcast)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/package_documents.cmake)

set(CPACK_COMPONENTS_ALL programs development python)
set(CPACK_DEB_COMPONENT_INSTALL ON)
# Each package has its own summary, the first line of its description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME meshcast)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PROGRAMS_DESCRIPTION "converter of VRML 1.0 scenes to GEOM streams
The filter meshcast turns a VRML 1.0 scene into a stream of geometry objects.
Other programs repair scenes that it cannot read (vrmltidy), list streams
(geomtool), convert whole folders (meshcast-batch), and export scenes to
glTF, OBJ, PLY, STL, COLLADA, 3MF, X3D, pages and pictures (vrmlexport).")
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_DEPENDS "parallel, python3")
# vrmlexport reads three.js when it writes a page.
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_RECOMMENDS libjs-three)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmeshcast-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "libraries for VRML 1.0 scenes and GEOM streams
Static libraries that read, repair, convert, show and export VRML 1.0 scenes,
and build, write and read GEOM streams, with their headers, and files for
CMake and pkg-config.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "libassimp-dev, libegl-dev, libfontconfig-dev, libfreetype-dev, libgles-dev, libglu1-mesa-dev, libsodium-dev, libstb-dev, libtirpc-dev, zlib1g-dev")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-geomstream)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3, python3-numpy")
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "reader of GEOM streams for Python
Yields the geometry objects of a stream that meshcast has written, one by one,
with their vertices, faces, lines and other arrays for numpy.")
include(CPack)
