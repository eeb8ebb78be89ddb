# What is installed where. Components: provider (the library and its MOF), server, tool, dev (what a provider library
# is built with) and doc; with an installed OpenWBEM the first alone.

if(OPENWBEM_ROOT AND CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
    set_property(CACHE CMAKE_INSTALL_PREFIX PROPERTY VALUE ${OPENWBEM_ROOT})
endif()
include(GNUInstallDirs)

# Where OpenWBEM looks for provider libraries, and with the configuration of ours cimserver too.
set(provider_directory ${PROVIDER_DIRECTORY})
if(NOT provider_directory AND OPENWBEM_ROOT)
    set(provider_directory lib/openwbem/c++providers)
elseif(NOT provider_directory)
    set(provider_directory ${CMAKE_INSTALL_LIBDIR}/openwbem/c++providers)
endif()
set(mof_directory ${CMAKE_INSTALL_DATADIR}/software-update-provider)

# Manual pages are compressed here, once, for a time of day would make each build another one.
function(install_manual component)
    foreach(page ${ARGN})
        set(source ${PROJECT_SOURCE_DIR}/packaging/man/${page})
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
        set(compressed ${PROJECT_BINARY_DIR}/man/${page}.gz)
        file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/man)
        execute_process(COMMAND gzip -9nc ${source} OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
        string(REGEX REPLACE ".*\\." "" section ${page})
        install(FILES ${compressed} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT ${component})
    endforeach()
endfunction()

install(TARGETS SoftwareUpdateProvider LIBRARY DESTINATION ${provider_directory} COMPONENT provider)
install(FILES ${ZNX_MOF_FILES} DESTINATION ${mof_directory} COMPONENT provider)
install(PROGRAMS packaging/register-software-update-provider
    DESTINATION ${CMAKE_INSTALL_SBINDIR} COMPONENT provider)
install_manual(provider SoftwareUpdateProvider.7 register-software-update-provider.8)

if(OPENWBEM_ROOT)
    return()
endif()

# The server's libraries have no version in their names: they stand in a folder of their own.
set(server_libraries ${CMAKE_INSTALL_LIBDIR}/cimserver)
set(tool_libraries ${CMAKE_INSTALL_LIBDIR}/patchkeeper)
set_target_properties(openwbem owprovider owcppprovifc PROPERTIES INSTALL_RPATH "\$ORIGIN")
set_target_properties(cimserver PROPERTIES INSTALL_RPATH "\$ORIGIN/../${server_libraries}")
set_target_properties(patchkeeper PROPERTIES INSTALL_RPATH "\$ORIGIN/../${tool_libraries}")

# The paths in these files are those of the prefix that CMake was called with.
set(provider_path ${provider_directory})
cmake_path(ABSOLUTE_PATH provider_path BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
function(install_configured source destination component)
    cmake_path(GET source FILENAME name)
    set(configured ${PROJECT_BINARY_DIR}/packaging/${name})
    configure_file(packaging/${source}.in ${configured} @ONLY)
    install(FILES ${configured} DESTINATION ${destination} COMPONENT ${component})
endfunction()

install(TARGETS cimserver RUNTIME DESTINATION ${CMAKE_INSTALL_SBINDIR} COMPONENT server)
install(TARGETS openwbem owprovider owcppprovifc EXPORT software-update-provider
    LIBRARY DESTINATION ${server_libraries} COMPONENT server
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/openwbem)
# A configuration that is there already is somebody's. (Packages are made in an empty folder.)
configure_file(packaging/server/cimserver.conf.in ${PROJECT_BINARY_DIR}/packaging/cimserver.conf @ONLY)
install(CODE "
    set(configuration \"${CMAKE_INSTALL_FULL_SYSCONFDIR}/cimserver\")
    if(EXISTS \"\$ENV{DESTDIR}\${configuration}/cimserver.conf\")
        message(STATUS \"Left as it is: \$ENV{DESTDIR}\${configuration}/cimserver.conf\")
    else()
        file(INSTALL \"${PROJECT_BINARY_DIR}/packaging/cimserver.conf\" DESTINATION \"\${configuration}\")
    endif()" COMPONENT server)
install_configured(systemd/cimserver.service lib/systemd/system server)
install(FILES packaging/systemd/cimserver.socket DESTINATION lib/systemd/system COMPONENT server)
install_manual(server cimserver.8 cimserver.conf.5)
install(FILES packaging/cimserver.conf DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/cimserver/examples COMPONENT server)

install(TARGETS patchkeeper RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
install(TARGETS patchkeeper_network LIBRARY DESTINATION ${tool_libraries} COMPONENT tool)
install_configured(systemd/patchkeeper-due.service lib/systemd/system tool)
install(FILES packaging/systemd/patchkeeper-due.timer DESTINATION lib/systemd/system COMPONENT tool)
install_manual(tool patchkeeper.1)

include(CMakePackageConfigHelpers)
set(cmake_directory ${CMAKE_INSTALL_LIBDIR}/cmake/software-update-provider)
configure_package_config_file(packaging/dev/software-update-provider-config.cmake.in
    ${PROJECT_BINARY_DIR}/packaging/software-update-provider-config.cmake
    INSTALL_DESTINATION ${cmake_directory} PATH_VARS provider_path NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/packaging/software-update-provider-config-version.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
        ${PROJECT_BINARY_DIR}/packaging/software-update-provider-config.cmake
        ${PROJECT_BINARY_DIR}/packaging/software-update-provider-config-version.cmake
    DESTINATION ${cmake_directory} COMPONENT dev)
install(EXPORT software-update-provider NAMESPACE OpenWBEM:: DESTINATION ${cmake_directory} COMPONENT dev)
install_configured(dev/software-update-provider.pc ${CMAKE_INSTALL_LIBDIR}/pkgconfig dev)
install(DIRECTORY openwbem/include/openwbem DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
install(DIRECTORY packaging/example
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/software-update-provider-dev COMPONENT dev)

# The pages keep their places relative to each other, so that their links hold.
file(GLOB pages RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS
    *.md docs/*.md docs/*/*.md cimserver/*.md provider/*/*.md patchkeeper/*.md patchkeeper/bundle/*.md)
foreach(page ${pages})
    cmake_path(GET page PARENT_PATH folder)
    install(FILES ${page}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/software-update-provider-doc/pages/${folder} COMPONENT doc)
endforeach()
