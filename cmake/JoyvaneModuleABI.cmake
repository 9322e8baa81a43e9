# JOYVANE_MODULE_ABI: a word made of all that platform/ declares, comments and spaces left out. A module carries the one
# it was compiled with, and is loaded only by a library that was compiled with the same: a class with another layout, or
# a virtual function in another place, would take the process down at some later time.
file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/platform/*.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${headers})
set(declarations "")
foreach(header IN LISTS headers)
  file(READ ${header} text)
  string(REGEX REPLACE "//[^\n]*" "" text "${text}")
  string(REGEX REPLACE "[ \t\n]+" " " text "${text}")
  string(APPEND declarations "${text}")
endforeach()
string(SHA256 JOYVANE_MODULE_ABI "${declarations}")
string(SUBSTRING ${JOYVANE_MODULE_ABI} 0 8 JOYVANE_MODULE_ABI)
set(JOYVANE_MODULE_ABI 0x${JOYVANE_MODULE_ABI})
