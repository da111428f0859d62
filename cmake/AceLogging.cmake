# ACE looks for its logging strategy in a library called libACE.so, a name that only its development
# package has. A directory of our own holds a link of that name to the runtime library; a program
# finds it by DT_RPATH, which, unlike DT_RUNPATH, counts for what ACE loads, too.
find_library(ZARNSYS_ACE_LIBRARY ACE HINTS ${ZARNSYS_ACE_LIBRARY_DIRS} REQUIRED)
get_filename_component(ACE_RUNTIME_LIBRARY ${ZARNSYS_ACE_LIBRARY} REALPATH)
set(ZARNSYS_ACE_LINK ${PROJECT_BINARY_DIR}/ace/libACE.so)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/ace)
file(CREATE_LINK ${ACE_RUNTIME_LIBRARY} ${ZARNSYS_ACE_LINK} SYMBOLIC)

# zarnsys_load_ace_logging(PROGRAM) lets the program find it in the build tree.
function(zarnsys_load_ace_logging program)
    target_link_options(${program} PRIVATE -Wl,--disable-new-dtags)
    file(RELATIVE_PATH directory ${CMAKE_CURRENT_BINARY_DIR} ${PROJECT_BINARY_DIR}/ace)
    set_target_properties(${program} PROPERTIES BUILD_RPATH $ORIGIN/${directory})
endfunction()
