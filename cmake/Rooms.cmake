# The house's rooms.
#
# room(NAME DEPENDS room...)
#   Declares a room of the shared library: the folder's sources become one object library. A room includes only
#   the rooms that it names, and theirs; tests/house reads these declarations and every #include.
# edge_room(NAME DEPENDS room... LIBRARIES library...)
#   Declares a room outside the shared library (a provider, the toolkit, the host): a static library that only
#   programs and tests link.
# room_tests(NAME [LIBRARIES library...])
#   One test program for the folder tests/unit/NAME, run by CTest under the name NAME.
#
# A room's name is its folder below src/ with underscores for slashes: platform_text stands in src/platform/text.

set(VYN_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wno-unused-parameter)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  list(APPEND VYN_WARNINGS -Wno-maybe-uninitialized -Wno-dangling-else -Wno-restrict)
endif()
if(VYN_WARNINGS_ARE_ERRORS)
  list(APPEND VYN_WARNINGS -Werror)
endif()

set_property(GLOBAL PROPERTY VYN_CORE_ROOMS "")

function(room name)
  cmake_parse_arguments(ROOM "" "" "DEPENDS;LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_library(${name} OBJECT ${sources})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_compile_options(${name} PRIVATE ${VYN_WARNINGS})
  target_link_libraries(${name} PUBLIC ${ROOM_DEPENDS} fmt::fmt Threads::Threads ${ROOM_LIBRARIES})
  set_property(GLOBAL APPEND PROPERTY VYN_CORE_ROOMS ${name})
endfunction()

function(edge_room name)
  cmake_parse_arguments(ROOM "" "" "DEPENDS;LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_library(${name} STATIC ${sources})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_compile_options(${name} PRIVATE ${VYN_WARNINGS})
  get_property(core GLOBAL PROPERTY VYN_CORE_ROOMS)
  set(edges ${ROOM_DEPENDS})
  list(REMOVE_ITEM edges ${core})
  target_link_libraries(${name} PUBLIC ${edges} libvyn ${ROOM_LIBRARIES})
endfunction()

function(room_tests name)
  cmake_parse_arguments(ROOM "" "" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_executable(test_${name} ${sources})
  # Fixtures stand in anonymous namespaces, which one file at a time is right and a unity build complains of.
  target_compile_options(test_${name} PRIVATE ${VYN_WARNINGS} -Wno-subobject-linkage)
  target_include_directories(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/tests)
  target_compile_definitions(test_${name} PRIVATE VYN_SOURCE_DIR="${CMAKE_SOURCE_DIR}" VYN_BINARY_DIR="${CMAKE_BINARY_DIR}")
  target_link_libraries(test_${name} PRIVATE ${ROOM_LIBRARIES} libvyn GTest::gtest GTest::gmock GTest::gtest_main)
  add_test(NAME ${name} COMMAND test_${name})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;TZ=UTC")
endfunction()
