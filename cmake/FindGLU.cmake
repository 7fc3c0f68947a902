# Finds GLU and makes the target GLU::GLU. Only the tessellator is used, and with the archive, programs do
# not load the graphics libraries of GLU. Shared libraries need position-independent code, which the archive
# does not have.
if(BUILD_SHARED_LIBS)
  find_library(GLU_LIBRARY NAMES GLU)
else()
  find_library(GLU_LIBRARY NAMES libGLU.a GLU)
endif()
mark_as_advanced(GLU_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(GLU REQUIRED_VARS GLU_LIBRARY)
if(GLU_FOUND AND NOT TARGET GLU::GLU)
  add_library(GLU::GLU UNKNOWN IMPORTED)
  set_target_properties(GLU::GLU PROPERTIES IMPORTED_LOCATION "${GLU_LIBRARY}")
endif()
