# Big files on 32-bit machines, and the C library's extensions, for everything that we compile.
add_compile_definitions(_FILE_OFFSET_BITS=64 _GNU_SOURCE)

if(CMPNT_DEVELOPER)
    add_compile_options(-Wall -Wextra -Werror -Wshadow -Wformat=2 -Wcast-qual -Wpointer-arith
        # Texts are cut to their buffers on purpose; that is what the buffers are for.
        -Wno-format-truncation -Wno-stringop-truncation)
endif()
if(CMPNT_SANITIZE)
    # GCC takes instrumented standard headers for using what they did not set.
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
        -fno-omit-frame-pointer -Wno-maybe-uninitialized)
    add_link_options(-fsanitize=address,undefined)
endif()

# What the library's own sources are compiled with: C++17 that needs no C++ runtime. Hosts may define
# functions of the same names, so ours call each other directly.
set(CMPNT_LIBRARY_OPTIONS
    $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions;-fno-rtti;-fno-threadsafe-statics;-fno-use-cxa-atexit>
    -fvisibility=hidden $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>
    -fno-semantic-interposition -fno-unwind-tables -fno-asynchronous-unwind-tables
    # Nearly all of the library waits for a disk or a child process: it had better be small. What does
    # not is built for speed (cmpnt_fast_sources).
    $<$<NOT:$<CONFIG:Debug>>:-Os>)
if(CMPNT_DEVELOPER)
    list(APPEND CMPNT_LIBRARY_OPTIONS -Wconversion -Wno-sign-conversion)
endif()
