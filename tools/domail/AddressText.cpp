#include "domail/AddressText.h"

#include <gmime/gmime.h>

namespace quillery::tools {
namespace {

std::string text(const char* s) {
  return s ? HeaderText::singleLine(s) : std::string();
}

std::string unquoted(const std::string& s) {
  std::string out;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '\\' && i + 1 < s.size()) {
      out += s[++i];
    } else if (s[i] != '"') {
      out += s[i];
    }
  }
  return HeaderText::singleLine(out);
}

template <typename Visit>
void visitList(InternetAddressList* list, Visit& visit, int depth) {
  const int count = internet_address_list_length(list);
  for (int i = 0; i < count; ++i) {
    InternetAddress* address = internet_address_list_get_address(list, i);
    if (INTERNET_ADDRESS_IS_GROUP(address)) {
      InternetAddressList* members =
          internet_address_group_get_members(INTERNET_ADDRESS_GROUP(address));
      if (members && depth < 4) {
        visitList(members, visit, depth + 1);
      }
    } else if (INTERNET_ADDRESS_IS_MAILBOX(address)) {
      std::string name = text(internet_address_get_name(address));
      std::string addr = text(internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(address)));
      // A quoted phrase alone parses as a local address; it is a name without an address.
      if (addr.find('@') == std::string::npos && addr.find_first_of("\" ") != std::string::npos) {
        if (name.empty()) {
          name = unquoted(addr);
        }
        addr.clear();
      }
      visit(name, addr);
    }
  }
}

}  // namespace

template <typename Visit>
std::string AddressText::forEachMailbox(std::string_view raw, std::string_view fallbackCharset,
                                        Visit visit) {
  std::string prepared = text_.decodeForAddresses(raw, fallbackCharset);
  if (prepared.empty()) {
    return prepared;
  }
  InternetAddressList* list = internet_address_list_parse(options_, prepared.c_str());
  if (list) {
    visitList(list, visit, 0);
    g_object_unref(list);
  }
  return text_.decode(raw, fallbackCharset);
}

std::string AddressText::display(std::string_view raw, std::string_view fallbackCharset) {
  std::string joined;
  bool anyAddress = false;
  const std::string decoded = forEachMailbox(
      raw, fallbackCharset, [&](const std::string& name, const std::string& address) {
        std::string one;
        if (!name.empty() && !address.empty()) {
          one = name + " <" + address + ">";
        } else {
          one = name.empty() ? address : name;
        }
        if (one.empty()) {
          return;
        }
        anyAddress = anyAddress || !address.empty();
        if (!joined.empty()) {
          joined += ", ";
        }
        joined += one;
      });
  return anyAddress ? joined : decoded;
}

std::string AddressText::firstAddress(std::string_view raw, std::string_view fallbackCharset) {
  std::string first;
  forEachMailbox(raw, fallbackCharset, [&](const std::string&, const std::string& address) {
    if (first.empty()) {
      first = address;
    }
  });
  return first;
}

}  // namespace quillery::tools
