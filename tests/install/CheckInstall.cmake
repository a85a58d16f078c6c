# Installs, moves what was installed, builds the example against it, and runs the example.
file(REMOVE_RECURSE ${WORK})
set(moved "${WORK}/moved here")
function(run)
    execute_process(COMMAND ${ARGV} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        list(JOIN ARGV " " command)
        message(FATAL_ERROR "${command}\nended with ${status}:\n${output}")
    endif()
endfunction()

run(${CMAKE_COMMAND} --install ${LIBRARY_BUILD} --config ${CONFIGURATION} --prefix ${WORK}/installed)
file(RENAME ${WORK}/installed ${moved})
file(GLOB_RECURSE strangers "${moved}/include/*/embedded/*" "${moved}/include/*/framework/*")
if(strangers)
    message(FATAL_ERROR "Headers that do not ship were installed: ${strangers}")
endif()

if(TOOLCHAIN)
    set(compiler_option --toolchain ${TOOLCHAIN} "-DCMAKE_FIND_ROOT_PATH=${moved}")
else()
    set(compiler_option -DCMAKE_CXX_COMPILER=${COMPILER})
endif()
run(${CMAKE_COMMAND} -G ${GENERATOR} -S ${EXAMPLE} -B ${WORK}/build -DCMAKE_BUILD_TYPE=${CONFIGURATION}
    ${compiler_option} -DCMAKE_CXX_FLAGS=${FLAGS} "-DkvSubstance_ROOT=${moved}")
run(${CMAKE_COMMAND} --build ${WORK}/build --config ${CONFIGURATION})

# Where Windows looks for the DLLs; WINEPATH is what wine adds to it.
set(ENV{WINEPATH} "${moved}/${INSTALLED_FOLDER}")
cmake_path(CONVERT "${moved}/${INSTALLED_FOLDER};$ENV{PATH}" TO_NATIVE_PATH_LIST ENV{PATH})
file(GLOB_RECURSE host ${WORK}/build/minimal_host${SUFFIX})
run(${EMULATOR} ${host} ${SAMPLES}/brick_wall.kvpkg ${SAMPLES}/moss_overgrowth.kvpkg)
