#include "ingest/RecordReader.h"

#include <algorithm>

#include "ingest/EmailStore.h"
#include "text/LinePieces.h"

namespace quillery::ingest {

// The record's lines as splitting it at every "\n" gives them: a text that ends with "\n"
// has one more, empty, line. Each line stands for itself plus the "\n" that the reader
// appends; views into the record avoid copying a body line by line.
class RecordReader::Lines {
 public:
  explicit Lines(QStringView text) : text_(text) {}

  bool next(QStringView& line) {
    if (done_)
      return false;
    lineStart_ = position_;
    const qsizetype end = text_.indexOf(QLatin1Char('\n'), position_);
    if (end < 0) {
      line = text_.mid(position_);
      position_ = text_.size();
      done_ = true;
    } else {
      line = text_.mid(position_, end - position_);
      position_ = end + 1;
    }
    return true;
  }
  bool atEnd() const { return done_; }
  // Goes on after the line that ends at lineEnd (a line end, or the end of the text).
  void skipPast(qsizetype lineEnd) {
    position_ = lineEnd + 1;
    done_ = lineEnd >= text_.size();
  }
  // Where the next line starts, and where the line returned last started.
  qsizetype position() const { return position_; }
  qsizetype lineStart() const { return lineStart_; }
  QStringView text() const { return text_; }

