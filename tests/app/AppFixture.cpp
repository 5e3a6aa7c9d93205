#include "AppFixture.h"

#include <QDir>
#include <QSettings>
#include <QTableView>

#include "app/StorePanel.h"
#include "search/EmailTableModel.h"
#include "support/TestEnvironment.h"

// The web engine's own code (Chromium inside Qt WebEngine, not built with the sanitizer)
// frees some objects through a base of another size, which AddressSanitizer would stop this
// program for. Only that check is turned off (leaks are not checked in CI either), and only
// in this test program.
extern "C" __attribute__((visibility("default"), used)) const char* __asan_default_options() {
  return "new_delete_type_mismatch=0:detect_leaks=0";
}

namespace quillery::app {

void AppFixture::SetUp() {
  savedHome_ = qgetenv("HOME");
  QDir().mkpath(home() + QStringLiteral("/Desktop"));
  qputenv("HOME", home().toUtf8());
  settings = std::make_unique<platform::QtSettings>(settingsPath());
}

void AppFixture::TearDown() {
  controller.reset();
  settings.reset();
  qputenv("HOME", savedHome_);
}

QuilleryController& AppFixture::start(const QString& toolsDir) {
  const QString tools = toolsDir.isEmpty() ? test::toolsDir() : toolsDir;
  controller = std::make_unique<QuilleryController>(
      AppPorts{dialogs, *settings, files, workspace, pasteboard}, tools);
  controller->awakeFromNib();
  return *controller;
}

void AppFixture::quit() {
  if (controller)
    controller->applicationWillTerminate();
  controller.reset();
  settings = std::make_unique<platform::QtSettings>(settingsPath());
}

QuilleryController& AppFixture::restart(const QString& toolsDir) {
  quit();
  return start(toolsDir);
}

QVariant AppFixture::storedValue(const QString& key) const {
  settings->sync();
  const QSettings file(settingsPath(), QSettings::IniFormat);
  return file.value(key);
}

void AppFixture::makeAccounts(const QStringList& names) const {
  for (const QString& name : names)
    QDir().mkpath(mailFolder() + '/' + name + QStringLiteral("/INBOX.mbox/Messages"));
}

void AppFixture::makeArchive(const QString& path, const QList<QStringList>& messages) {
  QString sql = QString::fromLatin1(archive::Archive::kCreateEmail) +
                archive::Archive::kCreateAttachments + archive::Archive::kCreateOrigemail +
                archive::Archive::kCreateTags;
  for (qsizetype id = 1; id <= messages.size(); ++id) {
    const QStringList& m = messages.at(id - 1);
    sql += QStringLiteral(
               "INSERT INTO email VALUES(%1,'sender%1@example.org','me@example.com','%2','%3',"
               "'INBOX','sender%1@example.org','body',0);")
               .arg(id)
               .arg(m.value(1), m.value(0));
    if (!m.value(2).isNull())
      sql += QStringLiteral("INSERT INTO tags VALUES(%1,'%2','',0,'');").arg(id).arg(m.value(2));
  }
  EXPECT_EQ(test::execOn(path, sql), QString());
}

QStringList AppFixture::listColumn(QuilleryController& app, const char* identifier) {
  const auto* model =
      static_cast<search::EmailTableModel*>(app.storePanel->storeTableView->model());
  QStringList values;
  for (int row = 0; row < model->rowCount(); ++row)
    values.append(model->index(row, model->columnOf(identifier)).data().toString());
  return values;
}

}  // namespace quillery::app
