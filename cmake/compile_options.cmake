# Flags of every target: warnings, hardening, sanitizers, and how the program is linked.

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
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

set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
add_compile_options($<$<CONFIG:Release>:-fstack-protector-strong>
                    $<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>
                    $<$<CONFIG:Release>:-ffunction-sections> $<$<CONFIG:Release>:-fdata-sections>)
add_link_options($<$<CONFIG:Release>:-Wl,-z,relro,-z,now> $<$<CONFIG:Release>:-Wl,--gc-sections>
                 $<$<CONFIG:Release>:-s>)
