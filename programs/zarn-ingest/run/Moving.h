/// Moves files so that nothing is replaced and a crash loses nothing.
#ifndef ZARN_INGEST_MOVING_H
#define ZARN_INGEST_MOVING_H

#include <set>
#include <string>

namespace zarn::ingest {

/// Moves a file into a directory of the same file system. If the name is taken there, the file gets
/// a number: x.hdr, x.hdr.~1~, x.hdr.~2~, ...
///
/// @return                   its path there
/// @throw std::system_error  when it cannot be moved
std::string moveInto(const std::string& file, const std::string& directory);

/// The name that a file had before `moveInto` gave it a number.
std::string withoutNumber(const std::string& name);

/// The same, after writing a text that gives the reason, safe on disk. The text stands beside the
/// file and has its number: x.hdr.reason for x.hdr.
std::string moveWithReason(const std::string& file, const std::string& directory,
                           const std::string& reason);

/// Takes a file's old name away if it has its new one, too: a crash cut its move short.
///
/// @return                   whether that was so
/// @throw std::system_error  when the old name cannot be taken away
bool endMove(const std::string& file, const std::string& directory);

/// Makes moves safe on disk. The new directories come first: a crash may leave two names of a file,
/// never none.
///
/// @throw std::system_error  when the system cannot confirm it
void syncMoves(const std::string& from, const std::set<std::string>& to);

/// Name of the text that says why a file failed.
std::string reasonName(const std::string& name);

/// Whether a name is that of such a text.
bool isReason(const std::string& name);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_MOVING_H
