#pragma once

#include <QString>

#include "search/SearchForm.h"

namespace quillery::cli {

class ArchiveSession;
class CommandLine;

// The search panel as command-line options, for every command that lists messages by a
// search first: each field of the panel is an option that fills a search::SearchForm, and
// --where gives the SQL panel's own WHERE part. Options left out keep the panel's neutral
// state, so no option at all lists the whole archive in date order.
struct SearchOptions {
  search::SearchForm form;
  bool whereGiven = false;
  QString where;

  // Takes the option just read (and its value) when it is one of the search options; false
  // for any other argument. A wrong value is a mistake of the command line.
  bool take(CommandLine& line, const QString& option);

  // Lists the messages these options describe into the session's result list, as the search
  // panel's Search button (or, with --where, the SQL panel's Run button) does on the archive
  // at path. The statement run stays in the archive's sqlText; viewSql, when given, receives
  // the view statement of an attachment search ("" without one). False when the archive did
  // not open or the statement could not be made or run; an alert that ends an action may
  // still have been shown on the way (ArchiveSession::failed).
  bool listMessages(ArchiveSession& session, const QString& path, QString* viewSql = nullptr) const;

  // The synopsis part and the --help lines of the options.
  static QString synopsis();
  static QString help();
};

}  // namespace quillery::cli
