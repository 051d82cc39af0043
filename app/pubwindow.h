// The program's own pictures: the start-up panel Pub and the frame's logo
// Picture3, both drawn from one motif (a speckle tile under a pattern grid).
#pragma once

#include <QFrame>
#include <QLabel>
#include <QString>
#include <QWidget>

namespace tessiva {

// A centred label in a larger font, for the titles of the frame's panels.
QLabel* CentredCaption(const QString& text, int pointSize, bool bold, QWidget* parent);

class PubWindow : public QFrame {
  Q_OBJECT

 public:
  explicit PubWindow(QWidget* parent);
};

// The logo tells its clicks: the frame shows the About window on one.
class LogoPicture : public QWidget {
  Q_OBJECT

 public:
  explicit LogoPicture(QWidget* parent);

 Q_SIGNALS:
  void clicked();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
};

}  // namespace tessiva
