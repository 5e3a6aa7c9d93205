// quillery-screenshot <out.png> [archive [window]]: builds the real main window (in a private
// home folder, so no settings of the user are read or written), lists the archive when one is
// given, brings the named window or panel ("prefPanel", "storeDatePanel", ...) to the front
// when one is given, and saves what the screen shows once the window is exposed. Not
// installed.
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QScreen>
#include <QTemporaryDir>
#include <QTimer>
#include <QWindow>
#include <cstdio>

#include "app/MainWindow.h"
#include "app/QuilleryController.h"
#include "archive/Archive.h"
#include "archive/Statements.h"
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
    controller.archive.sqlText = archive::listAllStatement();
    QElapsedTimer clock;
    clock.start();
    controller.resultList().retrieve(archivePath);
    std::fprintf(stderr, "Listed %d messages in the window in %.3f s\n",
                 controller.resultList().listCount, clock.nsecsElapsed() / 1e9);
  }
  if (argc > 3) {
    const QString name = QString::fromLocal8Bit(argv[3]);
    if (name == QLatin1String("prefPanel")) {
      controller.doPrefPanel();
    } else if (name == QLatin1String("ProgressPanel")) {
      controller.doProgressPanel(QStringLiteral("Retrieving..."));
      controller.doProgressCount(1200, 10);
    } else if (auto* window = controller.msWindow->findChild<QWidget*>(name)) {
      window->show();
      window->raise();
    }
  }

  const QString out = QString::fromLocal8Bit(argv[1]);
  int status = 1;
  auto grab = [&] {
    QScreen* screen = QGuiApplication::primaryScreen();
    if (screen != nullptr && screen->grabWindow(0).save(out))
      status = 0;
    else
      std::fprintf(stderr, "quillery-screenshot: could not save %s\n", argv[1]);
    QApplication::quit();
  };
  // Once the window is exposed, a moment more lets the window manager place it and the table
  // paint its rows.
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &app, [&] {
    const QWindow* window = controller.msWindow->windowHandle();
    if (window != nullptr && window->isExposed()) {
      poll.stop();
      QTimer::singleShot(500, &app, grab);
    }
  });
  poll.start(50);
  QApplication::exec();
  return status;
}
