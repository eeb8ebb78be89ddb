# -DOPENWBEM_ROOT=PREFIX: the provider library is built against the OpenWBEM that is installed there, and nothing of
# openwbem/ and cimserver/ is built. The targets have the names that those folders give theirs.

set(openwbem_headers ${OPENWBEM_ROOT}/include/openwbem)

function(refuse_openwbem reason)
    message(FATAL_ERROR "OPENWBEM_ROOT=${OPENWBEM_ROOT} is no installation of OpenWBEM 3.0.3 that this library can "
        "be built against: ${reason}")
endfunction()

foreach(header OW_config.h OW_CppProviderIncludes.hpp OW_ResultHandlers.hpp OW_CIMInstanceEnumeration.hpp)
    if(NOT EXISTS ${openwbem_headers}/${header})
        refuse_openwbem("there is no header ${openwbem_headers}/${header}")
    endif()
endforeach()

# A server uses only libraries that were compiled with headers of its own version.
file(STRINGS ${openwbem_headers}/OW_config.h version_line REGEX "^[ \t]*#[ \t]*define[ \t]+OW_VERSION[ \t]")
string(REGEX MATCH "\"([^\"]*)\"" version_text "${version_line}")
if(NOT version_text STREQUAL "\"3.0.3\"")
    refuse_openwbem("OW_config.h tells version ${version_text}")
endif()

foreach(name openwbem owcppprovifc owprovider)
    find_library(OPENWBEM_LIBRARY_${name} ${name}
        PATHS ${OPENWBEM_ROOT} PATH_SUFFIXES lib lib64 lib/${CMAKE_LIBRARY_ARCHITECTURE}
        NO_DEFAULT_PATH)
    if(NOT OPENWBEM_LIBRARY_${name})
        refuse_openwbem("there is no library lib${name}.so below ${OPENWBEM_ROOT}/lib")
    endif()
    # Only the headers: the library takes these symbols from the process that loads it.
    add_library(${name} INTERFACE)
    target_include_directories(${name} SYSTEM INTERFACE ${openwbem_headers})
    list(APPEND openwbem_libraries ${OPENWBEM_LIBRARY_${name}})
endforeach()
message(STATUS "OpenWBEM 3.0.3: ${OPENWBEM_ROOT}")
