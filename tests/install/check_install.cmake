# Installs the already-built library into a scratch prefix, then configures, builds and runs a
# small consumer project against it through find_package(orvo).
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix}
                RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "cmake --install failed: ${rc}")
endif()
if(NOT EXISTS ${prefix}/lib/pkgconfig/orvo.pc AND NOT EXISTS ${prefix}/lib64/pkgconfig/orvo.pc)
    file(GLOB_RECURSE pcfiles ${prefix}/*orvo.pc)
    if(NOT pcfiles)
        message(FATAL_ERROR "no pkg-config file installed")
    endif()
endif()
set(flags "")
if(SANITIZE)
    set(flags "-fsanitize=address,undefined")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/install/consumer
                        -B ${WORK_DIR}/consumer -G Ninja
                        -DCMAKE_PREFIX_PATH=${prefix}
                        -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
                        "-DCMAKE_CXX_FLAGS=${flags}"
                        "-DCMAKE_EXE_LINKER_FLAGS=${flags}"
                RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "configuring the consumer failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/consumer RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "building the consumer failed: ${rc}")
endif()
execute_process(COMMAND ${WORK_DIR}/consumer/orvo_consumer RESULT_VARIABLE rc
                OUTPUT_VARIABLE out)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "the consumer failed: ${rc} ${out}")
endif()
message(STATUS "consumer says: ${out}")
