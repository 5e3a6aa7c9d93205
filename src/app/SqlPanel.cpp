#include "app/SqlPanel.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillery::app {

SqlPanel::SqlPanel(QWidget* parent)
    : QDialog(parent),
      beginSqlTextField(new QPlainTextEdit(this)),
      whereTextField(new QPlainTextEdit(this)),
      schemaButton(new QPushButton(tr("Schema"), this)),
      runButton(new QPushButton(tr("Run Query"), this)) {
  setObjectName(QStringLiteral("SQLPanel"));
  setWindowTitle(tr("SQL Query"));
  const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  beginSqlTextField->setReadOnly(true);
  beginSqlTextField->setFont(fixed);
  whereTextField->setFont(fixed);
  runButton->setDefault(true);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(schemaButton);
  buttons->addStretch(1);
  buttons->addWidget(runButton);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(tr("Statement:"), this));
  layout->addWidget(beginSqlTextField, 1);
  layout->addWidget(new QLabel(tr("Condition (WHERE … ORDER BY …):"), this));
  layout->addWidget(whereTextField, 1);
  layout->addLayout(buttons);
  resize(560, 420);
}

}  // namespace quillery::app
