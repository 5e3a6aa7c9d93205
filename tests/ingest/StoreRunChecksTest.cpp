// The store run's checks, its conversation with the tool and its ending, driven through a
// scripted stand-in for the parser tool where the test needs exact arguments and run logs.
#include <QFile>
#include <QSignalSpy>
#include <utility>

#include "StoreRunFixture.h"
#include "ingest/StoreSummary.h"

namespace quillery::ingest {
namespace {

using platform::AlertStyle;

// Speaks the tool's side of the conversation: records its arguments, environment and the
// answers it gets, announces two messages (after the status chunks), and leaves a run log
// with the given number of INVALID lines. An announcement goes out through cat, in one write as
// the tool must (the shell's printf breaks its output at line ends).
const char kStandIn[] = R"(#!/bin/bash
out="$STANDIN_OUT"
printf '%s\n' "$@" > "$out.args"
printf '%s' "$NSUnbufferedIO" > "$out.env"
base="${1%.log}"
printf 'Looking for email'
sleep 0.3
for i in 1 2; do
  printf 'MAILBOX: Box\nFROM:Sender %s <s%s@example.com>\nTO:to@example.com\nSUBJECT:Subject %s\nDATE:2020-02-0%s 08:00:00\nMAILTO:s@example.com\nBODY:body %s\nENDOFBODY:\nENDOFEMAIL:\n' $i $i $i $i $i > "$base.tmp"
  printf 'RAW:\nsource %s\nENDOFRAW:\n' $i > "$base.raw"
  printf 'attachment\n'
  sleep 0.3
  printf '/mail/file%s\nSubject %s' $i $i > "$out.chunk"
  cat "$out.chunk"
  IFS= read -r -n 9 answer || exit 0
  printf '%s|' "$answer" >> "$out.answers"
done
for i in $(seq 1 "${STANDIN_INVALID:-0}"); do echo "INVALID: /bad/file$i.mbox" >> "$1"; done
echo "PARSED: 5" >> "$1"
echo "PARSED: 9" >> "$1"
)";

class StoreRunChecksTest : public StoreRunFixture {
 protected:
  void useStandIn(int invalidFiles) {
    const QString tool = dir.filePath(QStringLiteral("standin.sh"));
    ASSERT_TRUE(test::writeFile(tool, kStandIn, true));
    out = dir.filePath(QStringLiteral("standin"));
    qputenv("STANDIN_OUT", out.toUtf8());
    qputenv("STANDIN_INVALID", QByteArray::number(invalidFiles));
    makeRun(tool);
  }
  QStringList recordedArguments() const {
    return test::readFile(out + QStringLiteral(".args")).split('\n', Qt::SkipEmptyParts);
  }
  QString out;
};

TEST_F(StoreRunChecksTest, NothingIsStoredWithoutSourcesConfirmationOrATool) {
  useStandIn(0);
  QSignalSpy closed(preparation.get(), &StorePreparation::storeDatePanelClosed);
  counters.storedCount = 7;
  StoreSwitches mailboxes = allOn();
  mailboxes.mailboxesState = true;
  EXPECT_FALSE(preparation->prepareRun(dbPath(), mailboxes, {}, {{QStringLiteral("acct")}, {}}));
  EXPECT_FALSE(preparation->prepareRun(dbPath(), allOn(), {}, {{}, {QStringLiteral("box")}}));
  EXPECT_EQ(dialogs.messages(),
            (QStringList{"You have not selected any mailboxes to store in the database.  Click on "
                         "the Setup button to select your mailboxes.",
                         "You have not selected any email accounts to store in the database.  "
                         "Click on the Setup button to select your email accounts."}));
  EXPECT_EQ(dialogs.alerts[0].style, AlertStyle::Critical);
  // The date panel is closed and the counters reset, and that is all.
  EXPECT_EQ(closed.size(), 2);
  EXPECT_EQ(counters.storedCount, 0);

  // Choosing mbox files: a cancelled panel changes nothing; chosen files switch to mbox mode.
  EXPECT_FALSE(preparation->openMbox());
  ASSERT_EQ(dialogs.openPanels.size(), 1);
  EXPECT_EQ(dialogs.openPanels[0].title + '|' + dialogs.openPanels[0].prompt,
            QStringLiteral("Import MBOX Files|Open"));
  EXPECT_TRUE(dialogs.openPanels[0].multipleSelection);
  EXPECT_FALSE(preparation->mboxMode());
  dialogs.setNextFileNames({QStringLiteral("/a.mbox"), QStringLiteral("/b.mbox")});
  ASSERT_TRUE(preparation->openMbox());
  EXPECT_EQ(preparation->sourceList(), (QStringList{"/a.mbox", "/b.mbox"}));
  preparation->cancelStore();

  dialogs.alerts.clear();
  dialogs.setNextAnswer(1);
  EXPECT_FALSE(preparation->prepareRun(dbPath(), allOn(), {}, {}));
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_EQ(dialogs.alerts[0].title, "Store Email in Database");
  EXPECT_EQ(dialogs.alerts[0].buttons, (QStringList{"OK", "Cancel"}));
  EXPECT_FALSE(run->isRunning());
  EXPECT_FALSE(QFile::exists(dbPath()));
  EXPECT_FALSE(QFile::exists(dbPath() + QStringLiteral(".storelog")));
  EXPECT_FALSE(QFile::exists(out + QStringLiteral(".args")));
  EXPECT_TRUE(preparation->mboxMode());  // only the end of a run clears it

  // A tool that cannot run still ends the run, with nothing read and nothing listed (the
  // range 999999 to 0 lists nothing).
  makeRun(dir.filePath(QStringLiteral("no-such-tool")));
  EXPECT_EQ(storeMbox({dir.filePath(QStringLiteral("x.mbox"))}),
            "Parsed: 0\nProcessed: 0\nStored: 0\nDuplicates replaced: 0\nlast file parsed: \n");
  EXPECT_FALSE(run->isRunning());
  EXPECT_EQ(list.listCount, 0);
  EXPECT_EQ(scalar(QStringLiteral("PRAGMA integrity_check")), "ok");
}

TEST_F(StoreRunChecksTest, TheConfirmationNamesWhatWillBeStored) {
  const QString at = QStringLiteral("into the database file at ") + dbPath() + QLatin1Char('.');
  const QString mbox =
      QStringLiteral("Quillery will store and index the email in the selected mbox files, ") + at;
  const QString text = QStringLiteral("Quillery will store and index the text ");
  const QString boxes = QStringLiteral(
      "of all emails in the In boxes and Sent boxes of your selected email accounts, ");
  const QString trash = QStringLiteral(" The Trash & Junk mailboxes will also be stored.");
  const struct {
    bool mbox, attach, allmb, trash;
    QString expected;
  } rows[] = {
      {true, true, true, false, mbox},
      {true, false, false, true, mbox + trash},
      {false, false, false, false, text + boxes + at},
      {false, true, false, false, text + QStringLiteral("and attachments ") + boxes + at},
      {false, false, true, true,
       text + boxes + QStringLiteral("plus all emails in all of your other mailboxes, ") + at +
           trash},
  };
  for (const auto& row : rows) {
    dialogs.alerts.clear();
    dialogs.setNextAnswer(1);
    makeRun(test::toolPath(QStringLiteral("domail")));
    if (row.mbox)
      preparation->useMboxFiles({QStringLiteral("/a.mbox")});
    preparation->prepareRun(dbPath(), {row.allmb, row.attach, false, row.trash, false, false}, {},
                            {{QStringLiteral("acct")}, {}});
    EXPECT_EQ(dialogs.messages(), QStringList{row.expected});
  }
}

TEST_F(StoreRunChecksTest, TheToolGetsItsArgumentsAndEveryAnnouncementAnAnswer) {
  useStandIn(7);
  QSignalSpy titles(run.get(), &StoreRun::storePanelTitleChanged);
  const QString mbox = dir.filePath(QStringLiteral("in.mbox"));
  const QString summary = storeMbox({mbox});

  EXPECT_EQ(recordedArguments(),
            (QStringList{dbPath() + QStringLiteral(".log"), "0", "1", "1", "0", "1", "1", "0",
                         "0000-00-00 00:00:00", "9999-99-99 00:00:00", mbox}));
  EXPECT_EQ(test::readFile(out + QStringLiteral(".env")), "YES");
  EXPECT_EQ(test::readFile(out + QStringLiteral(".answers")),
            QStringLiteral("go for it|go for it|"));

  QString expected = QStringLiteral(
      "Parsed: 9\nProcessed: 2\nStored: 2\nDuplicates replaced: 0\n"
      "last file parsed: /mail/file2\nSubject 2\nInvalid Files: 7\n");
  for (int i = 1; i <= 6; ++i)
    expected += QStringLiteral("/bad/file%1.mbox\n").arg(i);
  expected += QStringLiteral("...\n");
  // The summary is the run's store log and its last alert.
  ASSERT_FALSE(dialogs.alerts.isEmpty());
  EXPECT_EQ((QStringList{summary, test::readFile(dbPath() + QStringLiteral(".storelog")),
                         dialogs.alerts.last().title + '|' + dialogs.alerts.last().message}),
            (QStringList{expected, expected, "Done Storing Email|" + expected}));
  EXPECT_EQ(titles.last().first().toString(), QStringLiteral("done storing email in ") + dbPath());

  // The three record files are gone, the stored messages are listed, and mbox mode is over.
  for (const char* suffix : {".log", ".tmp", ".raw"})
    EXPECT_FALSE(QFile::exists(dbPath() + QLatin1String(suffix))) << suffix;
  EXPECT_EQ(list.listCount, 2) << progress.events.join(QStringLiteral("#")).toStdString();
  EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM origemail")), 2);
  EXPECT_FALSE(preparation->mboxMode() || counters.processedCount);
  EXPECT_EQ(progress.events.first(), "count:0");
  for (const char* event :
       {"title:Processing attachment or HTML...", "item:/mail/file1\nSubject 1", "controls:0"})
    EXPECT_TRUE(progress.events.contains(QString::fromUtf8(event))) << event;

  // Dates and sources shape the arguments.
  const StoreDateRange range{{"03", "All", "2019"}, {"All", "15", "All"}};
  StoreSwitches mailboxes = allOn();
  mailboxes.mailboxesState = true;
  runToEnd(
      mailboxes,
      {{QStringLiteral("acct")}, {QStringLiteral("acct/INBOX\n"), QStringLiteral("acct/Sent")}},
      range);
  QStringList args = recordedArguments();
  ASSERT_EQ(args.size(), 12);
  EXPECT_EQ(args.mid(5, 5),
            (QStringList{"0", "1", "1", "2019-03-00 00:00:00", "9999-99-15 00:00:00"}));
  EXPECT_EQ(args.mid(10), (QStringList{"acct/INBOX", "acct/Sent"}));

  // Accounts are followed by the local mailboxes folder.
  StoreSwitches accounts = allOn();
  accounts.allmbState = accounts.trashState = true;
  runToEnd(accounts, {{QStringLiteral("one"), QStringLiteral("two")}, {}});
  args = recordedArguments();
  EXPECT_EQ(args.mid(1, 7), (QStringList{"1", "1", "1", "1", "0", "1", "0"}));
  EXPECT_EQ(args.mid(10), (QStringList{"one", "two", "Mailboxes"}));

  // In mbox mode the mailboxes switch is passed as 0 whatever it is.
  preparation->useMboxFiles({QStringLiteral("/x.mbox")});
  runToEnd(mailboxes);
  EXPECT_EQ(recordedArguments().at(7), "0");
}

// While the tool pauses after a message (a large mail file, another mailbox to find), the
// message is committed once the interval's time is over; the tool sees it from outside.
TEST_F(StoreRunChecksTest, AMessageStoredBeforeAPauseOfTheToolIsCommittedDuringIt) {
  const QString tool = dir.filePath(QStringLiteral("pausing.sh"));
  ASSERT_TRUE(test::writeFile(tool, R"(#!/bin/bash
base="${1%.log}"
printf 'FROM:Ann\nSUBJECT:Before the pause\nBODY:b\nENDOFBODY:\nENDOFEMAIL:\n' > "$base.tmp"
printf 'RAW:\nsource\nENDOFRAW:\n' > "$base.raw"
printf '/mail/one\nBefore the pause'
IFS= read -r -n 9 answer || exit 0
sleep 1
sqlite3 "$base" 'SELECT count(*) FROM email' > "$base.seen"
)",
                              true));
  makeRun(tool, {1000, 500});
  storeMbox({QStringLiteral("/in.mbox")});
  EXPECT_EQ(test::readFile(dbPath() + QStringLiteral(".seen")), "1\n");
}

