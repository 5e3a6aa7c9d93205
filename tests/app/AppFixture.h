#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <memory>

#include "app/QuilleryController.h"
#include "archive/TestFiles.h"
#include "platform/qt/QtPasteboard.h"
#include "platform/qt/QtSettings.h"
#include "platform/qt/QtWorkspace.h"
#include "support/FakeDialogs.h"
#include "support/QtPrinters.h"
#include "support/RecordingFiles.h"

namespace quillery::app {

// The real application in a home folder and settings file of the test's own, with the fake
// dialogs answering. start() runs the application's start-up; quit() ends it as the user
// would, and a later start() reads the same settings file, as a later run does.
class AppFixture : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  QString home() const { return dir.filePath(QStringLiteral("home")); }
  QString mailFolder() const { return home() + QStringLiteral("/Library/Mail"); }
  QString defaultDbPath() const { return home() + QStringLiteral("/Desktop/myemaildb"); }
  QString settingsPath() const { return dir.filePath(QStringLiteral("quillery.conf")); }

  QuilleryController& start(const QString& toolsDir = QString());
  // Quits as the user would (the preferences are saved) and lets go of the settings object,
  // so a test can change the file before the next start().
  void quit();
  QuilleryController& restart(const QString& toolsDir = QString());
  // A value of the settings file as another program would read it.
  QVariant storedValue(const QString& key) const;

  // Folders under the mail folder, each with an INBOX mailbox.
  void makeAccounts(const QStringList& names) const;
  // An archive file with these (date, subject[, category]) messages; a message with a
  // category (even "") has a tags row.
  static void makeArchive(const QString& path, const QList<QStringList>& messages);
  // The texts of one column of the list window's table, in the order shown.
  static QStringList listColumn(QuilleryController& app, const char* identifier);

  QTemporaryDir dir;
  test::FakeDialogs dialogs;
  test::RecordingFiles files;
  platform::QtWorkspace workspace;
  platform::QtPasteboard pasteboard;
  std::unique_ptr<platform::QtSettings> settings;
  std::unique_ptr<QuilleryController> controller;

 private:
  QByteArray savedHome_;
};

}  // namespace quillery::app
