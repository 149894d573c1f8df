# Run while a Debian package is put together: its copyright, its changes, and its manual pages compressed. Knows
# the package, its release and its packager. The time is SOURCE_DATE_EPOCH where that is set.
set(root $ENV{DESTDIR}${CMAKE_INSTALL_PREFIX})
set(papers ${root}/share/doc/${package})
set(here ${CMAKE_CURRENT_LIST_DIR}/..)

file(READ ${here}/LICENSE licence)
string(REGEX REPLACE "^.*Copyright \\(c\\) ([^\n]*)\n.*$" "\\1" holders "${licence}")
string(REGEX REPLACE "^.*${holders}\n\n|\n$" "" licence "${licence}")
string(REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REPLACE "\n" "\n " licence "${licence}")
file(WRITE ${papers}/copyright "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: kvdm

Files: *
Copyright: ${holders}
License: Expat
 ${licence}
")

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${papers}/changelog.Debian "kvdm (${release}) unstable; urgency=medium

  * A new version. What it brings stands in changelog.gz.

 -- ${packager}  ${date}
")
file(COPY_FILE ${here}/CHANGELOG.md ${papers}/changelog)
file(GLOB_RECURSE pages ${root}/share/man/*.[1-8])
execute_process(COMMAND gzip -9nf ${papers}/changelog.Debian ${papers}/changelog ${pages}
                COMMAND_ERROR_IS_FATAL ANY)
