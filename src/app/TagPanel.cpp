#include "app/TagPanel.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "search/Priorities.h"
#include "search/TagValues.h"

namespace quillery::app {

TagPanel::TagPanel(QWidget* parent)
    : QDialog(parent),
      catTextField(new QLineEdit(this)),
      setCatButton(new QComboBox(this)),
      keywordsTextField(new QLineEdit(this)),
      priorityButton(new QComboBox(this)),
      notesTextField(new QLineEdit(this)),
      setTagsButton(new QPushButton(tr("Save Tags"), this)) {
  setObjectName(QStringLiteral("tagPanel"));
  setWindowTitle(tr("Tags"));
  setCatButton->addItem(QStringLiteral("None"));
  // The positions are the stored priority numbers.
  priorityButton->addItems(search::priorityTitles());
  setTagsButton->setDefault(true);
  catTextField->setMinimumWidth(240);

  auto* category = new QHBoxLayout;
  category->addWidget(catTextField, 1);
  category->addWidget(setCatButton);
  auto* form = new QFormLayout;
  form->addRow(tr("Category:"), category);
  form->addRow(tr("Keywords:"), keywordsTextField);
  form->addRow(tr("Priority:"), priorityButton);
  form->addRow(tr("Notes:"), notesTextField);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(setTagsButton);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addLayout(buttons);
  connect(setCatButton, &QComboBox::activated, this, &TagPanel::chooseSetCat);
}

search::TagValues TagPanel::values() const {
  return {catTextField->text(), keywordsTextField->text(), notesTextField->text(),
          priorityButton->currentText()};
}

void TagPanel::setValues(const search::TagValues& values) {
  catTextField->setText(values.category);
  keywordsTextField->setText(values.keywords);
  notesTextField->setText(values.notes);
  priorityButton->setCurrentIndex(
      int(std::max<qsizetype>(search::priorityTitles().indexOf(values.priority), 0)));
}

void TagPanel::chooseSetCat() {
  const QString title = setCatButton->currentText();
  catTextField->setText(title == QLatin1String("None") ? QString() : title);
}

}  // namespace quillery::app
