#include "app/IdPanel.h"

#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillery::app {

IdPanel::IdPanel(QWidget* parent)
    : QDialog(parent),
      idTextField(new QLineEdit(this)),
      cancelButton(new QPushButton(tr("Cancel"), this)),
      okButton(new QPushButton(tr("OK"), this)) {
  setObjectName(QStringLiteral("IdPanel"));
  setWindowTitle(tr("First Message Number"));
  idTextField->setValidator(new QIntValidator(idTextField));
  idTextField->setText(QStringLiteral("1"));
  okButton->setDefault(true);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(cancelButton);
  buttons->addWidget(okButton);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(tr("Number the exported messages from:"), this));
  layout->addWidget(idTextField);
  layout->addLayout(buttons);
}

}  // namespace quillery::app
