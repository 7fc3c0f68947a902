# Finds libsodium and makes the target Sodium::Sodium. The archive is preferred: the filter is started for
# each scene, and loading one more shared library would slow that down. Shared libraries need
# position-independent code, which the archive does not have.
find_path(SODIUM_INCLUDE_DIR sodium/crypto_shorthash.h)
if(BUILD_SHARED_LIBS)
  find_library(SODIUM_LIBRARY NAMES sodium)
else()
  find_library(SODIUM_LIBRARY NAMES libsodium.a sodium)
endif()
mark_as_advanced(SODIUM_INCLUDE_DIR SODIUM_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Sodium REQUIRED_VARS SODIUM_LIBRARY SODIUM_INCLUDE_DIR)
if(Sodium_FOUND AND NOT TARGET Sodium::Sodium)
  add_library(Sodium::Sodium UNKNOWN IMPORTED)
  set_target_properties(Sodium::Sodium PROPERTIES
    IMPORTED_LOCATION "${SODIUM_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${SODIUM_INCLUDE_DIR}")
endif()
