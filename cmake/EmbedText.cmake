# SPDX-License-Identifier: MIT
# Joins text files and writes them as one constant of a C++ source. Run at build time:
#   cmake -DOUTPUT=out.cpp -DNAME=g_text -DINPUTS=a|b -P EmbedText.cmake
# The pieces are kept short, since compilers limit the length of a single literal.
string(REPLACE "|" ";" inputs "${INPUTS}")
set(literals "")
foreach(input IN LISTS inputs)
    file(READ "${input}" text)
    string(APPEND literals "    R\"TEXT(${text})TEXT\"\n")
endforeach()
file(WRITE "${OUTPUT}" "// Written by the build from the files beside EmbedText.cmake's caller. Do not edit.
namespace helvantine
{

extern const char* const ${NAME};
const char* const ${NAME} =
${literals}    ;

} // namespace helvantine
")