TEST(StoreSummaryTest, TheRunLogGivesTheLastParsedCountAndSixInvalidFilesByName) {
  QTemporaryDir dir;
  const QString log = dir.filePath(QStringLiteral("run.log"));
  QString text = QStringLiteral("PARSED: 40\nnoise line\n");
  QString listed;
  for (int i = 1; i <= 6; ++i) {
    text += QStringLiteral("INVALID: /m/ü%1\n").arg(i);
    listed += QStringLiteral("/m/ü%1\n").arg(i);
  }
  ASSERT_TRUE(test::writeFile(log, (text + QStringLiteral("PARSED: 41\n")).toUtf8()));
  StoreRunCounters counters;
  counters.invalidFileCount = 99;
  QStringList paths;
  ASSERT_TRUE(StoreSummary::readRunLog(log, counters, paths));
  // The last PARSED line wins; six invalid files are listed without the dots of a seventh.
  EXPECT_EQ(StoreSummary::compose(counters, QStringLiteral("f\ns"), paths),
            QStringLiteral("Parsed: 41\nProcessed: 0\nStored: 0\nDuplicates replaced: 0\n"
                           "last file parsed: f\ns\nInvalid Files: 6\n") +
                listed);

  // Without a log the processed count stands for parsed, and no file of an earlier run stays.
  counters.parsedCount = 0;
  counters.processedCount = 12;
  EXPECT_FALSE(StoreSummary::readRunLog(QStringLiteral("/nonexistent/run.log"), counters, paths));
  EXPECT_TRUE(paths.isEmpty());
  EXPECT_EQ(StoreSummary::compose(counters, QString(), paths),
            QStringLiteral("Parsed: 12\nProcessed: 12\nStored: 0\nDuplicates replaced: 0\n"
                           "last file parsed: \n"));
}

}  // namespace
}  // namespace quillery::ingest
