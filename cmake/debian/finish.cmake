# CPack runs this when each component is installed in a folder of its own, before it makes packages
# of them. It completes the folders, and sets the dependencies that the packages tell.
cmake_policy(SET CMP0057 NEW)  # if(IN_LIST)

set(debian ${CMAKE_CURRENT_LIST_DIR})
set(work ${CPACK_PACKAGE_DIRECTORY}/debian)
set(staged ${CPACK_TEMPORARY_DIRECTORY})

# run(COMMAND ...) ends the packaging if the command fails; `output` is what it prints.
function(run)
    execute_process(COMMAND ${ARGV}
        WORKING_DIRECTORY ${work} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY
        OUTPUT_STRIP_TRAILING_WHITESPACE)
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(compress file)
    run(gzip -9n -f ${file})
endfunction()

function(add_documents package folder)
    set(documents ${folder}/usr/share/doc/${package})
    file(COPY ${debian}/copyright ${debian}/changelog DESTINATION ${documents})
    compress(${documents}/changelog)
    file(GLOB manual_pages ${folder}/usr/share/man/man*/*.[1-9])
    foreach(page ${manual_pages})
        compress(${page})
    endforeach()
endfunction()

# Sets `result` to the packages that the programs and libraries in a folder need; ours are known
# without, exactly.
function(find_dependencies folder result)
    set(files)
    file(GLOB_RECURSE candidates LIST_DIRECTORIES false ${folder}/usr/bin/* ${folder}/usr/lib/*.so*)
    foreach(file ${candidates})
        if(NOT IS_SYMLINK ${file})
            list(APPEND files -e${file})
        endif()
    endforeach()
    set(depends)
    if(files)
        file(GLOB library_folder ${staged}/library/usr/lib/*)
        file(MAKE_DIRECTORY ${folder}/DEBIAN)  # the tool's sign of what is packed as one
        run(dpkg-shlibdeps --ignore-missing-info -O -l${library_folder} ${files})
        file(REMOVE_RECURSE ${folder}/DEBIAN)
        string(REGEX REPLACE "^shlibs:Depends=" "" depends "${output}")
    endif()
    set(${result} "${depends}" PARENT_SCOPE)
endfunction()

run(dpkg-parsechangelog --file ${debian}/changelog --show-field Version)
if(NOT output STREQUAL CPACK_PACKAGE_VERSION)
    message(FATAL_ERROR
        "${debian}/changelog begins with ${output}, the project is ${CPACK_PACKAGE_VERSION}")
endif()

# The tools take this for the sources of a package.
file(WRITE ${work}/debian/control
    "Source: ${CPACK_DEBIAN_PACKAGE_SOURCE}\n\nPackage: unused\nArchitecture: any\n")

foreach(component ${CPACK_COMPONENTS_ALL})
    string(TOUPPER ${component} name)
    set(folder ${staged}/${component})
    add_documents(${CPACK_DEBIAN_${name}_PACKAGE_NAME} ${folder})
    find_dependencies(${folder} depends)
    if(CPACK_DEBIAN_${name}_PACKAGE_DEPENDS AND depends)
        string(PREPEND depends ", ")
    endif()
    string(APPEND CPACK_DEBIAN_${name}_PACKAGE_DEPENDS "${depends}")
endforeach()

# Fails if the library has a symbol of a version that debian/library/symbols does not name.
run(dpkg-gensymbols -p${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} -v${CPACK_PACKAGE_VERSION}
    -P${staged}/library -I${debian}/library/symbols -O${work}/library/symbols -c4 -q)
