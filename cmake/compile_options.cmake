# Flags of every target: warnings, hardening, sanitizers, and how the program is linked.

# Files that are compiled together would warn of each other's names.
if(CMAKE_UNITY_BUILD)
    add_compile_options(-w)
else()
    add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
endif()
if(VARNMENU_WERROR)
    add_compile_options(-Werror)
endif()

if(VARNMENU_SANITIZE)
    add_compile_options(-fsanitize=${VARNMENU_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VARNMENU_SANITIZE})
endif()

add_compile_options(-fPIE)
if(VARNMENU_STATIC)
    add_link_options(-static-pie)
else()
    add_link_options(-pie)
endif()

# A release is hardened. Another kind of build takes what its builder asks for.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
set(hardening -fstack-protector-strong -D_GLIBCXX_ASSERTIONS -U_FORTIFY_SOURCE)
set(CMAKE_REQUIRED_FLAGS "-O2 -Werror -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3")
check_cxx_source_compiles("#include <cstring>\nint main() {}" COMPILER_KNOWS_FORTIFY_SOURCE_3)
unset(CMAKE_REQUIRED_FLAGS)
if(COMPILER_KNOWS_FORTIFY_SOURCE_3)
    list(APPEND hardening -D_FORTIFY_SOURCE=3)
else()
    list(APPEND hardening -D_FORTIFY_SOURCE=2)
endif()
# The last two are for one processor each.
foreach(flag -fstack-clash-protection -fcf-protection -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER COMPILER_KNOWS${flag} known)
    check_cxx_compiler_flag(${flag} ${known})
    if(${known})
        list(APPEND hardening ${flag})
    endif()
endforeach()

set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
add_compile_options("$<$<CONFIG:Release>:${hardening};-ffunction-sections;-fdata-sections>")
add_link_options("$<$<CONFIG:Release>:-Wl,-z,relro,-z,now,-z,separate-code;-Wl,--gc-sections;-s>")
