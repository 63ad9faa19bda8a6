# Of nettle, SHA-256 is linked. Its files have no notice but that of all files.
/^(Upstream-Name:|Files: \*$|License: LGPL-3\+$)/ { keep = 1 }
/^ On Debian/ { keep = 0 }  # where the text of the licence is there
/^(Comment:|$)/ { if (keep) print ""; keep = 0 }
keep
