#include "text/LinePieces.h"

#include <QFile>
#include <cstring>

#include "text/Windows1252.h"

namespace quillery::text {
namespace {

// Stateless: every piece stands alone, and a sequence cut off at its end is an error rather
// than a state carried into the next piece. A byte-order mark is text like any other.
constexpr auto kUtf8Flags =
    QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom;

}  // namespace

LinePieces::LinePieces(QByteArrayView bytes)
    : bytes_(bytes), utf8_(QStringDecoder::Utf8, kUtf8Flags) {}

bool LinePieces::next(QByteArrayView& piece) {
  if (position_ >= bytes_.size())
    return false;
  const qsizetype rest = bytes_.size() - position_;
  const qsizetype window = rest < kPieceBytes ? rest : kPieceBytes;
  const char* start = bytes_.data() + position_;
  const auto* lineEnd = static_cast<const char*>(std::memchr(start, '\n', size_t(window)));
  const qsizetype length = lineEnd ? (lineEnd - start) + 1 : window;
  piece = QByteArrayView(start, length);
  position_ += length;
  return true;
}

void LinePieces::appendDecoded(QString& text, QByteArrayView piece) {
  // UTF-8 never yields more UTF-16 units than it has bytes, nor does Windows-1252.
  const qsizetype start = text.size();
  text.resize(start + piece.size());
  QChar* out = text.data() + start;
  QChar* end = utf8_.appendToBuffer(out, piece);
  if (utf8_.hasError()) {
    utf8_.resetState();
    end = Windows1252::decode(out, piece);
  }
  text.resize(end - text.constData());
}

void LinePieces::appendDecodedRun(QString& text, QByteArrayView run) {
  // A line end never falls inside a UTF-8 sequence, so the run is UTF-8 as a whole exactly
  // when each of its pieces is.
  const qsizetype start = text.size();
  text.resize(start + run.size());
  QChar* end = utf8_.appendToBuffer(text.data() + start, run);
  if (!utf8_.hasError()) {
    text.resize(end - text.constData());
    return;
  }
  utf8_.resetState();
  text.resize(start);
  LinePieces pieces(run);
  QByteArrayView piece;
  while (pieces.next(piece))
    appendDecoded(text, piece);
}

QString LinePieces::decodeAll(QByteArrayView bytes) {
  QString text;
  text.reserve(bytes.size());
  LinePieces pieces(bytes);
  QByteArrayView piece;
  while (pieces.next(piece))
    pieces.appendDecoded(text, piece);
  return text;
}

std::optional<QString> LinePieces::strictUtf8(QByteArrayView bytes) {
  QStringDecoder utf8(QStringDecoder::Utf8, kUtf8Flags);
  QString text = utf8.decode(bytes);
  if (utf8.hasError())
    return std::nullopt;
  return text;
}

std::optional<QByteArray> LinePieces::readFile(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    return std::nullopt;
  QByteArray bytes = file.readAll();
  if (file.error() != QFileDevice::NoError)
    return std::nullopt;
  return bytes;
}

}  // namespace quillery::text
