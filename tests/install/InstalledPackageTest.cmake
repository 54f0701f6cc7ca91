# The Debian package as a host project meets it: built by CPack from this build, unpacked into a
# scratch root, its dependencies declared, a host project built against the installed CMake
# package (offscreen: the section library opens, texts parse) and the installed bxq reading the
# installed databases, or saying where it looked for them when they are gone.
# Run as: cmake -DBUILD=<build dir> -DHOST=<host source> -DSCRATCH=<dir> -P InstalledPackageTest.cmake
cmake_minimum_required(VERSION 3.25)

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${what} failed (${status}):\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
file(MAKE_DIRECTORY ${SCRATCH})
run("cpack" ${CMAKE_CPACK_COMMAND} --config ${BUILD}/CPackConfig.cmake -B ${SCRATCH}/package)
file(GLOB debs ${SCRATCH}/package/*.deb)
list(LENGTH debs count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "expected one .deb in ${SCRATCH}/package, found: ${debs}")
endif()

run("dpkg-deb -f" dpkg-deb -f ${debs} Depends)
foreach(dependency libqt5widgets5 libqt5script5 libsqlite3-0 libocct-modeling-algorithms-7.6 libopenscenegraph)
  if(NOT out MATCHES "${dependency}")
    message(FATAL_ERROR "the package does not depend on ${dependency}: ${out}")
  endif()
endforeach()
run("dpkg-deb -x" dpkg-deb -x ${debs} ${SCRATCH}/root)
foreach(installed usr/lib/cmake/BXQExtend/BXQExtendConfig.cmake usr/lib/cmake/BXQExtend/BXQExtendConfigVersion.cmake
                  usr/include/bxqextend/section_dialog/SKRSectionPolyDialog.h usr/share/bxq/SKRSectionPolyDB.KDB
                  usr/share/bxq/translations/bxqextend_en.qm usr/share/doc/bxqextend/LICENSE usr/bin/bxq)
  if(NOT EXISTS ${SCRATCH}/root/${installed})
    message(FATAL_ERROR "the package lacks /${installed}")
  endif()
endforeach()

run("configuring the host" ${CMAKE_COMMAND} -S ${HOST} -B ${SCRATCH}/host -G Ninja
    -DCMAKE_PREFIX_PATH=${SCRATCH}/root/usr -DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF)
run("building the host" ${CMAKE_COMMAND} --build ${SCRATCH}/host)
run("the host" ${CMAKE_COMMAND} -E env --unset=BXQ_DATA_DIR QT_QPA_PLATFORM=offscreen ${SCRATCH}/host/bxqextend-host)
message("${out}")
run("the installed bxq" ${CMAKE_COMMAND} -E env --unset=BXQ_DATA_DIR ${SCRATCH}/root/usr/bin/bxq wpm I20a)
if(NOT out MATCHES "^27\\.9")
  message(FATAL_ERROR "the installed bxq read no catalogue: wpm I20a gave '${out}'")
endif()

# Without its databases the installed bxq says where it looked: beside the installed library.
file(RENAME ${SCRATCH}/root/usr/share/bxq ${SCRATCH}/root/usr/share/bxq.moved)
execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=BXQ_DATA_DIR ${SCRATCH}/root/usr/bin/bxq wpm I20a
                RESULT_VARIABLE status ERROR_VARIABLE err)
if(status EQUAL 0 OR NOT err MATCHES "looked in ${SCRATCH}/root/usr/share/bxq")
  message(FATAL_ERROR "the installed bxq without databases: status ${status}, '${err}'")
endif()
