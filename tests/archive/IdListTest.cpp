// The shared id list gives back every text it was given, character for character, whether
// it keeps it as a number or as text.
#include <gtest/gtest.h>

#include "archive/IdList.h"
#include "support/QtPrinters.h"

namespace quillery::archive {
namespace {

TEST(IdListTest, EveryTextComesBackAsItWasAppended) {
  const QStringList texts = {"1",
                             "17",
                             "0",
                             "-3",
                             "2147483647",
                             "-2147483647",
                             "-2147483648",
                             "2147483648",
                             "007",
                             "-0",
                             "+5",
                             "1.0",
                             "(null)",
                             "",
                             " 5",
                             "12345678901",
                             QString("4") + QChar(0) + "2"};
  IdList list;
  for (const QString& text : texts)
    list.append(text);
  list.append("99");
  list.append(42);
  EXPECT_EQ(list.size(), texts.size() + 2);
  EXPECT_EQ(list, texts + QStringList({"99", "42"}));
  QStringList walked;
  for (const QString& id : list)
    walked.append(id);
  EXPECT_EQ(walked, list.toStringList());
  EXPECT_EQ(list.first(), "1");
  EXPECT_EQ(list[texts.size()], "99");
  list.clear();
  EXPECT_TRUE(list.isEmpty());
  list.append("-0");
  EXPECT_EQ(list.at(0), "-0");  // a text kept as text is forgotten by clear
}

}  // namespace
}  // namespace quillery::archive
