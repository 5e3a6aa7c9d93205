#pragma once

#include <QByteArray>
#include <QDir>
#include <QSignalSpy>
#include <QString>
#include <QStringList>

#include "archive/Archive.h"
#include "ingest/StoreRun.h"
#include "platform/qt/QtFiles.h"
#include "search/ResultList.h"
#include "support/FakeDialogs.h"
#include "support/FakeProgress.h"
#include "support/TestEnvironment.h"

namespace quillery::search {

// Mail written by the tests for the search index: texts in which letter case, accents,
// quotes, per-cent signs and underscores matter, one message each, on consecutive days.
struct IndexedMail {
  static QByteArray message(int day, const QString& from, const QString& subject,
                            const QString& body) {
    const QByteArray date = QStringLiteral("%1 Mar 2019 10:00:00 +0000").arg(day + 1).toUtf8();
    return "From sender@example.com Fri Mar  1 10:00:00 2019\nFrom: " + from.toUtf8() +
           "\nTo: Bob <bob@example.com>\nSubject: " + subject.toUtf8() + "\nDate: " + date +
           "\nMIME-Version: 1.0\nContent-Type: text/plain; charset=utf-8\n"
           "Content-Transfer-Encoding: 8bit\n\n" +
           body.toUtf8() + "\n\n";
  }
  static QByteArray tricky() {
    const QString texts[][3] = {
        {"Anna Smith <anna@example.com>", "Kitchen report", "The KITCHEN needs paint."},
        {"Jörg Grün <joerg@example.com>", "Grüße aus Zürich", "Viele Grüße, GRÜSSE und grüße."},
        {"Zoë <zoe@example.com>", "Café", "un café crème, CAFÉ noir, cafe au lait"},
        {"Quote <q@example.com>", "Say \"hi\" to all", "Please say \"hi\" to 100% of them."},
        {"Under <u@example.com>", "a_c and abc", "snake_case and snakeXcase; 50% off, 5 of 10"},
        {"Ивана <ivana@example.com>", "ЖУК и жук", "Большой ЖУК, маленький жук."},
        {"Αλφα <alpha@example.com>", "ΑΛΦΑ", "αλφα ΑΛΦΑ Άλφα"},
        {"Bob Report <bob@example.com>", "Quarterly figures",
         "the quarterly report of the kitchen garden, naïve and NAÏVE"},
        {"Anna Smith <anna@example.com>", "Re: Kitchen report", "paint is ordered"},
    };
    QByteArray mbox;
    int day = 0;
    for (const auto& text : texts)
      mbox += message(day++, text[0], text[1], text[2]);
    return mbox;
  }

  // Stores the mbox files, then the accounts under HOME, into the archive at dbPath with the
  // real parser tool, as the window's store run does; false when a run did not end.
  static bool store(const QString& dbPath, const QStringList& mboxes,
                    const QStringList& accounts = {}) {
    test::FakeDialogs dialogs;
    test::FakeProgress progress;
    platform::QtFiles files;
    archive::Archive archive(dialogs, files);
    ResultList list(archive, dialogs, progress);
    ingest::CurrentMessage message;
    ingest::StoreRunCounters counters;
    ingest::StoreRun run(archive, list, message, counters, dialogs, progress,
                         test::toolPath(QStringLiteral("domail")));
    for (const bool mbox : {true, false}) {
      if ((mbox ? mboxes : accounts).isEmpty())
        continue;
      QSignalSpy finished(&run, &ingest::StoreRun::finished);
      ingest::StoreRequest request;
      request.dbPath = dbPath;
      request.switches = {false, true, true, false, true, false};
      request.mboxMode = mbox;
      if (mbox)
        request.mboxFiles = mboxes;
      else
        request.sources.accountList = accounts;
      if (!run.start(request) || !finished.wait(120000))
        return false;
    }
    return true;
  }
};

}  // namespace quillery::search
