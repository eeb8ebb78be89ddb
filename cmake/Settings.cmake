# What holds for every target: output folders, warnings, sanitizers.
# C++20 is the default; provider/, platform/ and openwbem/ ask for C++17 with target_compile_features
# and CXX_STANDARD 17.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

foreach(kind RUNTIME LIBRARY ARCHIVE)
    set(folder lib)
    if(kind STREQUAL RUNTIME)
        set(folder bin)
    endif()
    if(NOT CMAKE_${kind}_OUTPUT_DIRECTORY)
        set(CMAKE_${kind}_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${folder})
    endif()
endforeach()

find_package(Threads REQUIRED)

# Every target of ours links this one.
add_library(project_settings INTERFACE)
target_compile_options(project_settings INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual -Wcast-align -Wformat=2 -Wimplicit-fallthrough -Wundef
    -Wzero-as-null-pointer-constant)
target_link_libraries(project_settings INTERFACE Threads::Threads)

# Nobody replaces single functions of our shared libraries, so they may call their own directly.
target_compile_options(project_settings INTERFACE -fno-semantic-interposition)

# In what is delivered, functions of a library's headers that nobody calls are left out.
target_compile_options(project_settings INTERFACE
    $<$<CONFIG:RelWithDebInfo>:-ffunction-sections -fdata-sections>)
target_link_options(project_settings INTERFACE $<$<CONFIG:RelWithDebInfo>:-Wl,--gc-sections>)
# Exceptions and debug information carry source files: their paths from the root, not those of the building machine.
target_compile_options(project_settings INTERFACE
    $<$<CONFIG:RelWithDebInfo>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=>)

if(SANITIZE)
    target_compile_options(project_settings INTERFACE
        -fsanitize=${SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(project_settings INTERFACE -fsanitize=${SANITIZE})
endif()
if(FUZZ)
    target_compile_options(project_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()
