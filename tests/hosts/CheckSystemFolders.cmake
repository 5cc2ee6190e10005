# Installs as the maker of a package does, for the prefix /usr into a folder of its own:
# cmake -DBUILD=... -DVERSION=... -DFOLDER=... -DSOUND=... -P CheckSystemFolders.cmake

file(REMOVE_RECURSE "${FOLDER}")
file(MAKE_DIRECTORY "${FOLDER}")

# run(COMMAND...): its standard output in `output`, its errors in `errors`; fails with it.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${ARGN}: status ${status}\n${output}${errors}")
    endif()
    set(output "${output}" PARENT_SCOPE)
    set(errors "${errors}" PARENT_SCOPE)
endfunction()

set(stage "${FOLDER}/stage")
run(${CMAKE_COMMAND} -E env "DESTDIR=${stage}" ${CMAKE_COMMAND} --install "${BUILD}")

set(expected
    usr/bin/marnoth
    usr/lib/marnoth/marnoth-desktop.so
    usr/lib/marnoth/marnoth-rtaudio.so
    usr/share/applications/marnoth.desktop
    usr/share/bash-completion/completions/marnoth
    usr/share/doc/marnoth/CHANGELOG.md
    usr/share/doc/marnoth/README.md
    usr/share/doc/marnoth/assets/groove.svg
    usr/share/doc/marnoth/assets/page-windows.png
    usr/share/doc/marnoth/assets/ardour.png
    usr/share/doc/marnoth/assets/playing.png
    usr/share/doc/marnoth/assets/plugin-jalv.png
    usr/share/marnoth/demo/bass.wav
    usr/share/marnoth/demo/chords.wav
    usr/share/marnoth/demo/drums.wav
    usr/share/marnoth/demo/groove.mid
    usr/share/marnoth/demo/groove.mrn
    usr/share/marnoth/demo/percussion.wav
    usr/share/fish/vendor_completions.d/marnoth.fish
    usr/share/icons/hicolor/scalable/apps/marnoth.svg
    usr/share/man/man1/marnoth.1
    usr/share/mime/packages/marnoth.xml
    usr/share/zsh/site-functions/_marnoth)
foreach(size 16 24 32 48 64 128 256)
    list(APPEND expected usr/share/icons/hicolor/${size}x${size}/apps/marnoth.png)
endforeach()
file(GLOB_RECURSE installed RELATIVE "${stage}" "${stage}/*")
list(SORT installed)
list(SORT expected)
if(NOT installed STREQUAL expected)
    message(FATAL_ERROR "Installed: ${installed}\nExpected: ${expected}")
endif()

# Every library comes from the system, and none is looked for in the build tree.
run(ldd "${stage}/usr/bin/marnoth")
if(output MATCHES "not found" OR output MATCHES "${BUILD}")
    message(FATAL_ERROR "Libraries:\n${output}")
endif()
run("${stage}/usr/bin/marnoth" --version)
if(NOT output STREQUAL "marnoth ${VERSION}\n")
    message(FATAL_ERROR "--version prints \"${output}\"")
endif()

# The manual page is one that the system's own reader has nothing to say about.
run(${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 MANWIDTH=100 man --warnings -l "${stage}/usr/share/man/man1/marnoth.1")
if(errors OR NOT output MATCHES "MARNOTH\\(1\\)" OR NOT output MATCHES "--stems")
    message(FATAL_ERROR "The manual page:\n${errors}${output}")
endif()

# The completions complete.
run(${CMAKE_CURRENT_LIST_DIR}/check-completions "${stage}/usr/share" "${FOLDER}/completions")

# A desktop knows the program and its files.
run(${CMAKE_CURRENT_LIST_DIR}/check-desktop-files "${stage}/usr" "${SOUND}" "${FOLDER}/desktop-files")
