# SPDX-License-Identifier: MIT
# Installs what BUILD has built into FOLDER, moves the installation, builds the plugin example and the smallest host
# against it, and plays a document with the plugin, without it, and in the tool.

# Runs a command; stops unless it ends with that exit code and says each of the texts.
function(run code)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "COMMAND;SAYS")
    execute_process(COMMAND ${arg_COMMAND} WORKING_DIRECTORY ${FOLDER}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    list(JOIN arg_COMMAND " " line)
    if(NOT result EQUAL code)
        message(FATAL_ERROR "${line}\n${output}\nexit code ${result}, expected ${code}")
    endif()
    foreach(text IN LISTS arg_SAYS)
        string(FIND "${output}" "${text}" place)
        if(place EQUAL -1)
            message(FATAL_ERROR "${line}\n${output}\ndoesn't say: ${text}")
        endif()
    endforeach()
endfunction()

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})

run(0 COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${FOLDER}/installed)
file(RENAME ${FOLDER}/installed ${FOLDER}/moved)
foreach(project 02-plugin 00-embed/outside)
    run(0 COMMAND ${CMAKE_COMMAND} -S ${EXAMPLES}/${project} -B build/${project} -G ${GENERATOR}
        -DCMAKE_PREFIX_PATH=${FOLDER}/moved
        -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -DCMAKE_CXX_FLAGS=${FLAGS}
        -DCMAKE_EXE_LINKER_FLAGS=${OBJECTS})
    run(0 COMMAND ${CMAKE_COMMAND} --build build/${project} --parallel 2)
endforeach()
run(0 COMMAND ${CMAKE_COMMAND} --install build/02-plugin --prefix with)
run(0 COMMAND ${CMAKE_COMMAND} --install build/02-plugin --prefix without --component host)
run(0 COMMAND ${CMAKE_COMMAND} --install build/02-plugin --prefix moved/${SUITE} --component plugin)

# No program is on disk yet: the bundle brings what compiles them, and without that a problem says so.
set(ENV{XDG_CACHE_HOME} ${FOLDER}/cache)
run(0 COMMAND build/02-plugin/silk-host make silk.hfx with/dusk.palette)
run(0 COMMAND build/02-plugin/silk-host show silk.hfx silk.ppm)
file(REMOVE_RECURSE ${FOLDER}/cache)
file(RENAME ${FOLDER}/with/helvantine-shader-compiler ${FOLDER}/compiler)
run(1 COMMAND with/silk-host show silk.hfx silk.ppm SAYS
    "shader: texts can't be compiled, which takes a program beside Helvantine.Renderer.dll: ${FOLDER}/with/helvantine-shader-compiler: No such file or directory\n"
    "silk: shader:1: error: the shader compiler can't be used: ")
file(RENAME ${FOLDER}/compiler ${FOLDER}/with/helvantine-shader-compiler)
run(0 COMMAND with/silk-host show silk.hfx silk.ppm SAYS
    "resource dusk.palette (PaletteResource)\neffect Backdrop (ClearScreenEffect)\neffect Silk (SilkEffect)"
    "node Beat (BeatNode)\n" "links 1\n")
# The other host draws it too, once the plugin lies beside it.
run(0 COMMAND ${CMAKE_COMMAND} --install build/02-plugin --prefix build/00-embed/outside --component plugin)
run(0 COMMAND build/00-embed/outside/embed silk.hfx)
# An unknown effect or importer costs itself, an unknown node the graph from there on.
run(1 COMMAND without/silk-host show silk.hfx SAYS
    "resource dusk.palette (Resource)\neffect Backdrop (ClearScreenEffect)\nlinks 0\n"
    "resource: dusk.palette: nothing here knows its importer's class 5B0C2E5A-7D11-4E0C-9A3F-0B6C51D87A03\n"
    "script: effect of unknown class 5B0C2E5A-7D11-4E0C-9A3F-0B6C51D87A01 left out"
    "script: node of unknown class 5B0C2E5A-7D11-4E0C-9A3F-0B6C51D87A04")
# The shader compiler, without its arguments, is found and says what it is.
run(2 COMMAND moved/${SUITE}/helvantine-shader-compiler SAYS "This program compiles shaders for Helvantine")
run(0 COMMAND moved/bin/helvantine render silk.hfx --frames 123 --size 256x144 --validation --stats -o silk.png SAYS
    "programs   1 before the first frame, 0 after" "pipelines  1 before the first frame, 0 after")
