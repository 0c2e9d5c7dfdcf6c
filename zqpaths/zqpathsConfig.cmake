# find_package(zqpaths) gives the target zqpaths::zqpaths.
include(${CMAKE_CURRENT_LIST_DIR}/zqpathsTargets.cmake)

# The headers of C++ want C++20; for a project without C++, CMake would look for that in vain.
get_property(languages GLOBAL PROPERTY ENABLED_LANGUAGES)
if(NOT CXX IN_LIST languages)
    set_property(TARGET zqpaths::zqpaths PROPERTY INTERFACE_COMPILE_FEATURES)
endif()
