// quillery-screenshot <out.png> [archive]: builds the real main window (in a private home
// folder, so no settings of the user are read or written), lists the archive when one is
// given, and saves what the screen shows once the window is exposed. Not installed.
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QScreen>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>

#include "app/MainWindow.h"
#include "app/QuilleryController.h"
#include "archive/Archive.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtFiles.h"
#include "platform/qt/QtPasteboard.h"
#include "platform/qt/QtSettings.h"
#include "platform/qt/QtWorkspace.h"
#include "search/ResultList.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: quillery-screenshot <out.png> [archive]\n");
    return 2;
  }
  QTemporaryDir home;
  qputenv("HOME", home.path().toUtf8());
  QDir(home.path()).mkpath(QStringLiteral("Desktop"));
  QApplication app(argc, argv);
  QApplication::setApplicationVersion(QStringLiteral(QUILLERY_VERSION));

  using namespace quillery;
  platform::QtDialogs dialogs;
  platform::QtSettings settings(home.filePath(QStringLiteral("quillery.conf")));
  platform::QtFiles files;
  platform::QtWorkspace workspace;
  platform::QtPasteboard pasteboard;
  app::QuilleryController controller({dialogs, settings, files, workspace, pasteboard});
  controller.awakeFromNib();
  controller.msWindow->show();
  if (argc > 2) {
    const QString archivePath = QFileInfo(QString::fromLocal8Bit(argv[2])).absoluteFilePath();
    controller.applicationOpenFile(archivePath);
    controller.archive.openDB(archivePath);
    controller.archive.sqlText = QStringLiteral(
        "SELECT id,date_fld,from_fld,to_fld,subj_fld,(CASE WHEN mailbox ISNULL THEN '' ELSE "
        "mailbox END),numAttach FROM email ORDER BY id");
    controller.resultList().retrieve(archivePath);
  }

  const QString out = QString::fromLocal8Bit(argv[1]);
  int status = 1;
  // A moment after the window is exposed, so the window manager has placed it and the
  // table has been painted.
  QTimer::singleShot(1500, &app, [&] {
    QScreen* screen = QGuiApplication::primaryScreen();
    if (screen != nullptr && screen->grabWindow(0).save(out))
      status = 0;
    else
      std::fprintf(stderr, "quillery-screenshot: could not save %s\n", argv[1]);
    QApplication::quit();
  });
  QApplication::exec();
  return status;
}
