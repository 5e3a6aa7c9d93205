#pragma once

#include <QStringView>

namespace quillery::text {

// The integer at the start of text, after blanks and an optional sign, as C's atoi reads it:
// "2023-05-01" gives 2023, text without leading digits gives 0, and values beyond the int
// range saturate as strtol's do. Counts, ids and priorities read back from the archive's text
// results and from the parser tool's log are all taken this way.
int leadingInt(QStringView text);

}  // namespace quillery::text
