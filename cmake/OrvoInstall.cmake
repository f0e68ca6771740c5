# Installation in four components: the library at run time; what building on it needs; the tool;
# the documentation. `cmake --install BUILD --component runtime` installs one, without the option
# all of them.
include(CMakePackageConfigHelpers)

get_target_property(ORVO_KIND orvobase TYPE)
set(ORVO_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/OrvoBase)
set(ORVO_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/orvobase)

install(TARGETS orvobase EXPORT OrvoBaseTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
        NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)

get_target_property(source_dir orvobase SOURCE_DIR)
get_directory_property(headers DIRECTORY ${source_dir} DEFINITION ORVO_PUBLIC_HEADERS)
list(TRANSFORM headers PREPEND ${source_dir}/)
install(FILES ${headers} DESTINATION ${ORVO_INCLUDE_DIR} COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/Orvo/CQPath.h
    DESTINATION ${ORVO_INCLUDE_DIR}/Orvo COMPONENT development)

# The debugger's pretty printers, where gdb looks for those of a library in this place.
install(FILES ${source_dir}/orvobase-gdb.py
    DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load${CMAKE_INSTALL_FULL_LIBDIR}
    RENAME liborvobase.so.${PROJECT_VERSION}-gdb.py COMPONENT development)

# The CMake package.
install(EXPORT OrvoBaseTargets NAMESPACE Orvo::
    DESTINATION ${ORVO_CMAKE_DIR} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OrvoBaseConfig.cmake.in
    ${PROJECT_BINARY_DIR}/OrvoBaseConfig.cmake INSTALL_DESTINATION ${ORVO_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvoBaseConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/OrvoBaseConfig.cmake
    ${PROJECT_BINARY_DIR}/OrvoBaseConfigVersion.cmake
    DESTINATION ${ORVO_CMAKE_DIR} COMPONENT development)

# The pkg-config file, found from its own place, so that it holds wherever the package is
# installed. A client of the static library links what that leaves open, too.
file(RELATIVE_PATH ORVO_PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" ORVO_PC_TO_PREFIX ${ORVO_PC_TO_PREFIX})
set(ORVO_PC_REQUIRES "Qt${ORVO_QT_MAJOR}Core Qt${ORVO_QT_MAJOR}Gui")
if(ORVO_KIND STREQUAL STATIC_LIBRARY)
    string(APPEND ORVO_PC_REQUIRES " zlib")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/orvobase.pc.in ${PROJECT_BINARY_DIR}/orvobase.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orvobase.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(TARGET orvotool)
    install(TARGETS orvotool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
    install(FILES ${PROJECT_SOURCE_DIR}/tools/orvotool.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME orvotool COMPONENT tool)
endif()
if(TARGET orvotool_man)
    install(FILES ${PROJECT_BINARY_DIR}/tools/orvotool.1
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
endif()
if(TARGET docs)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation OPTIONAL)
    install(FILES ${PROJECT_BINARY_DIR}/docs/orvobase.qch
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation OPTIONAL)
endif()

install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation
    FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation
    PATTERN "make_*.py" EXCLUDE)
