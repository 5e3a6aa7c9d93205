// quillery: the desktop application. A file named on the command line (as the desktop entry
// passes a double-clicked archive file) becomes the archive path, as a file handed over by
// the desktop does.
#include <QApplication>
#include <QFileInfo>

#include "app/MainWindow.h"
#include "app/QuilleryController.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtFiles.h"
#include "platform/qt/QtPasteboard.h"
#include "platform/qt/QtSettings.h"
#include "platform/qt/QtWorkspace.h"

int main(int argc, char** argv) {
  // The HTML view's web engine shares its graphics context with the application's windows.
  QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
  QApplication app(argc, argv);
  QApplication::setOrganizationName(QStringLiteral("Quillery"));
  QApplication::setApplicationName(QStringLiteral("Quillery"));
  QApplication::setApplicationDisplayName(QStringLiteral("Quillery"));
  QApplication::setApplicationVersion(QStringLiteral(QUILLERY_VERSION));
  QApplication::setDesktopFileName(QStringLiteral("quillery"));
  // Closing the main window quits even while a panel is open.
  QApplication::setQuitOnLastWindowClosed(false);

  using namespace quillery;
  platform::QtDialogs dialogs;
  platform::QtSettings settings;
  platform::QtFiles files;
  platform::QtWorkspace workspace;
  platform::QtPasteboard pasteboard;
  app::QuilleryController controller({dialogs, settings, files, workspace, pasteboard});
  dialogs.setParent(controller.msWindow);
  QObject::connect(&controller, &app::QuilleryController::quitRequested, &app,
                   &QCoreApplication::quit, Qt::QueuedConnection);
  QObject::connect(&app, &QCoreApplication::aboutToQuit, &controller,
                   &app::QuilleryController::applicationWillTerminate);

  controller.awakeFromNib();
  controller.msWindow->show();
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() > 1)
    controller.applicationOpenFile(QFileInfo(arguments.at(1)).absoluteFilePath());
  return QApplication::exec();
}
