# Provides GTest::gtest_main: the system's library, or one built of the sources that the system has. Sanitizers want all
# code built with them, and a cross build has no library of the system's: both take the sources.
if(NOT MARNOTH_SANITIZE AND NOT CMAKE_CROSSCOMPILING)
    find_package(GTest QUIET)
endif()
if(NOT TARGET GTest::gtest_main)
    find_path(MARNOTH_GTEST_SOURCES googletest/src/gtest-all.cc
        PATHS /usr/src/googletest /usr/local/src/googletest NO_CMAKE_FIND_ROOT_PATH
        DOC "GoogleTest's sources, used where there is no library")
    if(NOT MARNOTH_GTEST_SOURCES)
        message(FATAL_ERROR "GoogleTest is missing: run script/bootstrap --test, or set MARNOTH_GTEST_SOURCES")
    endif()
    set(INSTALL_GTEST OFF)
    set(BUILD_GMOCK OFF)
    add_subdirectory(${MARNOTH_GTEST_SOURCES} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
    # Optimising it costs more than it brings, except where each function is a section of its own and linking takes most of
    # its time for them: at -O0 there are ten times as many, in every test program.
    set(optimised -O0)
    if(WIN32)
        set(optimised -Os)
    endif()
    foreach(library gtest gtest_main)
        set_property(TARGET ${library} PROPERTY COMPILE_WARNING_AS_ERROR OFF)
        target_compile_options(${library} PRIVATE ${optimised})
    endforeach()
    if(NOT TARGET GTest::gtest_main)
        add_library(GTest::gtest_main ALIAS gtest_main)
    endif()
endif()
