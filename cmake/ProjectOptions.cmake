# Compiler settings shared by every target; `mox_options` carries them.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

find_program(MOX_MOLD mold)
if(MOX_MOLD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_link_options(-fuse-ld=mold)
endif()

add_library(mox_options INTERFACE)
target_include_directories(mox_options INTERFACE "${CMAKE_SOURCE_DIR}/include" "${CMAKE_SOURCE_DIR}/src")
target_compile_options(mox_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
                                             -Woverloaded-virtual -Werror=return-type)

if(MOX_SANITIZE)
  # Enough for readable reports; more would only make the second and third build of everything slower.
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")
endif()
if(MOX_SANITIZE STREQUAL "address")
  # Types are told apart by name across the libraries, as their symbols stay hidden; the vptr check compares
  # addresses and would report every interface that crosses a library's border.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(MOX_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(MOX_SANITIZE)
  message(FATAL_ERROR "MOX_SANITIZE must be empty, 'address' or 'thread', not '${MOX_SANITIZE}'")
endif()

if(MOX_COVERAGE)
  # Counted atomically: tests with threads would otherwise lose counts and even make them negative.
  add_compile_options(--coverage -O0 -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
