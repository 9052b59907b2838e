include(GNUInstallDirs)

# Sanitizers apply to everything built in this tree (library, tests, tool) so that an
# instrumented test never links an uninstrumented library.
if(ORVO_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
                        -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
endif()

# Fuzzing steers by the coverage of the code under test, so the library itself carries the
# instrumentation (the fuzz targets add the libFuzzer driver when they link). Without it the
# fuzzer sees only the few branches of each target's own source and explores nothing.
if(ORVO_BUILD_FUZZ AND CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

function(orvo_apply_warnings target)
    if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
        target_compile_options(${target} PRIVATE -Wall -Wextra)
        if(ORVO_WERROR)
            target_compile_options(${target} PRIVATE -Werror)
        endif()
    elseif(MSVC)
        target_compile_options(${target} PRIVATE /W4)
    endif()
endfunction()
