// The program's own pictures: the start-up panel Pub and the frame's logo
// Picture3, both drawn from one motif (a speckle tile under a pattern grid).
#pragma once

#include <QFrame>
#include <QWidget>

namespace tessiva {

class PubWindow : public QFrame {
  Q_OBJECT

 public:
  explicit PubWindow(QWidget* parent);
};

class LogoPicture : public QWidget {
  Q_OBJECT

 public:
  explicit LogoPicture(QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace tessiva
