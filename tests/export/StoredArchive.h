#pragma once

#include <QString>

#include "support/TestEnvironment.h"

namespace quillery::test {

// An archive stored the way a user stores mail: the real quillery-cli and domail on the
// shared corpus (its mbox files, its single messages gathered into one mbox, its Apple Mail
// accounts), on generated mail and on extra-mail.mbox beside this file (8-bit non-ASCII,
// quotes and backslashes in headers, a subject longer than 127 characters, an emoji, a plain
// text attachment, a "From " line in a body); part of it stored without raw sources and a few
// messages tagged afterwards. It is made once per test program; each test takes a copy.
struct StoredArchive {
  // Copies the archive to path; "" or why it could not be made (the corpus missing among the
  // reasons, which a test turns into a skip).
  static QString copyTo(const QString& path);
};

}  // namespace quillery::test
