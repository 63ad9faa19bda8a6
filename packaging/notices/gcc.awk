# Of the compiler, libstdc++ and libgcc are linked.
/^GCC is Copyright/ { keep = 1 }
/^On Debian/ { keep = 0 }  # where the text of the licence is there
/^The following runtime libraries/ { keep = 1 }
/^ - / { keep = /libgcc|libstdc\+\+|Various config files/ }
/^The lib/ { keep = 0 }
/^GCC RUNTIME LIBRARY EXCEPTION/ { keep = 1; print "" }
/^lib[a-z]*\/|^This file/ { keep = 0 }
keep
