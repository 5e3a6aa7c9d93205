#pragma once

#include <cstdio>

#include "archive/Archive.h"

namespace quillery::search {

// A statement whose failure does not stop the action is reported on the standard error
// stream as "SQL error: %s\n" with SQLite's text. Returns whether the statement succeeded.
inline bool reportOnStderr(const archive::ExecResult& result) {
  if (!result.ok())
    std::fprintf(stderr, "SQL error: %s\n", result.error.toUtf8().constData());
  return result.ok();
}

}  // namespace quillery::search
