#pragma once

#include <vector>

struct sqlite3;

namespace quillery::archive {

// The candidate ids of the search under way, offered to the archive's connection as the
// read-only table "quillery_candidates" (one column, id), so that a statement can narrow its
// messages with "email.id IN (SELECT id FROM quillery_candidates)" without copying the ids
// into a table of the archive. The ids are the vector given at registration, read as they
// stand when the statement runs.
class CandidateTable {
 public:
  static constexpr char kName[] = "quillery_candidates";

  // Registers the table on the connection, reading from ids (which must outlive it); false
  // when SQLite refuses.
  static bool registerWith(sqlite3* connection, const std::vector<long long>* ids);
};

}  // namespace quillery::archive
