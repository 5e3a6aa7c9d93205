#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <iterator>
#include <vector>

namespace quillery::archive {

// An ordered list of message ids as texts (the shared idList), kept compactly: a text that is
// exactly how a 32-bit integer is written ("17", "-3", not "017" or "+3") takes four bytes; any
// other text is kept as it stands. Reading an entry gives back the text that was appended,
// character for character.
class IdList {
 public:
  void append(const QString& text);
  // A text as SQLite hands it over (UTF-8, NUL-terminated).
  void append(const char* utf8);
  void append(int id);
  void clear();

  qsizetype size() const { return qsizetype(numbers_.size()); }
  bool isEmpty() const { return numbers_.empty(); }
  QString at(qsizetype i) const;
  QString operator[](qsizetype i) const { return at(i); }
  QString first() const { return at(0); }
  QStringList toStringList() const;

  friend bool operator==(const IdList& list, const QStringList& texts) {
    return list.toStringList() == texts;
  }
  friend bool operator==(const QStringList& texts, const IdList& list) { return list == texts; }

  // Walks the entries in order, each read as its text.
  class const_iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = QString;
    using difference_type = qsizetype;
    using pointer = void;
    using reference = QString;
    const_iterator(const IdList* list, qsizetype i) : list_(list), i_(i) {}
    QString operator*() const { return list_->at(i_); }
    const_iterator& operator++() {
      ++i_;
      return *this;
    }
    bool operator==(const const_iterator& other) const { return i_ == other.i_; }
    bool operator!=(const const_iterator& other) const { return i_ != other.i_; }

   private:
    const IdList* list_;
    qsizetype i_;
  };
  const_iterator begin() const { return {this, 0}; }
  const_iterator end() const { return {this, size()}; }

 private:
  // Entries whose text is not a plain integer carry this number and their text in others_.
  static constexpr int kOther = INT_MIN;

  std::vector<int> numbers_;
  QHash<qsizetype, QString> others_;
};

}  // namespace quillery::archive
