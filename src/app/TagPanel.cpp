#include "app/TagPanel.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

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
  priorityButton->addItems({QStringLiteral("None"), QStringLiteral("Highest"),
                            QStringLiteral("High"), QStringLiteral("Medium"), QStringLiteral("Low"),
                            QStringLiteral("Lowest")});
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
}

}  // namespace quillery::app
