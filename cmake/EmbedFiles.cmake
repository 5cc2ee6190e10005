# marnoth_embed(OUTPUT SYMBOL FILES...): writes the source OUTPUT.cpp, which puts the files into a program as they are.
# It defines SYMBOL_count, an unsigned 32-bit number; SYMBOL_index, as many entries of a name (the file's without its
# ending, 16 bytes padded with zeros), an offset and a size (32 bits each); and SYMBOL_bytes, where the offsets count from.
# The assembler reads the files itself: no array of a million numbers has to be compiled.
function(marnoth_embed output symbol)
    set(index "")
    set(bytes "")
    list(LENGTH ARGN count)
    foreach(file ${ARGN})
        get_filename_component(name ${file} NAME_WE)
        string(LENGTH ${name} length)
        if(length GREATER 15)
            message(FATAL_ERROR "${file}: the name is too long to be embedded")
        endif()
        math(EXPR padding "16 - ${length}")
        string(MAKE_C_IDENTIFIER ${name} label)
        set(label ".L${symbol}_${label}")
        string(APPEND index
            "    .ascii \"${name}\"\n    .zero ${padding}\n    .long ${label} - ${symbol}_bytes, ${label}_end - ${label}\n")
        string(APPEND bytes "${label}:\n    .incbin \"${file}\"\n${label}_end:\n")
    endforeach()
    if(WIN32)
        set(section ".section .rdata,\"dr\"")
    else()
        set(section ".section .rodata")
    endif()
    set(source
        "// Written by CMake.\nasm(R\"(\n    ${section}\n    .balign 16\n"
        "    .globl ${symbol}_count\n${symbol}_count:\n    .long ${count}\n"
        "    .globl ${symbol}_index\n${symbol}_index:\n${index}"
        "    .globl ${symbol}_bytes\n${symbol}_bytes:\n${bytes}    .text\n)\")\;\n")
    string(CONCAT source ${source})
    file(CONFIGURE OUTPUT ${output}.cpp CONTENT "${source}" @ONLY)
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${output}.cpp PROPERTIES OBJECT_DEPENDS "${ARGN}")
endfunction()
