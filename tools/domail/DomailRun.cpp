#include "domail/DomailRun.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/MailWalker.h"
#include "domail/RecordFormat.h"

namespace quillery::tools {

DomailRun::DomailRun(const DomailArguments& arguments, ApplicationChannel& channel,
                     RecordFile& message, RecordFile& raw, RunLog& log, std::time_t now)
    : arguments_(arguments),
      channel_(channel),
      message_(message),
      raw_(raw),
      log_(log),
      converter_(PartOptions{arguments.attachments, arguments.htmlParts}, now) {}

std::string DomailRun::mailRoot() const {
  const char* home = std::getenv("HOME");
  if ((!home || !*home)) {
    if (const passwd* entry = getpwuid(getuid())) {
      home = entry->pw_dir;
    }
  }
  return std::string(home ? home : "") + "/Library/Mail";
}

int DomailRun::run() {
  const MessageSink message = [this](RawMessage&& raw) { return onMessage(std::move(raw)); };
  const InvalidSink invalid = [this](const std::string& path) { log_.invalid(path); };
  const SearchingSink searching = [this] { channel_.searching(); };
  if (arguments_.mboxMode) {
    walkMboxFiles(arguments_.sources, message, invalid, searching);
  } else if (arguments_.mailboxMode) {
    walkMailboxes(arguments_.sources, message, invalid, searching);
  } else {
    const WalkOptions options{arguments_.allMailboxes, arguments_.trash};
    walkAccounts(mailRoot(), arguments_.sources, options, message, invalid, searching);
  }
  channel_.settle();  // the application reads the last record before the tool is gone
  log_.parsed(parsed_);
  return writeFailed_ ? 1 : 0;
}

bool DomailRun::onMessage(RawMessage&& raw) {
  if (channel_.stopped()) {
    return false;
  }
  if (arguments_.rangeLimited() && !arguments_.inRange(converter_.dateText(raw))) {
    ++parsed_;
    channel_.searching();
    return !channel_.stopped();
  }
  // Converted while the application still stores the message announced before.
  const bool converted = converter_.convert(raw, parsedMessage_, [this] { channel_.working(); });
  if (!converted) {
    log_.invalid(raw.path);
    return true;
  }
  if (!channel_.settle()) {
    return false;
  }
  ++parsed_;
  if (!write(raw)) {
    return false;
  }
  return channel_.announce(RecordFormat::announcement(raw.path, parsedMessage_.subject));
}

bool DomailRun::write(const RawMessage& raw) {
  RecordFormat::message(parsedMessage_, record_);
  bool ok = message_.rewrite({record_});
  const char* failed = ok ? nullptr : message_.path().c_str();
  if (ok && arguments_.rawSource) {
    const std::string_view source = RecordFormat::rawSource(raw.source, scratch_);
    ok = raw_.rewrite({RecordFormat::kRawHead, source, RecordFormat::rawTail(source)});
    failed = ok ? nullptr : raw_.path().c_str();
  }
  if (!ok) {
    std::fprintf(stderr, "domail: cannot write %s: %s; the run stops here\n", failed,
                 std::strerror(errno));
    writeFailed_ = true;
  }
  return ok;
}

}  // namespace quillery::tools
