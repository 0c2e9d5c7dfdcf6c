# The flags of our own code, as two targets to link: what is compiled with them is ours.
#   zq_warnings   the warnings that our code is free of; the presets make them errors
#   zq_options    C++20, the public include root, the sanitizers of the preset
#
# and the headers that sources have in common, for the compiler to read once:
#   zq_share_headers(TARGET library|program)

set(CMAKE_CXX_EXTENSIONS OFF)

add_library(zq_warnings INTERFACE)
target_compile_options(zq_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
# g++ 12 sees overlaps in the strings of its own library that are none, and reads past the end where it
# orders byte vectors.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(zq_warnings INTERFACE -Wno-restrict -Wno-stringop-overread)
endif()

add_library(zq_options INTERFACE)
target_compile_features(zq_options INTERFACE cxx_std_20)
target_compile_options(zq_options INTERFACE -pthread)  # headers are shared by what is compiled alike
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

# Reading the headers of the standard library takes longer than compiling what most sources say. They
# are read twice for all: for libraries, whose code can stand anywhere and hides its names, and for
# programs. A source includes what it needs all the same. CMAKE_DISABLE_PRECOMPILE_HEADERS, as the
# preset for packages has it, finds the one that does not: then each is compiled alone.
foreach(kind library program)
    add_library(zq_${kind}_headers OBJECT ${CMAKE_CURRENT_LIST_DIR}/commonHeaders.cpp)
    target_link_libraries(zq_${kind}_headers PRIVATE zq_options zq_warnings)
    target_precompile_headers(zq_${kind}_headers PRIVATE
        <algorithm>
        <atomic>
        <chrono>
        <condition_variable>
        <filesystem>
        <functional>
        <memory>
        <mutex>
        <optional>
        <span>
        <stdexcept>
        <string>
        <string_view>
        <thread>
        <unordered_map>
        <vector>)
endforeach()
set_target_properties(zq_library_headers PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)

# zq_share_headers(TARGET library|program) has the target use those that have been read.
function(zq_share_headers target kind)
    target_precompile_headers(${target} REUSE_FROM zq_${kind}_headers)
endfunction()
