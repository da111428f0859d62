/// A service's status for people and for programs.
#ifndef ZARN_INGEST_STATUSFORMS_H
#define ZARN_INGEST_STATUSFORMS_H

#include <string>

#include "zarn-ingest/desk/Status.h"

namespace zarn::ingest {

/// The status in the form that the settings ask for, as whole lines.
std::string formatted(const Status& status, const Settings& settings);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_STATUSFORMS_H
