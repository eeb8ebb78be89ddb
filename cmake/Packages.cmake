# Five Debian packages by CPack, one for each component of cmake/Install.cmake; `make packages` calls it.

set(PACKAGE_REVISION 1 CACHE STRING "Revision of the Debian packages of this version")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_CONTACT "SoftwareUpdateProvider maintainers <maintainers@software-update-provider.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_RELEASE ${PACKAGE_REVISION})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL provider server tool dev doc)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Whoever packs may have any umask.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(package_version ${PROJECT_VERSION}-${PACKAGE_REVISION})
string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(debian ${PROJECT_BINARY_DIR}/packaging/debian)
file(READ packaging/debian/user.sh user_functions)
file(READ packaging/debian/lintian-overrides common_overrides)
configure_file(packaging/debian/changelog.in ${debian}/changelog @ONLY)
execute_process(COMMAND gzip -9nc ${debian}/changelog OUTPUT_FILE ${debian}/changelog.Debian.gz
    COMMAND_ERROR_IS_FATAL ANY)

# What every package has, and what bears its name in packaging/debian/. A string of DESCRIPTION is a line.
function(add_package component name section)
    cmake_parse_arguments(arg "" "" "DESCRIPTION;DEPENDS;RECOMMENDS" ${ARGN})
    set(documents ${CMAKE_INSTALL_DATADIR}/doc/${name})
    install(FILES packaging/debian/copyright ${debian}/changelog.Debian.gz
        DESTINATION ${documents} COMPONENT ${component} EXCLUDE_FROM_ALL)
    set(overrides "${common_overrides}")
    if(EXISTS ${PROJECT_SOURCE_DIR}/packaging/debian/${name}.lintian-overrides)
        file(READ packaging/debian/${name}.lintian-overrides own_overrides)
        string(APPEND overrides "${own_overrides}")
    endif()
    file(CONFIGURE OUTPUT ${debian}/overrides/${name} CONTENT "${overrides}" @ONLY)
    install(FILES ${debian}/overrides/${name}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component} EXCLUDE_FROM_ALL)
    foreach(script postinst prerm postrm conffiles)
        if(EXISTS ${PROJECT_SOURCE_DIR}/packaging/debian/${name}.${script})
            configure_file(packaging/debian/${name}.${script} ${debian}/${name}/${script} @ONLY)
            list(APPEND control ${debian}/${name}/${script})
        endif()
    endforeach()
    string(TOUPPER ${component} upper)
    list(JOIN arg_DESCRIPTION "\n" description)
    list(JOIN arg_DEPENDS ", " depends)
    list(JOIN arg_RECOMMENDS ", " recommends)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_SOURCE software-update-provider PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS ${depends} PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_RECOMMENDS ${recommends} PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA ${control} PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_DESCRIPTION ${description} PARENT_SCOPE)
endfunction()

set(same_version "(= ${package_version})")

add_package(provider software-update-provider admin
    DESCRIPTION "CIM provider library for an appliance's software updates"
        "Makes the updates and the installed software of an appliance, and what its"
        "tool does with them, reachable over WBEM. It holds the library, built for"
        "cimserver, and the MOF of its nine classes."
    DEPENDS "cimserver ${same_version}"
    RECOMMENDS patchkeeper)
add_package(server cimserver net
    DESCRIPTION "small CIM server for OpenWBEM C++ provider libraries"
        "Serves the classes of MOF files over CIM-XML with provider libraries that are"
        "written against the C++ provider interface of OpenWBEM 3.0.3, which it"
        "implements."
    DEPENDS adduser
    RECOMMENDS software-update-provider)
add_package(tool patchkeeper admin
    DESCRIPTION "stand-in for an appliance's software-update tool"
        "Takes in update bundles from disk, USB, HTTP, FTP and file shares, applies them"
        "as a whole or not at all, takes them back and schedules them. It stands in for"
        "the appliance's own tool wherever there is none."
    DEPENDS adduser)
add_package(dev software-update-provider-dev libdevel
    DESCRIPTION "development files for provider libraries of cimserver"
        "Headers of the provider interface, files for CMake and pkg-config, and an"
        "example provider library of twenty lines."
    DEPENDS "cimserver ${same_version}")
add_package(doc software-update-provider-doc doc
    DESCRIPTION "documentation of the provider library, cimserver and patchkeeper"
        "How to run, use, deploy and secure the provider library, the CIM server and the"
        "tool, with their messages, their oddities and why they are built this way.")
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
foreach(component PROVIDER SERVER TOOL)
    set(CPACK_DEBIAN_${component}_PACKAGE_SHLIBDEPS ON)
endforeach()

include(CPack)
