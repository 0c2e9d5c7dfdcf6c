# The flags of our own code, as two targets to link: what is compiled with them is ours.
#   zq_warnings   every warning is an error
#   zq_options    C++20, the public include root, the sanitizers of the preset

set(CMAKE_CXX_EXTENSIONS OFF)

add_library(zq_warnings INTERFACE)
target_compile_options(zq_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
# g++ 12 sees overlaps in the strings of its own library that are none, and reads past the end where it
# orders byte vectors.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(zq_warnings INTERFACE -Wno-restrict -Wno-stringop-overread)
endif()

add_library(zq_options INTERFACE)
target_compile_features(zq_options INTERFACE cxx_std_20)
target_include_directories(zq_options INTERFACE ${PROJECT_SOURCE_DIR})
if(ZQ_SANITIZE)
    # An undefined step must fail the test that takes it, not print a line and go on.
    target_compile_options(zq_options INTERFACE
        -fsanitize=${ZQ_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zq_options INTERFACE -fsanitize=${ZQ_SANITIZE})
endif()
if(ZQ_FUZZ)
    target_compile_options(zq_options INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined
        -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zq_options INTERFACE -fsanitize=address,undefined)
endif()

# Puts what is installed into the folders bin and lib of the build tree, where it finds its libraries
# by the same relative way as it does once it is installed. Otherwise CMake would write the folders of
# the build tree into the file, to be replaced on installation, and end them with a colon, which for
# the loader is one more: the working directory.
function(zq_place_as_installed target runtime_path)
    set_target_properties(${target} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin
        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH "${runtime_path}")
endfunction()
