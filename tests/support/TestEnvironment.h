#pragma once

#include <QString>

namespace quillery::test {

// Paths that tests need: the build's executables folder (domail, findmail, quillery-cli)
// and the shared mail corpus, which may be absent.
QString toolsDir();
QString corpusDir();  // empty when ../shared/corpus is not there
QString toolPath(const QString& name);

}  // namespace quillery::test
