#include "cli/Console.h"

namespace quillery::cli {

void print(FILE* stream, const QString& text) {
  std::fputs(text.toUtf8().constData(), stream);
  std::fflush(stream);
}

int usageError(const QString& message) {
  print(stderr, QStringLiteral("quillery-cli: %1\nTry 'quillery-cli --help'.\n").arg(message));
  return kUsage;
}

}  // namespace quillery::cli
