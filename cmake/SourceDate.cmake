# zarnsys_date_sources(FILE...) defines ZARNSYS_SOURCE_DATE for each file: the day of its last
# change, for the identification string that the file carries. SOURCE_DATE_EPOCH, as packagers set
# it, wins, so that a clone and a source package give the same bytes; then comes git; outside a clone
# the file's modification time.
find_package(Git QUIET)
# A commit changes days.
if(EXISTS ${PROJECT_SOURCE_DIR}/.git/logs/HEAD)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/.git/logs/HEAD)
endif()

function(zarnsys_date_sources)
    foreach(file IN LISTS ARGN)
        set(day "")
        if(DEFINED ENV{SOURCE_DATE_EPOCH})
            string(TIMESTAMP day "%Y/%m/%d" UTC)
        elseif(GIT_FOUND)
            execute_process(COMMAND ${GIT_EXECUTABLE} log -1 --format=%ad --date=format:%Y/%m/%d -- ${file}
                            WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
                            OUTPUT_VARIABLE day OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
        endif()
        if(NOT day)
            file(TIMESTAMP ${PROJECT_SOURCE_DIR}/${file} day "%Y/%m/%d" UTC)
        endif()
        set_property(SOURCE ${file} APPEND PROPERTY COMPILE_DEFINITIONS ZARNSYS_SOURCE_DATE="${day}")
    endforeach()
endfunction()
