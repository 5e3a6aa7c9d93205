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
#include "search/Priorities.h"
#include "search/SearchForm.h"

namespace quillery::app {

namespace {

QComboBox* connector(QWidget* parent) {
  auto* popUp = new QComboBox(parent);
  popUp->addItems({QStringLiteral("AND"), QStringLiteral("OR")});
  return popUp;
}

void select(QComboBox* popUp, const QString& title) {
  const int index = popUp->findText(title, Qt::MatchExactly);
  if (index >= 0)
    popUp->setCurrentIndex(index);
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
  searchPriorityButton->addItems(search::priorityTitles());

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
  search::SearchForm neutral;
  setForm(neutral);
}

search::SearchForm SearchPanel::form() const {
  search::SearchForm f;
  f.beginMo = beginMo->title();
  f.beginDa = beginDa->title();
  f.beginYr = beginYr->title();
  f.endMo = endMo->title();
  f.endDa = endDa->title();
  f.endYr = endYr->title();
  for (int i = 0; i < keyWords.size(); ++i)
    f.keyWords[std::size_t(i)] = keyWords[i]->text();
  f.fromAndButton = fromAndButton->currentText();
  f.toAndButton = toAndButton->currentText();
  f.subjAndButton = subjAndButton->currentText();
  f.mailboxAndButton = mailboxAndButton->currentText();
  f.onlyAttachCheck = onlyAttachCheck->isChecked();
  f.searchCatButton = searchCatButton->currentText();
  for (int i = 0; i < tagWords.size(); ++i)
    f.tagWords[std::size_t(i)] = tagWords[i]->text();
  f.catAndButton = catAndButton->currentText();
  f.keywordsAndButton = keywordsAndButton->currentText();
  f.priorityAndButton = priorityAndButton->currentText();
  f.priorityCheck = priorityCheck->isChecked();
  f.searchPriorityButton = searchPriorityButton->currentText();
  return f;
}

void SearchPanel::setForm(const search::SearchForm& f) {
  const QList<QPair<DatePopUp*, QString>> dates{{beginMo, f.beginMo}, {beginDa, f.beginDa},
                                                {beginYr, f.beginYr}, {endMo, f.endMo},
                                                {endDa, f.endDa},     {endYr, f.endYr}};
  for (const auto& [popUp, title] : dates)
    popUp->selectTitle(title);
  for (int i = 0; i < keyWords.size(); ++i)
    keyWords[i]->setText(f.keyWords[std::size_t(i)]);
  const QList<QPair<QComboBox*, QString>> popUps{{fromAndButton, f.fromAndButton},
                                                 {toAndButton, f.toAndButton},
                                                 {subjAndButton, f.subjAndButton},
                                                 {mailboxAndButton, f.mailboxAndButton},
                                                 {searchCatButton, f.searchCatButton},
                                                 {catAndButton, f.catAndButton},
                                                 {keywordsAndButton, f.keywordsAndButton},
                                                 {priorityAndButton, f.priorityAndButton},
                                                 {searchPriorityButton, f.searchPriorityButton}};
  for (const auto& [popUp, title] : popUps)
    select(popUp, title);
  onlyAttachCheck->setChecked(f.onlyAttachCheck);
  for (int i = 0; i < tagWords.size(); ++i)
    tagWords[i]->setText(f.tagWords[std::size_t(i)]);
  priorityCheck->setChecked(f.priorityCheck);
}

}  // namespace quillery::app
