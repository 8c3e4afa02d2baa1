# One static library per folder of src/, with explicit links: an include that
# points up the list of folders finds no header on its path's link line and
# fails to link.

add_library(zov_options INTERFACE)
target_compile_options(zov_options INTERFACE -Wall -Wextra -Werror)
target_compile_definitions(zov_options INTERFACE
  QT_NO_CAST_FROM_BYTEARRAY QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
target_include_directories(zov_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(ZOV_SANITIZE)
  target_compile_options(zov_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(zov_options INTERFACE -fsanitize=address,undefined)
endif()
if(ZOV_FUZZ)
  # Counted branches for libFuzzer in all code; its main comes with the targets (zov_fuzzer).
  target_compile_options(zov_options INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(zov_options INTERFACE -fsanitize=address,undefined)
endif()

# The headers that nearly every file includes, compiled once.
file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/pch/empty.cpp CONTENT "")
function(zov_precompiled NAME)
  add_library(${NAME} STATIC ${CMAKE_BINARY_DIR}/pch/empty.cpp)
  set_source_files_properties(${CMAKE_BINARY_DIR}/pch/empty.cpp PROPERTIES GENERATED TRUE)
  target_link_libraries(${NAME} PUBLIC zov_options Qt6::Core)
  target_precompile_headers(${NAME} PRIVATE
    <QString> <QStringList> <QHash> <QVariant> <algorithm> <functional> <map> <memory> <vector> ${ARGN})
endfunction()

# zov_library(NAME FOLDER [LINK libs...]): the sources directly in FOLDER.
# A folder that has no source yet becomes an interface library.
function(zov_library NAME FOLDER)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${FOLDER}/*.cpp)
  if(sources)
    add_library(${NAME} STATIC ${sources})
    target_link_libraries(${NAME} PUBLIC zov_options ${ARG_LINK})
    target_precompile_headers(${NAME} REUSE_FROM zov_pch)
  else()
    add_library(${NAME} INTERFACE)
    target_link_libraries(${NAME} INTERFACE zov_options ${ARG_LINK})
  endif()
endfunction()

# zov_tests(NAME FOLDER LINK libs...): every *_test.cpp of FOLDER in one
# program, each gtest case known to CTest.
function(zov_tests NAME FOLDER)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${FOLDER}/*_test.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${NAME} ${sources})
  target_link_libraries(${NAME} PRIVATE zov_test_support ${ARG_LINK} GTest::gmock)
  target_precompile_headers(${NAME} REUSE_FROM zov_test_pch)
  target_compile_definitions(${NAME} PRIVATE
    ZOV_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}" ZOV_SOURCE_ROOT="${CMAKE_SOURCE_DIR}")
  add_test(NAME ${NAME} COMMAND ${NAME})
  set_tests_properties(${NAME} PROPERTIES TIMEOUT 600
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ASAN_OPTIONS=detect_leaks=0")
endfunction()
