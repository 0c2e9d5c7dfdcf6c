# The flags of our own code, as two targets to link: what is compiled with them is ours.
#   zq_warnings   the warnings that our code is free of; the presets make them errors
#   zq_options    C++20, the public include root, the sanitizers of the preset

set(CMAKE_CXX_EXTENSIONS OFF)

add_library(zq_warnings INTERFACE)
target_compile_options(zq_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
# g++ 12 sees overlaps in the strings of its own library that are none, and reads past the end where it
# orders byte vectors.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(zq_warnings INTERFACE -Wno-restrict -Wno-stringop-overread)
endif()
# Where sources are compiled together, g++ takes them for headers of one another, and what one of them
# names is hidden by another.
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(zq_warnings INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage> -Wno-shadow)
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
