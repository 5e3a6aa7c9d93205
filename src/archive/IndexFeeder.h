#pragma once

#include <memory>
#include <vector>

struct sqlite3;

namespace quillery::archive {

class IndexFile;
class PreparedStatement;

// Copies messages' searched texts from the archive's connection into the side file, inside the
// side file's transaction (which it begins when none is open). Reading on the archive's
// connection sees that connection's own uncommitted rows, as a store run leaves them.
class IndexFeeder {
 public:
  IndexFeeder(sqlite3* archive, IndexFile& file);
  ~IndexFeeder();
  IndexFeeder(const IndexFeeder&) = delete;
  IndexFeeder& operator=(const IndexFeeder&) = delete;

  // Adds the first `most` of these ids (sorted and made unique first) and takes them off the
  // list; a message no longer there (deleted, or its insert rolled back) adds nothing. False
  // when reading or writing fails; the ids then stay.
  bool addMessages(std::vector<long long>& ids, std::size_t most);
  // Adds up to `most` messages with ids above `after`, in id order: `last` becomes the id of
  // the last one added and `count` their number. False when reading or writing fails.
  bool addAfter(long long after, int most, long long& last, int& count);

 private:
  sqlite3* archive_;
  IndexFile& file_;
  std::unique_ptr<PreparedStatement> readMessage_;
};

}  // namespace quillery::archive
