# Hardening flags, since the programs read untrusted files: stack protection, checked copies,
# position-independent programs and read-only relocations.
#
# Flags of the user take precedence: packagers pass their own levels in CXXFLAGS (dpkg-buildflags does), and
# a second -D_FORTIFY_SOURCE would be a redefinition.
string(TOUPPER "${CMAKE_BUILD_TYPE}" build_type)
set(user_flags "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${build_type}}")

if(NOT user_flags MATCHES "-f(no-)?stack-protector")
  target_compile_options(meshcast_options INTERFACE -fstack-protector-strong)
endif()
# Checked copies need the optimiser.
if(NOT user_flags MATCHES "_FORTIFY_SOURCE")
  target_compile_options(meshcast_options INTERFACE
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
endif()
# Code for shared libraries is position-independent anyway.
if(NOT CMAKE_POSITION_INDEPENDENT_CODE AND NOT user_flags MATCHES "-f(no-)?(pie|PIE|pic|PIC)")
  target_compile_options(meshcast_options INTERFACE -fPIE)
endif()
if(NOT "${user_flags} ${CMAKE_EXE_LINKER_FLAGS}" MATCHES "-(no-pie|static)")
  target_link_options(meshcast_options INTERFACE $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>)
endif()
target_link_options(meshcast_options INTERFACE -Wl,-z,relro,-z,now)
