#include "domail/DomailArguments.h"

#include <cctype>

namespace quillery::tools {
namespace {

constexpr int kFixedArguments = 10;

std::string withSuffix(const std::string& runLog, const char* suffix) {
  if (runLog.size() > 4 && runLog.ends_with(".log")) {
    return runLog.substr(0, runLog.size() - 4) + suffix;
  }
  return runLog + suffix;
}

std::optional<bool> readSwitch(const std::string& text) {
  if (text.empty()) {
    return std::nullopt;
  }
  std::size_t i = text[0] == '-' ? 1 : 0;
  if (i == text.size()) {
    return std::nullopt;
  }
  bool nonZero = false;
  for (; i < text.size(); ++i) {
    if (!std::isdigit(static_cast<unsigned char>(text[i]))) {
      return std::nullopt;
    }
    nonZero = nonZero || text[i] != '0';
  }
  return nonZero;
}

// "YYYY-MM-DD HH:MM:SS", digits where digits belong.
bool isDateText(const std::string& text) {
  static constexpr char kShape[] = "dddd-dd-dd dd:dd:dd";
  if (text.size() != sizeof kShape - 1) {
    return false;
  }
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool digit = std::isdigit(static_cast<unsigned char>(text[i])) != 0;
    if (kShape[i] == 'd' ? !digit : text[i] != kShape[i]) {
      return false;
    }
  }
  return true;
}

}  // namespace

const char* DomailArguments::usage() {
  return "usage: domail RUNLOG ALLMB ATTACH HTML TRASH MBOXMODE ORIG MAILBOXES BEGIN END "
         "SOURCE...\n"
         "  switches are 0 or 1; BEGIN and END are \"YYYY-MM-DD 00:00:00\" texts;\n"
         "  SOURCE: mbox files, findmail's mailbox lines, or account names and \"Mailboxes\"\n";
}

std::string DomailArguments::messageFile() const {
  return withSuffix(runLog, ".tmp");
}

std::string DomailArguments::rawFile() const {
  return withSuffix(runLog, ".raw");
}

bool DomailArguments::rangeLimited() const {
  return begin > "0000-99-99 99:99:99" || end < "9999-00-00 00:00:00";
}

std::optional<DomailArguments> DomailArguments::parse(int argc, const char* const* argv,
                                                      std::string& error) {
  if (argc < 1 + kFixedArguments) {
    error = "too few arguments";
    return std::nullopt;
  }
  DomailArguments a;
  a.runLog = argv[1];
  if (a.runLog.empty()) {
    error = "the run log path is empty";
    return std::nullopt;
  }
  bool* switches[] = {&a.allMailboxes, &a.attachments, &a.htmlParts,  &a.trash,
                      &a.mboxMode,     &a.rawSource,   &a.mailboxMode};
  for (int i = 0; i < 7; ++i) {
    const std::optional<bool> value = readSwitch(argv[2 + i]);
    if (!value) {
      error = std::string("switch ") + std::to_string(i + 1) + " is not a number: \"" +
              argv[2 + i] + "\"";
      return std::nullopt;
    }
    *switches[i] = *value;
  }
  a.begin = argv[9];
  a.end = argv[10];
  for (const std::string* date : {&a.begin, &a.end}) {
    if (!isDateText(*date)) {
      error = "not a date of the form YYYY-MM-DD HH:MM:SS: \"" + *date + "\"";
      return std::nullopt;
    }
  }
  a.sources.assign(argv + 1 + kFixedArguments, argv + argc);
  return a;
}

}  // namespace quillery::tools
