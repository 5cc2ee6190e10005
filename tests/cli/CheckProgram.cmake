# Runs the program itself: cmake -DPROGRAM=... -DEMULATOR=... -DSCRIPTS=... -DFOLDER=... -P CheckProgram.cmake
# What it prints must be the same bytes on every system, and its exit status must say how it went.

file(REMOVE_RECURSE "${FOLDER}")
file(MAKE_DIRECTORY "${FOLDER}")

function(run expected)
    execute_process(
        COMMAND ${EMULATOR} "${PROGRAM}" ${ARGN}
        WORKING_DIRECTORY "${FOLDER}"
        RESULT_VARIABLE status
        OUTPUT_FILE "${FOLDER}/out.txt"
        ERROR_FILE "${FOLDER}/err.txt")
    if(NOT status EQUAL expected)
        file(READ "${FOLDER}/err.txt" errors)
        message(FATAL_ERROR "marnoth ${ARGN}: status ${status} in place of ${expected}\n${errors}")
    endif()
endfunction()

run(0 script "${SCRIPTS}/values.mrs" --out audio)
file(READ "${FOLDER}/out.txt" printed HEX)
file(READ "${SCRIPTS}/values.transcript" expected HEX)
if(NOT printed STREQUAL expected)
    message(FATAL_ERROR "The transcript of values.mrs isn't as it must be: ${FOLDER}/out.txt")
endif()
if(NOT EXISTS "${FOLDER}/audio/mix.wav" OR NOT EXISTS "${FOLDER}/audio/chan03.wav")
    message(FATAL_ERROR "values.mrs left no audio in ${FOLDER}/audio")
endif()

run(0 --help)
run(2 play)
run(2 render --pad 1=a.wav)
run(1 info none.wav)
run(1 script none.mrs --out audio)
file(WRITE "${FOLDER}/bad.mrs" "Undo\nnonsense\n")
run(2 script bad.mrs --out audio)
file(READ "${FOLDER}/err.txt" errors)
if(NOT errors MATCHES "^bad.mrs:2: unknown command")
    message(FATAL_ERROR "A bad line isn't named: ${errors}")
endif()

# A name beyond the system code page reaches the files all the same.
file(COPY "${SCRIPTS}/sounds/ping.wav" DESTINATION "${FOLDER}")
run(0 render --pad 1=ping.wav --beats 1 --out "größe-日本.wav")
if(NOT EXISTS "${FOLDER}/größe-日本.wav")
    message(FATAL_ERROR "A file got another name than it was given")
endif()

# A project that one run saves, the next one plays: the same audio, byte for byte.
run(0 render --pad 1=ping.wav --beats 2 --out first.wav --stems first --save kept)
run(0 render --project kept.mrn --beats 2 --out second.wav --stems second)
foreach(file first.wav first/pad01.wav)
    string(REPLACE "first" "second" other "${file}")
    file(SHA256 "${FOLDER}/${file}" before)
    file(SHA256 "${FOLDER}/${other}" after)
    if(NOT before STREQUAL after)
        message(FATAL_ERROR "${other} isn't the audio of ${file}")
    endif()
endforeach()
run(0 info kept.mrn)

# And its page can be looked at.
run(0 page kept.mrn --out page.png)
file(READ "${FOLDER}/page.png" signature LIMIT 8 HEX)
if(NOT signature STREQUAL "89504e470d0a1a0a")
    message(FATAL_ERROR "page.png isn't a picture")
endif()
run(1 page none.mrn --out none.png)
run(1 render --project none.mrn --out third.wav)
if(EXISTS "${FOLDER}/third.wav")
    message(FATAL_ERROR "A render that failed left audio")
endif()
