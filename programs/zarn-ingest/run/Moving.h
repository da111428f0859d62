/// Moving files so that nothing is replaced and a crash loses nothing.
#ifndef ZARN_INGEST_MOVING_H
#define ZARN_INGEST_MOVING_H

#include <string>

/// Moves a file into a directory of the same file system, safe on disk at the end. Where its name
/// is taken there, the name gets a number: x.hdr, x.hdr.~1~, x.hdr.~2~ and so on.
///
/// @return                   its path there
/// @throw std::system_error  when it cannot be moved
std::string moveInto(const std::string& file, const std::string& directory);

/// The name that a file had before `moveInto` gave it a number.
std::string withoutNumber(const std::string& name);

/// The same, and before it a text that tells the reason beside the file: x.hdr.reason, with x.hdr's
/// number.
std::string moveWithReason(const std::string& file, const std::string& directory,
                           const std::string& reason);

/// Name of the text that tells why a file failed.
std::string reasonName(const std::string& name);

/// Whether a name is one of these.
bool isReason(const std::string& name);

#endif  // ZARN_INGEST_MOVING_H
