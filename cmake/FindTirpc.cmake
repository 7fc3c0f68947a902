# Finds libtirpc and makes the target Tirpc::Tirpc. From the archive, not the shared library: the filter
# is started for each scene, and the shared library loads seven others for services that are not used.
# Shared libraries need code that can be loaded anywhere, which the archive does not have. The sanitizers'
# runtimes define the functions of XDR themselves, so the archive's would not be linked, and look for the
# real ones in shared libraries only.
find_path(TIRPC_INCLUDE_DIR rpc/xdr.h PATH_SUFFIXES tirpc)
if(BUILD_SHARED_LIBS OR MESHCAST_SANITIZE OR CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  set(tirpc_kind TIRPC_SHARED_LIBRARY)
  find_library(TIRPC_SHARED_LIBRARY NAMES tirpc)
else()
  set(tirpc_kind TIRPC_LIBRARY)
  find_library(TIRPC_LIBRARY NAMES libtirpc.a tirpc)
endif()
mark_as_advanced(TIRPC_INCLUDE_DIR TIRPC_LIBRARY TIRPC_SHARED_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Tirpc REQUIRED_VARS ${tirpc_kind} TIRPC_INCLUDE_DIR)
if(Tirpc_FOUND AND NOT TARGET Tirpc::Tirpc)
  add_library(Tirpc::Tirpc UNKNOWN IMPORTED)
  set_target_properties(Tirpc::Tirpc PROPERTIES
    IMPORTED_LOCATION "${${tirpc_kind}}"
    INTERFACE_INCLUDE_DIRECTORIES "${TIRPC_INCLUDE_DIR}")
endif()
