# The parts of the page of a report as texts that ReportPage.cpp includes: a raw string, and the hash
# that allows it in the page. They are written when the build is configured, again whenever one of
# them has changed, so that whatever reads the sources finds them.
find_file(D3_SCRIPT d3.min.js PATHS /usr/share/javascript/d3 NO_DEFAULT_PATH REQUIRED)

set(report_dir ${CMAKE_CURRENT_LIST_DIR})
foreach(part ${D3_SCRIPT} page.html style.css d3-licence.txt folders.js colours.js fitting.js tip.js
        treemap.js sunburst.js map.js search.js charts.js)
    get_filename_component(file ${part} ABSOLUTE BASE_DIR ${report_dir})
    get_filename_component(name ${part} NAME)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(READ ${file} text)
    file(SHA256 ${file} hash)
    # What would end the string, or the element that a script or style stands in.
    if(text MATCHES "\\)zqpart\"" OR (name MATCHES "js$|css$" AND text MATCHES "</script|</style|<!--"))
        message(FATAL_ERROR "${file} cannot stand in a page as it is")
    endif()
    file(CONFIGURE OUTPUT parts/tools/zqpaths/report/${name}.inc CONTENT "R\"zqpart(@text@)zqpart\", \"@hash@\"\n" @ONLY)
endforeach()