 private:
  QStringView text_;
  qsizetype position_ = 0;
  qsizetype lineStart_ = 0;
  bool done_ = false;
};

namespace {

QString withLineEnd(QStringView value) {
  QString text;
  text.reserve(value.size() + 1);
  text.append(value);
  text.append(QLatin1Char('\n'));
  return text;
}

}  // namespace

RecordReader::RecordReader(EmailStore& store, CurrentMessage& message, StoreRunCounters& counters,
                           MessageCounted messageCounted)
    : store_(store),
      message_(message),
      counters_(counters),
      messageCounted_(std::move(messageCounted)) {}

int RecordReader::doOneEmail(const QString& messageFilePath,
                             const std::function<void()>& filesRead) {
  const std::optional<QByteArray> bytes = text::LinePieces::readFile(messageFilePath);
  if (!bytes)
    return 0;
  std::optional<QString> utf8 = text::LinePieces::strictUtf8(*bytes);
  const QString record = utf8 ? std::move(*utf8) : text::LinePieces::decodeAll(*bytes);
  store_.loadRawFile();
  if (filesRead)
    filesRead();
  if (!record.isEmpty())
    storeInDB(record);
  store_.releaseRawFile();
  return 1;
}

void RecordReader::storeInDB(const QString& record) {
  message_.tagCategory.clear();
  message_.tagKeywords.clear();
  message_.tagNotes.clear();
  message_.tagPriority.clear();
  Lines lines(record);
  QStringView line;
  bool ended = false;
  while (!ended && lines.next(line)) {
    if (line.startsWith(QLatin1String("ENDOFEMAIL:")))
      break;
    if (line.startsWith(QLatin1String("BODY:")))
      ended = readBody(line, lines);
    else
      readHeaderLine(line);
  }
  counters_.lowestStoredId = std::min(counters_.lowestStoredId, message_.lastStoredId);
  counters_.highestStoredId = std::max(counters_.highestStoredId, message_.lastStoredId);
}

void RecordReader::readHeaderLine(QStringView line) {
  CurrentMessage& m = message_;
  const auto starts = [line](const char* tag) { return line.startsWith(QLatin1String(tag)); };
  if (starts("MAILBOX: ")) {
    m.recMailbox = withLineEnd(line.mid(9));
  } else if (starts("FROM:")) {
    m.recFrom = line.mid(5).trimmed().toString();
    ++counters_.processedCount;
    if (messageCounted_)
      messageCounted_();
  } else if (starts("TO:")) {
    m.recTo = line.mid(3).trimmed().toString();
  } else if (starts("SUBJECT:")) {
    m.recSubject = line.mid(8).trimmed().toString();
  } else if (starts("DATE:")) {
    m.recDate = line.mid(5).trimmed().toString();
  } else if (starts("MAILTO:")) {
    m.recMailto = line.mid(7).trimmed().toString();
  } else if (starts("TAGCAT:")) {
    m.tagCategory = withLineEnd(line.mid(7));
  } else if (starts("TAGKEY:")) {
    m.tagKeywords = withLineEnd(line.mid(7));
  } else if (starts("TAGNOTES:")) {
    m.tagNotes = withLineEnd(line.mid(9));
  } else if (starts("TAGPRIORITY:")) {
    m.tagPriority = withLineEnd(line.mid(12));
  }
}

bool RecordReader::readBody(QStringView firstLine, Lines& lines) {
  message_.messageStored = false;
  QString body = withLineEnd(firstLine.mid(5));
  collectUntil(lines, u"ENDOFBODY:", body);
  message_.storeBody = std::move(body);

  QStringView next;
  const bool hasNext = lines.next(next);
  if (hasNext && next.startsWith(QLatin1String("ATTACH:"))) {
    readAttachments(lines);
    return false;
  }
  store_.storeEmail(0);
  // The line after the body is looked at for the record's end and for nothing else.
  return hasNext && next.startsWith(QLatin1String("ENDOFEMAIL:"));
}

void RecordReader::readAttachments(Lines& lines) {
  CurrentMessage& m = message_;
  m.storeBody += QLatin1String("\nATTACHMENTS:");
  int count = 0;
  QStringView line;
  while (lines.next(line)) {
    if (line.startsWith(QLatin1String("ENDATTACHMENTS:")))
      break;
    if (!line.startsWith(QLatin1String("BLOB:"))) {
      readAttachmentField(line);
      continue;
    }
    // HTML renderings and such parts are stored but not counted.
    if (!m.attachFilename.endsWith(QLatin1String("html")) &&
        !m.attachFilename.endsWith(QLatin1String("etf")))
      ++count;
    m.attachBlob.clear();
    collectUntil(lines, u"ENDATTACH:", m.attachBlob);
    // The email row comes before its first attachment row.
    if (!m.messageStored)
      store_.storeEmail(count);
    store_.doAttachment(m.attachBlob);
    // The line after an attachment is skipped unseen, normally the next "ATTACH:".
    QStringView after;
    if (!lines.next(after) || after.startsWith(QLatin1String("ENDATTACHMENTS:")))
      break;
  }
  if (!m.messageStored) {
    store_.storeEmail(count);
    return;
  }
  store_.updateNumAttach(count);
}

void RecordReader::readAttachmentField(QStringView line) {
  CurrentMessage& m = message_;
  if (line.startsWith(QLatin1String("TYPE:"))) {
    m.attachType = withLineEnd(line.mid(5));
  } else if (line.startsWith(QLatin1String("FILENAME:"))) {
    m.attachFilename = line.mid(9).toString();
    m.attachFilename.replace(QLatin1String("winmail.dat.html"), QLatin1String("winmail.dat"));
  } else if (line.startsWith(QLatin1String("ENCODING:"))) {
    m.attachEncoding = withLineEnd(line.mid(9));
  } else if (line.startsWith(QLatin1String("ATTACH:"))) {
    m.attachType.clear();
    m.attachFilename.clear();
    m.attachEncoding.clear();
    m.attachBlob.clear();
  }
}

void RecordReader::collectUntil(Lines& lines, QStringView endMarker, QString& text) {
  if (lines.atEnd())
    return;
  const QStringView all = lines.text();
  const qsizetype from = lines.position();
  // The first line that ends with the marker holds its first occurrence that a line end or
  // the end of the text follows; one search finds it in a long attachment.
  qsizetype at = all.indexOf(endMarker, from);
  while (at >= 0 && at + endMarker.size() < all.size() &&
         all.at(at + endMarker.size()) != QLatin1Char('\n'))
    at = all.indexOf(endMarker, at + 1);
  if (at < 0) {
    // The end of the text closes the section; its last line gets its "\n" like every other.
    text.append(all.mid(from));
    text.append(QLatin1Char('\n'));
    lines.skipPast(all.size());
    return;
  }
  const qsizetype lineStart = at == from ? from : all.lastIndexOf(QLatin1Char('\n'), at - 1) + 1;
  text.append(all.mid(from, std::max(lineStart, from) - from));
  lines.skipPast(at + endMarker.size());
}

}  // namespace quillery::ingest
