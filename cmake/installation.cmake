# What is installed, and where. All folders are those of GNUInstallDirs, relative to the prefix, so
# that a tree that is installed works wherever it is put and wherever it is moved.
#
# Components, each a Debian package (packages.cmake) but for the last two:
#   program       the program, its manual page and completions
#   mpi           the same for zqpaths-mpi, where it is built
#   library       what a program on the library needs to run
#   development   what it needs to be built
#   python        the Python module
#   documents     the licence, and the bytes of the files
#   host          the library that hosts load, and the host

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(ZQ_ZSH_DIR "${CMAKE_INSTALL_DATADIR}/zsh/site-functions"
    CACHE STRING "folder of completions for zsh, relative to the prefix")

foreach(folder BINDIR LIBDIR INCLUDEDIR DATADIR MANDIR DOCDIR)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
        message(FATAL_ERROR "CMAKE_INSTALL_${folder} is ${CMAKE_INSTALL_${folder}}: "
            "give it relative to the prefix, so that what is installed can be moved")
    endif()
endforeach()

# All that is installed and is built, and nothing else: targets name their files in its property
# ZQ_FILES. CMake itself would copy what there is and fail at the first file that is missing.
add_custom_target(shipped)
install(CODE "
    foreach(file $<TARGET_GENEX_EVAL:shipped,$<TARGET_PROPERTY:shipped,ZQ_FILES>>)
        if(NOT EXISTS \"\${file}\")
            message(FATAL_ERROR \"\${file} is not built yet; first run\\n\"
                \"  cmake --build '${PROJECT_BINARY_DIR}' --target shipped\")
        endif()
    endforeach()"
    ALL_COMPONENTS)

# zq_is_shipped(TARGET FILE...) notes that the target makes these files, which are installed.
function(zq_is_shipped target)
    add_dependencies(shipped ${target})
    set_property(TARGET shipped APPEND PROPERTY ZQ_FILES ${ARGN})
endfunction()

# zq_ship(TARGET FOLDER COMPONENT [FINDS_LIBRARIES] [EXPORT SET]) installs a program or a library into
# a folder below the prefix, and builds it into the same folder below the build tree. What needs
# libraries of ours finds them there by one relative way, the same in both trees. Otherwise CMake
# would write the folders of the build tree into the file, to be replaced on installation, and end
# them with a colon, which for the loader is one more: the working directory.
function(zq_ship target folder component)
    cmake_parse_arguments(PARSE_ARGV 3 ship FINDS_LIBRARIES EXPORT "")
    set_target_properties(${target} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${folder}
        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${folder}
        BUILD_WITH_INSTALL_RPATH ON)
    set(export)
    if(ship_EXPORT)
        set(export EXPORT ${ship_EXPORT})
    endif()
    install(TARGETS ${target} ${export}
        RUNTIME DESTINATION ${folder} COMPONENT ${component}
        LIBRARY DESTINATION ${folder} COMPONENT ${component} NAMELINK_COMPONENT development)
    if(ship_FINDS_LIBRARIES)
        zq_find_libraries_from(${target} ${folder} ${component})
    endif()
    zq_is_shipped(${target} $<TARGET_FILE:${target}>)
endfunction()

# The way is left out where it would lead to a folder that the loader searches for every program. Only
# on installation is it known which prefix that will be.
function(zq_find_libraries_from target folder component)
    file(RELATIVE_PATH way /${folder} /${CMAKE_INSTALL_LIBDIR})
    string(REGEX REPLACE "/$" "" way "$ORIGIN/${way}")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${way}")
    install(CODE "
        if(\"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}\"
                MATCHES \"^/usr/(lib|lib64|lib/${CMAKE_LIBRARY_ARCHITECTURE})\$\")
            file(RPATH_REMOVE FILE
                \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${folder}/$<TARGET_FILE_NAME:${target}>\")
        endif()"
        COMPONENT ${component})
endfunction()

# zq_program_documents(PROGRAM COMPONENT) installs the manual page and the shells' completions of a
# program, which prints them itself, so that they say what it does.
function(zq_program_documents program component)
    set(documents ${CMAKE_CURRENT_BINARY_DIR}/documents)
    file(MAKE_DIRECTORY ${documents})
    foreach(document man:${program}.1 bash:${program} zsh:_${program} fish:${program}.fish)
        string(REPLACE ":" ";" document ${document})
        list(GET document 0 kind)
        list(GET document 1 name)
        add_custom_command(
            OUTPUT ${documents}/${name}
            COMMAND ${program} document ${kind} > ${documents}/${name}
            DEPENDS ${program})
        list(APPEND document_files ${documents}/${name})
    endforeach()
    add_custom_target(${program}_documents ALL DEPENDS ${document_files})
    zq_is_shipped(${program}_documents ${document_files})

    install(FILES ${documents}/${program}.1
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
    install(FILES ${documents}/${program}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT ${component})
    install(FILES ${documents}/_${program} DESTINATION ${ZQ_ZSH_DIR} COMPONENT ${component})
    install(FILES ${documents}/${program}.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT ${component})
endfunction()

install(FILES LICENSE docs/zqp.md docs/zqs.md docs/image.md docs/format.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)
