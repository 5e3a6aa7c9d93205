// The preferences as the settings file holds them, read by the window and quillery-cli alike.
#include "prefs/StoredPreferences.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "platform/qt/QtSettings.h"

namespace quillery::prefs {
namespace {

class StoredPreferencesTest : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  platform::QtSettings settings{dir.filePath(QStringLiteral("quillery.conf"))};
};

TEST_F(StoredPreferencesTest, TheArchivePathIsTheSavedOneElseTheFirstRunDefault) {
  const QString home = QStringLiteral("/home/ann");
  EXPECT_EQ(StoredPreferences::archivePath(settings, home), "/home/ann/Desktop/myemaildb");
  settings.setValue(QStringLiteral("dbPath"), QString());
  EXPECT_EQ(StoredPreferences::archivePath(settings, home), "/home/ann/Desktop/myemaildb");
  settings.setValue(QStringLiteral("dbPath"), QStringLiteral("/mail/all.db"));
  EXPECT_EQ(StoredPreferences::archivePath(settings, home), "/mail/all.db");

  // Reading the path takes even a stored "" (a first run follows); an absent key changes nothing.
  StoredPreferences values;
  values.dbPath = QStringLiteral("/kept");
  platform::QtSettings empty(dir.filePath(QStringLiteral("empty.conf")));
  values.readDbPath(empty);
  EXPECT_EQ(values.dbPath, "/kept");
  settings.setValue(QStringLiteral("dbPath"), QString());
  values.readDbPath(settings);
  EXPECT_EQ(values.dbPath, QString());
}

TEST_F(StoredPreferencesTest, AWrittenFontComesBackAndAnUnusableOneIsTheDefault) {
  StoredPreferences written;
  written.currentFont = {QStringLiteral("DejaVu Sans"), QStringLiteral("Bold"), 13.5};
  written.write(settings, {});
  StoredPreferences read;
  read.read(settings);
  EXPECT_EQ(read.currentFont, written.currentFont);

  const struct {
    const char* name;
    QVariantMap stored;
  } unusable[] = {{"no family", {{"face", "Bold"}, {"size", 12.0}}},
                  {"no size", {{"family", "DejaVu Sans"}}},
                  {"size zero", {{"family", "DejaVu Sans"}, {"size", 0}}},
                  {"size not a number", {{"family", "DejaVu Sans"}, {"size", "big"}}}};
  for (const auto& row : unusable) {
    settings.setValue(QStringLiteral("panelFont"), row.stored);
    read.read(settings);
    EXPECT_EQ(read.currentFont, StoredPreferences::defaultFont()) << row.name;
  }
}

}  // namespace
}  // namespace quillery::prefs
