#include "AppFixture.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <cstdlib>

#include "support/TestEnvironment.h"

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

QString AppFixture::settingsText() const {
  settings->sync();
  QFile file(settingsPath());
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void AppFixture::makeAccounts(const QStringList& names) const {
  for (const QString& name : names)
    QDir().mkpath(mailFolder() + '/' + name + QStringLiteral("/INBOX.mbox/Messages"));
}

void AppFixture::makeArchive(const QString& path, const QList<QStringList>& messages) const {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &db), SQLITE_OK);
  QString sql = QString::fromLatin1(archive::Archive::kCreateEmail) +
                QString::fromLatin1(archive::Archive::kCreateAttachments) +
                QString::fromLatin1(archive::Archive::kCreateOrigemail) +
                QString::fromLatin1(archive::Archive::kCreateTags);
  int id = 0;
  for (const QStringList& m : messages) {
    ++id;
    sql += QStringLiteral(
               "INSERT INTO email VALUES(%1,'sender%1@example.org','me@example.com','%2','%3',"
               "'INBOX','sender%1@example.org','body',0);")
               .arg(id)
               .arg(m.value(1), m.value(0));
    if (!m.value(2).isNull())
      sql += QStringLiteral("INSERT INTO tags VALUES(%1,'%2','',0,'');").arg(id).arg(m.value(2));
  }
  char* error = nullptr;
  EXPECT_EQ(sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, &error), SQLITE_OK)
      << (error ? error : "");
  sqlite3_free(error);
  sqlite3_close(db);
}

void AppFixture::writeFile(const QString& path, const QByteArray& bytes, bool executable) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
  file.write(bytes);
  file.close();
  if (executable)
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

int AppFixture::emailCount(const QString& path) {
  sqlite3* db = nullptr;
  int count = -1;
  if (sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_exec(
        db, "SELECT count(*) FROM email",
        [](void* context, int, char** values, char**) {
          *static_cast<int*>(context) = values[0] ? std::atoi(values[0]) : -1;
          return 0;
        },
        &count, nullptr);
  }
  sqlite3_close(db);
  return count;
}

}  // namespace quillery::app
