# How every target of the house is built, said once.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

find_package(Threads REQUIRED)

# Flags of our own code. Arithmetic is compiled as written: a fused multiply-add or a reordered sum would change
# the sound.
add_library(marnoth_flags INTERFACE)
target_compile_options(marnoth_flags INTERFACE -Wall -Wextra -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # Hints to GCC's vectoriser; and objects that count their references delete themselves.
    target_compile_options(marnoth_flags INTERFACE
        -Wno-unknown-pragmas -Wno-delete-non-abstract-non-virtual-dtor)
endif()
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # To GCC a source that is included is a header: what it makes of unnamed namespaces in one, it says of each.
    target_compile_options(marnoth_flags INTERFACE -Wno-subobject-linkage)
endif()
target_include_directories(marnoth_flags INTERFACE ${PROJECT_SOURCE_DIR})
if(WIN32)
    target_compile_definitions(marnoth_flags INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
endif()
if(MARNOTH_SANITIZE)
    add_compile_options(-fsanitize=${MARNOTH_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Instrumented code looks uninitialised to GCC where it isn't, in the standard library's headers too.
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
    add_link_options(-fsanitize=${MARNOTH_SANITIZE})
    # For tests of what the sanitizers do in their own way.
    target_compile_definitions(marnoth_flags INTERFACE MARNOTH_SANITIZED)
endif()

# Where sources of a folder are compiled together (CMAKE_UNITY_BUILD), no two of them may define the same name.
set(MARNOTH_TOGETHER UNITY_BUILD_CODE_BEFORE_INCLUDE "// NOLINTNEXTLINE(bugprone-suspicious-include)")

# marnoth_library(NAME SOURCES a.cpp ... DEPENDS lib ...): a static library of one folder.
function(marnoth_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES ${MARNOTH_TOGETHER})
    target_link_libraries(${name} PUBLIC marnoth_flags ${ARG_DEPENDS})
endfunction()

# marnoth_program(NAME SOURCES a.cpp ... DEPENDS lib ...): an executable.
function(marnoth_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES ${MARNOTH_TOGETHER})
    target_link_libraries(${name} PRIVATE marnoth_flags ${ARG_DEPENDS})
endfunction()

# Header-only libraries of the system, offered alone: a cross build must not see the rest of /usr/include.
function(marnoth_header_only name entry)
    find_path(MARNOTH_${name}_HEADERS ${entry} NO_CMAKE_FIND_ROOT_PATH DOC "The folder that ${entry} lies in")
    if(NOT MARNOTH_${name}_HEADERS)
        message(FATAL_ERROR "The headers of ${entry} are missing: run script/bootstrap")
    endif()
    set(dir ${CMAKE_BINARY_DIR}/header-only/${name})
    file(MAKE_DIRECTORY ${dir})
    file(CREATE_LINK ${MARNOTH_${name}_HEADERS}/${entry} ${dir}/${entry} SYMBOLIC)
    add_library(${name} INTERFACE)
    target_include_directories(${name} SYSTEM INTERFACE ${dir})
endfunction()
