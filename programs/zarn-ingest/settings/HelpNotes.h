/// What the help of zarn-ingest says after its options.
#ifndef ZARN_INGEST_HELPNOTES_H
#define ZARN_INGEST_HELPNOTES_H

namespace zarn::ingest {

inline constexpr char HELP_NOTES[] = R"(
Each line of a header text file becomes one card of a FITS file that holds this
header and no data; a text of several headers gives as many HDUs. The result of
dir/name.ext is DIR/name.fits: it appears only when it is complete and has been
read back. Nothing else is touched.

  zarn-ingest -o fits night1/*.hdr
  zarn-ingest -o fits 'night1/*.hdr'                    (more names than fit a line)
  find . -name '*.hdr' -print0 | zarn-ingest -o fits --stdin --null
  zarn-ingest -p ingest.ini --watch                               (as a service)

An argument that names an existing file is that file; any other is expanded as a
shell pattern. Names from lists are never patterns. Write a name that begins with
a dash as ./-name.hdr, also where an option takes it. Flags take no value:
--force=no means --force.

What does not meet the FITS standard is repaired without losing a card. Each kind
of repair has a word, used in messages, summary and report: preamble, columns,
characters, keyword, value, long, axes, mandatory and extensions. The manual page
describes them. --strict refuses headers that need a repair.

--moon adds MOONALT, MOONAZ, MOONDIST, MOONFLI and MOONPHAS to texts that give a
position, RA and DEC in degrees or as '05:35:17.3', and a time in UTC: MJD-OBS or
DATE-OBS, or a day in DATE-OBS with the time in TIME-OBS, UT or the like. Other
texts are converted without them, and counted. Keywords of these names that the
primary header already has are kept.

--resume continues after a run that was killed. A result that already holds the
same cards counts as converted, and results are safe on disk, in groups of 32 at
most, before the run says that they are converted. The service always works like
this.

--shard 3/8 converts the third of every eight files. The other shards belong to
other runs, which must be given the same names in the same order: each run sees
all names, so that it notices two files with the same result, and no result
replaces a source.

--journal adds one line per file to DIR/zarn-ingest-DATE.journal: local time,
seconds since the epoch, source, result, converted or failed, number of cards in
the source, size of the result in bytes, and identity of the source, separated by
tabs. By the identity, as "stat -c %i-%.9Z" shows it, a later run recognises a
file that the journal already has. One run at a time can write to a journal.

A full disk, a missing directory or an unreadable file is not the header's fault:
the service leaves the source where it is, reports the problem once, and goes on
when it is solved. Beside each x.hdr in the directory of failed files, the text
x.hdr.reason says why it failed.

--status looks at the directories of the service of a properties file: what
waits, what failed, the last result, the room that is left, whether a service
runs. --format prometheus is for node_exporter's textfile collector. --verify
compares results with the journal and with their sources, and names each that is
missing, is empty, differs or is not in the journal. Both change nothing, and
take the properties file as an argument, too; status 1 says that something needs
a person.

Messages have the form "zarn-ingest: FILE:LINE: text"; the first line is line 1.

Exit status: 0 every file was converted, with or without warnings; 1 some were
not; 2 wrong usage; 130, 143 or 129 stopped by Ctrl-C, SIGTERM or SIGHUP. The
program finishes the current file first; the same signal again ends it at once.
With --watch, Ctrl-C and SIGTERM are the normal way to stop, with status 0.
)";

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_HELPNOTES_H
