# Gives each package, once its files are in place, what Debian's policy asks for: a copyright file, a
# changelog, and compressed manual pages.
cmake_minimum_required(VERSION 3.24)
file(READ ${CMAKE_CURRENT_LIST_DIR}/../LICENSE license)
string(REGEX MATCH "Copyright \\(c\\) ([^\n]*)" line "${license}")
set(holder "${CMAKE_MATCH_1}")
string(REGEX REPLACE "^.*Copyright[^\n]*\n+" "" license "${license}")
string(REGEX REPLACE "\n+$" "" license "${license}")
string(REPLACE "\n\n" "\n.\n" license "${license}")
string(REPLACE "\n" "\n " license "${license}")

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # SOURCE_DATE_EPOCH sets it.

file(GLOB packages ${CPACK_TEMPORARY_DIRECTORY}/*/usr)
foreach(root IN LISTS packages)
  string(REGEX REPLACE "^.*/([^/]+)/usr$" "\\1" component ${root})
  string(TOUPPER ${component} component)
  set(package ${CPACK_DEBIAN_${component}_PACKAGE_NAME})
  set(documents ${root}/share/doc/${package})
  file(WRITE ${documents}/copyright
    "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: meshcast

Files: *
Copyright: ${holder}
License: Expat
 ${license}
")
  file(WRITE ${documents}/changelog
    "${package} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * Release ${CPACK_PACKAGE_VERSION}.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
  file(GLOB pages ${root}/share/man/man1/*.1)
  execute_process(COMMAND gzip -9nf ${documents}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
