#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringDecoder>
#include <optional>

namespace quillery::text {

// The bytes of a record-stream file cut into line pieces the way the C library's fgets cuts
// them with a 30,000-byte buffer: a piece runs through the next line end, or stops after
// 29,999 bytes when the line is longer, so a long line arrives in several pieces and no
// byte is lost. Each piece is decoded on its own: as UTF-8, or, when it is not valid UTF-8
// (also when a character is cut in two at a piece boundary), as Windows-1252.
class LinePieces {
 public:
  static constexpr qsizetype kPieceBytes = 29999;

  // The view must outlive the cutter.
  explicit LinePieces(QByteArrayView bytes);

  // Sets piece to the next piece, line end included; false after the last one.
  bool next(QByteArrayView& piece);
  // Appends the piece, decoded, to text.
  void appendDecoded(QString& text, QByteArrayView piece);
  // Appends a run of consecutive pieces, decoded exactly as piece by piece, but in one pass
  // when all of them are UTF-8. Every piece of the run but the last must end with its line
  // end, so that no character can straddle two of them.
  void appendDecodedRun(QString& text, QByteArrayView run);

  // All of bytes, piece by piece, decoded and joined.
  static QString decodeAll(QByteArrayView bytes);
  // The whole of bytes as UTF-8 (a leading byte-order mark kept), or nothing when any of it
  // is not valid UTF-8.
  static std::optional<QString> strictUtf8(QByteArrayView bytes);
  // Reads a whole file; nothing when it cannot be opened or read.
  static std::optional<QByteArray> readFile(const QString& path);

 private:
  QByteArrayView bytes_;
  qsizetype position_ = 0;
  QStringDecoder utf8_;
};

}  // namespace quillery::text
