#include "app/SearchPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/DatePopUp.h"

namespace quillery::app {

namespace {

QComboBox* connector(QWidget* parent) {
  auto* popUp = new QComboBox(parent);
  popUp->addItems({QStringLiteral("AND"), QStringLiteral("OR")});
  return popUp;
}

QStringList priorityTitles() {
  return {QStringLiteral("None"),   QStringLiteral("Highest"), QStringLiteral("High"),
          QStringLiteral("Medium"), QStringLiteral("Low"),     QStringLiteral("Lowest")};
}

}  // namespace

SearchPanel::SearchPanel(QWidget* parent)
    : QDialog(parent),
      beginMo(new DatePopUp(DatePopUp::Kind::Month, this)),
      beginDa(new DatePopUp(DatePopUp::Kind::Day, this)),
      beginYr(new DatePopUp(DatePopUp::Kind::Year, this)),
      endMo(new DatePopUp(DatePopUp::Kind::Month, this)),
      endDa(new DatePopUp(DatePopUp::Kind::Day, this)),
      endYr(new DatePopUp(DatePopUp::Kind::Year, this)),
      fromAndButton(connector(this)),
      toAndButton(connector(this)),
      subjAndButton(connector(this)),
      mailboxAndButton(connector(this)),
      searchCatButton(new QComboBox(this)),
      catAndButton(connector(this)),
      keywordsAndButton(connector(this)),
      priorityAndButton(connector(this)),
      priorityCheck(new QCheckBox(tr("Priority:"), this)),
      searchPriorityButton(new QComboBox(this)),
      onlyAttachCheck(new QCheckBox(tr("Only email with attachments"), this)),
      resetButton(new QPushButton(tr("Reset"), this)),
      resetTagsButton(new QPushButton(tr("Reset Tags"), this)),
      sqlButton(new QPushButton(tr("SQL…"), this)),
      browseButton(new QPushButton(tr("Browse All"), this)),
      searchButton(new QPushButton(tr("Search"), this)) {
  setObjectName(QStringLiteral("retrievePanel"));
  setWindowTitle(tr("Search"));
  searchButton->setDefault(true);
  searchCatButton->addItem(QStringLiteral("None"));
  searchPriorityButton->addItems(priorityTitles());

  auto* dates = new QHBoxLayout;
  dates->addWidget(new QLabel(tr("From:"), this));
  for (QWidget* w : {beginMo, beginDa, beginYr})
    dates->addWidget(w);
  dates->addSpacing(12);
  dates->addWidget(new QLabel(tr("Up to:"), this));
  for (QWidget* w : {endMo, endDa, endYr})
    dates->addWidget(w);
  dates->addStretch(1);

  auto* messageBox = new QGroupBox(tr("Message"), this);
  auto* fields = new QGridLayout(messageBox);
  const QStringList labels{tr("From:"),    tr("To:"),           tr("Subject:"),
                           tr("Mailbox:"), tr("Message text:"), tr("Attachment name:")};
  const QList<QComboBox*> connectors{fromAndButton, toAndButton, subjAndButton, mailboxAndButton};
  for (int i = 0; i < labels.size(); ++i) {
    auto* cell = new QLineEdit(this);
    keyWords.append(cell);
    fields->addWidget(new QLabel(labels[i], this), 2 * i, 0);
    fields->addWidget(cell, 2 * i, 1);
    // Each connector stands between its field and the next one.
    if (i < connectors.size())
      fields->addWidget(connectors[i], 2 * i + 1, 1, Qt::AlignLeft);
  }
  fields->addWidget(onlyAttachCheck, 2 * labels.size(), 1);

  auto* tagBox = new QGroupBox(tr("Tags"), this);
  auto* tags = new QGridLayout(tagBox);
  tags->addWidget(new QLabel(tr("Category:"), this), 0, 0);
  tags->addWidget(searchCatButton, 0, 1);
  tags->addWidget(catAndButton, 1, 1, Qt::AlignLeft);
  const QStringList tagLabels{tr("Keywords:"), tr("Notes:")};
  const QList<QComboBox*> tagConnectors{keywordsAndButton, priorityAndButton};
  for (int i = 0; i < tagLabels.size(); ++i) {
    auto* cell = new QLineEdit(this);
    tagWords.append(cell);
    tags->addWidget(new QLabel(tagLabels[i], this), 2 + 2 * i, 0);
    tags->addWidget(cell, 2 + 2 * i, 1);
    tags->addWidget(tagConnectors[i], 3 + 2 * i, 1, Qt::AlignLeft);
  }
  tags->addWidget(priorityCheck, 6, 0);
  tags->addWidget(searchPriorityButton, 6, 1);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(resetButton);
  buttons->addWidget(resetTagsButton);
  buttons->addWidget(sqlButton);
  buttons->addStretch(1);
  buttons->addWidget(browseButton);
  buttons->addWidget(searchButton);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(dates);
  layout->addWidget(messageBox);
  layout->addWidget(tagBox);
  layout->addLayout(buttons);
}

}  // namespace quillery::app
