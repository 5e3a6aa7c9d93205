#pragma once

#include <QDialog>

#include "ingest/StoreRequest.h"

class QPushButton;

namespace quillery::app {

class DatePopUp;

// The date range of a store run: begin and end month, day and year, each "All" or a number.
class StoreDatePanel : public QDialog {
  Q_OBJECT

 public:
  explicit StoreDatePanel(QWidget* parent = nullptr);

  // The selected titles of the six pop-ups.
  ingest::StoreDateRange range() const;
  void setBegin(const QString& year, const QString& month, const QString& day);
  // Sets all six pop-ups to "All".
  void resetAll();

  DatePopUp* beginStoreMo;
  DatePopUp* beginStoreDa;
  DatePopUp* beginStoreYr;
  DatePopUp* endStoreMo;
  DatePopUp* endStoreDa;
  DatePopUp* endStoreYr;
  QPushButton* allDatesButton;
  QPushButton* cancelButton;
  QPushButton* storeButton;
};

}  // namespace quillery::app
