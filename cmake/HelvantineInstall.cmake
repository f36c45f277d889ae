# SPDX-License-Identifier: MIT
# What an installation holds, and the CMake package that leads to it. Nothing in it names the prefix: the
# whole tree can be moved.
#
#   lib/helvantine/            the libraries, the tool and the programs that they start, beside each other: the folder
#                              that plugins go to
#   bin/helvantine             leads to the tool there
#   include/helvantine/        the public headers
#   lib/cmake/Helvantine/      find_package(Helvantine), with Helvantine::Core, ::Renderer, ::Audio and ::Fx, and
#                              helvantine_bundle for hosts
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(suite ${CMAKE_INSTALL_LIBDIR}/helvantine)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/Helvantine)

# The libraries, and the programs that they start: all that a host has beside it.
foreach(part Core Renderer Audio Fx ShaderCompiler PluginTrial)
    set_target_properties(Helvantine${part} PROPERTIES EXPORT_NAME ${part})
    install(TARGETS Helvantine${part} EXPORT Helvantine
        LIBRARY DESTINATION ${suite}
        RUNTIME DESTINATION ${suite}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    list(APPEND HELVANTINE_RUNTIME Helvantine::${part})
endforeach()
string(REPLACE ";" " " HELVANTINE_RUNTIME "${HELVANTINE_RUNTIME}")
foreach(headers include platform/core/include platform/renderer/include platform/audio/include)
    install(DIRECTORY ${headers}/helvantine DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h")
endforeach()

if(TARGET HelvantineCommand)
    install(TARGETS HelvantineCommand RUNTIME DESTINATION ${suite})
    file(RELATIVE_PATH tool /${CMAKE_INSTALL_BINDIR} /${suite}/helvantine)
    install(CODE "
        set(bin \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
        file(MAKE_DIRECTORY \"\${bin}\")
        file(CREATE_LINK ${tool} \"\${bin}/helvantine\" SYMBOLIC)")
endif()

install(EXPORT Helvantine NAMESPACE Helvantine:: FILE HelvantineTargets.cmake DESTINATION ${package})
configure_package_config_file(cmake/HelvantineConfig.cmake.in ${PROJECT_BINARY_DIR}/HelvantineConfig.cmake
    INSTALL_DESTINATION ${package}
    NO_SET_AND_CHECK_MACRO)
# Until 1.0 a minor version may break what was built against the one before.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/HelvantineConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    cmake/HelvantineBundle.cmake
    ${PROJECT_BINARY_DIR}/HelvantineConfig.cmake
    ${PROJECT_BINARY_DIR}/HelvantineConfigVersion.cmake
    DESTINATION ${package})
