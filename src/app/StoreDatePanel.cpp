#include "app/StoreDatePanel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/DatePopUp.h"

namespace quillery::app {

StoreDatePanel::StoreDatePanel(QWidget* parent)
    : QDialog(parent),
      beginStoreMo(new DatePopUp(DatePopUp::Kind::Month, this)),
      beginStoreDa(new DatePopUp(DatePopUp::Kind::Day, this)),
      beginStoreYr(new DatePopUp(DatePopUp::Kind::Year, this)),
      endStoreMo(new DatePopUp(DatePopUp::Kind::Month, this)),
      endStoreDa(new DatePopUp(DatePopUp::Kind::Day, this)),
      endStoreYr(new DatePopUp(DatePopUp::Kind::Year, this)),
      allDatesButton(new QPushButton(tr("All Dates"), this)),
      cancelButton(new QPushButton(tr("Cancel"), this)),
      storeButton(new QPushButton(tr("Store"), this)) {
  setObjectName(QStringLiteral("storeDatePanel"));
  setWindowTitle(tr("Store Email"));
  storeButton->setDefault(true);

  auto* grid = new QGridLayout;
  grid->addWidget(new QLabel(tr("Month"), this), 0, 1);
  grid->addWidget(new QLabel(tr("Day"), this), 0, 2);
  grid->addWidget(new QLabel(tr("Year"), this), 0, 3);
  grid->addWidget(new QLabel(tr("From:"), this), 1, 0);
  grid->addWidget(beginStoreMo, 1, 1);
  grid->addWidget(beginStoreDa, 1, 2);
  grid->addWidget(beginStoreYr, 1, 3);
  grid->addWidget(new QLabel(tr("Up to:"), this), 2, 0);
  grid->addWidget(endStoreMo, 2, 1);
  grid->addWidget(endStoreDa, 2, 2);
  grid->addWidget(endStoreYr, 2, 3);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(allDatesButton);
  buttons->addStretch(1);
  buttons->addWidget(cancelButton);
  buttons->addWidget(storeButton);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(grid);
  layout->addLayout(buttons);
  connect(allDatesButton, &QPushButton::clicked, this, &StoreDatePanel::resetAll);
}

ingest::StoreDateRange StoreDatePanel::range() const {
  return {{beginStoreMo->title(), beginStoreDa->title(), beginStoreYr->title()},
          {endStoreMo->title(), endStoreDa->title(), endStoreYr->title()}};
}

void StoreDatePanel::setBegin(const QString& year, const QString& month, const QString& day) {
  beginStoreYr->selectTitle(year);
  beginStoreMo->selectTitle(month);
  beginStoreDa->selectTitle(day);
}

void StoreDatePanel::resetAll() {
  for (DatePopUp* popUp :
       {beginStoreMo, beginStoreDa, beginStoreYr, endStoreMo, endStoreDa, endStoreYr})
    popUp->setCurrentIndex(0);
}

}  // namespace quillery::app
