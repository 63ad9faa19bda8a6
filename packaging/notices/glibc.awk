# Of the GNU C library, its programs, its tests and the support for another kernel are not linked.
/^ *\* / { keep = !/utilities|Mach|runtests|rxspencer|PCRE|tst-printf/ }
/^  On Debian/ { skip = 1 }  # where the text of the licence is there
!skip && keep
/\.$/ { skip = 0 }
