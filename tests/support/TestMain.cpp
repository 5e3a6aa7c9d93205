// The main of every test program: a private HOME and settings location before Qt starts, so
// no test reads or writes the user's files, and the offscreen platform for windows.
#include <gtest/gtest.h>

#include <QStandardPaths>
#include <QTemporaryDir>

#ifdef QUILLERY_TEST_GUI
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif

int main(int argc, char** argv) {
  QTemporaryDir home;
  qputenv("HOME", home.path().toUtf8());
  qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/.config")).toUtf8());
  qputenv("XDG_DATA_HOME", (home.path() + QStringLiteral("/.local/share")).toUtf8());
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
  QStandardPaths::setTestModeEnabled(true);
#ifdef QUILLERY_TEST_GUI
  // The HTML view's web engine needs this before the application object exists.
  QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
#endif
  TestApplication app(argc, argv);
  TestApplication::setOrganizationName(QStringLiteral("QuilleryTests"));
  TestApplication::setApplicationName(QStringLiteral("QuilleryTests"));
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
