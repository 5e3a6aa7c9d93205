#pragma once

#include <string>
#include <string_view>

#include "domail/HeaderText.h"

typedef struct _GMimeParserOptions GMimeParserOptions;
typedef struct _InternetAddressList InternetAddressList;

namespace quillery::tools {

// Address headers (From, To, Reply-To) as a reader sees them. The raw value is decoded by
// HeaderText with every encoded word kept inside quotes, then parsed by GMime; groups give
// their members. A mailbox reads "Name <address>", or the address alone when it has no
// name; several are joined with ", ". A value that holds no address at all (a bare display
// name, "undisclosed recipients") is given as its decoded text.
class AddressText {
 public:
  AddressText(HeaderText& text, GMimeParserOptions* options) : text_(text), options_(options) {}

  std::string display(std::string_view raw, std::string_view fallbackCharset = {});
  // The first address without its name, or "" when there is none.
  std::string firstAddress(std::string_view raw, std::string_view fallbackCharset = {});

 private:
  // Calls `visit(name, address)` for every mailbox; returns the decoded text.
  template <typename Visit>
  std::string forEachMailbox(std::string_view raw, std::string_view fallbackCharset, Visit visit);

  HeaderText& text_;
  GMimeParserOptions* options_;
};

}  // namespace quillery::tools
