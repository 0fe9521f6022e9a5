# How every target of the project is built: one place for warnings, sanitizers and the include root.

option(NEVO_WERROR "Treat warnings as errors" ON)
set(NEVO_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined")

add_library(nevo-options INTERFACE)
target_include_directories(nevo-options INTERFACE ${CMAKE_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)
target_compile_options(nevo-options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
    -Wnull-dereference)
if(NEVO_WERROR)
    target_compile_options(nevo-options INTERFACE -Werror)
endif()
if(NEVO_SANITIZE)
    target_compile_options(nevo-options INTERFACE -fsanitize=${NEVO_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    target_link_options(nevo-options INTERFACE -fsanitize=${NEVO_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        # clang++ 14 can't translate this check in the parts of a coroutine.
        target_compile_options(nevo-options INTERFACE -fno-sanitize=function)
    endif()
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 sees null pointers and uninitialised values in coroutine frames and std::optional where there are none.
    target_compile_options(nevo-options INTERFACE -Wno-null-dereference -Wno-maybe-uninitialized)
endif()

# nevo_library(NAME [LINKS...]): a library of all sources in this folder (not below it).
function(nevo_library name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    add_library(${name} STATIC ${sources})
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(${name} PUBLIC nevo-options ${ARGN})
endfunction()

# nevo_program(NAME [LINKS...]): an executable of all sources in this folder.
function(nevo_program name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE nevo-options ${ARGN})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endfunction()
