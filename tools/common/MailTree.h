#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quillery::tools {

// One mailbox folder of an Apple Mail tree.
struct MailboxFolder {
  std::string path;                // the ".mbox" (or ".imapmbox") folder
  std::vector<std::string> names;  // folder names from the account down, suffix removed
  std::string displayName;         // "Account/Box/Sub"
};

// The layout of an Apple Mail folder (~/Library/Mail): account folders directly in it (old
// layouts) or in the version folders V2...V10; mailboxes as "<Box>.mbox" or "<Box>.imapmbox"
// folders, nested inside each other or inside plain folders; messages in a file "mbox" of the
// mailbox folder (old layout) and in "Messages" folders, directly in the mailbox or under its
// hashed "<UUID>/Data/.../" folders. MailData, Bundles, Signatures and hidden folders are
// never looked into. Symbolic links are followed to mailbox and Messages folders only, and no
// folder is entered twice, so links cannot make a loop. Folders that cannot be listed are
// passed over and named to the optional `unreadable` sink.
class MailTree {
 public:
  using FolderSink = std::function<void(const std::string& folder)>;

  explicit MailTree(std::string mailRoot) : root_(std::move(mailRoot)) {}

  // The account folders an account name stands for: the folder in the newest version
  // folder that has it, else the folder in the mail root; a version folder's own name
  // ("V10") stands for all accounts in it. Empty when there is none.
  std::vector<std::string> accountFolders(const std::string& accountName) const;

  // The account folders of all the names, each folder once even when two names stand for it
  // ("V10" and "Mailboxes" both take in V10/Mailboxes).
  std::vector<std::string> accountFolders(const std::vector<std::string>& accountNames) const;

  // Every mailbox of an account folder, nested ones included, parents before children and
  // siblings in name order. An unreadable mailbox folder is listed (reading it will fail and
  // say so); unreadable plain folders and an unreadable account folder go to `unreadable`.
  static std::vector<MailboxFolder> mailboxes(const std::string& accountFolder,
                                              const FolderSink& unreadable = {});

  // The "Messages" folders holding a mailbox's own messages (not its nested mailboxes').
  static std::vector<std::string> messageFolders(const std::string& mailboxFolder,
                                                 const FolderSink& unreadable = {});

  // A mailbox folder named by its path alone: the folder names below the account folder.
  // The account is the folder under ".../Library/Mail" (or under its version folder) when
  // the path has one, else the nearest folder above the outermost mailbox folder.
  static MailboxFolder fromPath(const std::string& mailboxFolder);

  static bool isMailboxName(std::string_view name);
  static std::string withoutMailboxSuffix(std::string_view name);
  static bool isVersionFolderName(std::string_view name);
  static bool isSkippedName(std::string_view name);

 private:
  std::string root_;
};

}  // namespace quillery::tools
