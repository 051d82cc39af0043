// The About window (APropos): the program's name and version, its licence
// and where its documentation is, under the logo. The frame shows it on a
// click of its logo.
#pragma once

#include <QDialog>

namespace tessiva {

class AboutWindow : public QDialog {
  Q_OBJECT

 public:
  explicit AboutWindow(QWidget* parent);
};

}  // namespace tessiva
