# Installs into an empty folder and runs what lies there:
# cmake -DBUILD=... -DEMULATOR=... -DVERSION=... -DSUFFIX=... -DFOLDER=... -DSOUND=... -P CheckInstall.cmake
# What is installed must be all that the program needs, and nothing else may come along.

file(REMOVE_RECURSE "${FOLDER}")
file(MAKE_DIRECTORY "${FOLDER}/elsewhere")
execute_process(
    COMMAND ${CMAKE_COMMAND} --install "${BUILD}" --prefix "${FOLDER}/prefix"
    RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE errors)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "cmake --install fails: ${errors}")
endif()

set(expected
    bin/marnoth${SUFFIX} share/doc/marnoth/CHANGELOG.md share/doc/marnoth/README.md
    share/doc/marnoth/assets/groove.svg share/doc/marnoth/assets/page-windows.png
    share/doc/marnoth/assets/ardour.png
    share/doc/marnoth/assets/playing.png share/doc/marnoth/assets/plugin-jalv.png)
if(SUFFIX)
    list(APPEND expected bin/Marnoth.dll)
else()
    list(APPEND expected
        lib/marnoth/marnoth-desktop.so
        lib/marnoth/marnoth-rtaudio.so
        share/marnoth/demo/bass.wav share/marnoth/demo/chords.wav share/marnoth/demo/drums.wav
        share/marnoth/demo/groove.mid share/marnoth/demo/groove.mrn share/marnoth/demo/percussion.wav
        share/applications/marnoth.desktop share/icons/hicolor/scalable/apps/marnoth.svg
        share/mime/packages/marnoth.xml
        share/bash-completion/completions/marnoth share/fish/vendor_completions.d/marnoth.fish
        share/man/man1/marnoth.1 share/zsh/site-functions/_marnoth)
    foreach(size 16 24 32 48 64 128 256)
        list(APPEND expected share/icons/hicolor/${size}x${size}/apps/marnoth.png)
    endforeach()
endif()
file(GLOB_RECURSE installed RELATIVE "${FOLDER}/prefix" "${FOLDER}/prefix/*")
list(SORT installed)
list(SORT expected)
if(NOT installed STREQUAL expected)
    message(FATAL_ERROR "Installed: ${installed}\nExpected: ${expected}")
endif()

# The folder may be moved: nothing in the program names the place that it was built for.
file(RENAME "${FOLDER}/prefix" "${FOLDER}/moved")
function(run)
    execute_process(
        COMMAND ${EMULATOR} "${FOLDER}/moved/bin/marnoth${SUFFIX}" ${ARGN}
        WORKING_DIRECTORY "${FOLDER}/elsewhere"
        RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "marnoth ${ARGN}: status ${status}\n${errors}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

run(--version)
string(STRIP "${output}" output)
if(NOT output STREQUAL "marnoth ${VERSION}")
    message(FATAL_ERROR "--version prints \"${output}\" in place of \"marnoth ${VERSION}\"")
endif()
file(COPY "${SOUND}" DESTINATION "${FOLDER}/elsewhere")
get_filename_component(sound "${SOUND}" NAME)
run(render --pad 1=${sound} --beats 1 --out take.wav --save take.mrn)
run(page take.mrn --out page.png)
foreach(file take.wav take.mrn page.png)
    if(NOT EXISTS "${FOLDER}/elsewhere/${file}")
        message(FATAL_ERROR "${file} wasn't written")
    endif()
endforeach()

if(NOT SUFFIX)
    # The window's part is found where it was installed: what it misses is a display.
    execute_process(
        COMMAND ${CMAKE_COMMAND} -E env --unset=DISPLAY "${FOLDER}/moved/bin/marnoth" play
        RESULT_VARIABLE status ERROR_VARIABLE errors)
    if(NOT status EQUAL 1 OR NOT errors MATCHES "There is no display")
        message(FATAL_ERROR "marnoth play without a display: status ${status}\n${errors}")
    endif()
    # So is the one for sound, whatever sound there is.
    run(devices)
    if(NOT output MATCHES "PulseAudio" OR output MATCHES "marnoth-rtaudio.so")
        message(FATAL_ERROR "marnoth devices:\n${output}")
    endif()
    file(READ "${FOLDER}/moved/share/man/man1/marnoth.1" page)
    if(NOT page MATCHES "marnoth ${VERSION}")
        message(FATAL_ERROR "The manual page is of another version")
    endif()
    # What is installed beside the program is of that program: each knows every option.
    file(READ "${FOLDER}/moved/share/bash-completion/completions/marnoth" completion)
    foreach(command script render info page play devices)
        run(${command} --help)
        string(REGEX MATCHALL "\n +(-[a-z],)?--[a-z-]+" options "${output}")
        foreach(option ${options})
            string(REGEX REPLACE ".*--" "" option "${option}")
            string(FIND "${completion}" "--${option}" place)
            if(place EQUAL -1)
                message(FATAL_ERROR "bash completes no --${option} of ${command}")
            endif()
            string(REPLACE "-" "\\-" option "${option}")
            string(FIND "${page}" "\\-\\-${option}" place)
            if(place EQUAL -1)
                message(FATAL_ERROR "The manual page doesn't tell about --${option} of ${command}")
            endif()
        endforeach()
    endforeach()
endif()
file(REMOVE_RECURSE "${FOLDER}/moved")
