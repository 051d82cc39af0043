#include "pubwindow.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdint>

namespace tessiva {
namespace {

// A speckle of dark dots on a light tile (a fixed pseudo-random sequence, so the
// picture never changes) under a 3 x 3 grid of correlation patterns.
void PaintMotif(QPainter& p, const QRectF& tile) {
  p.save();
  p.setRenderHint(QPainter::Antialiasing);
  p.fillRect(tile, QColor(232, 232, 226));
  p.setPen(Qt::NoPen);
  uint32_t seed = 12345u;
  auto next = [&seed] {
    seed = seed * 1664525u + 1013904223u;
    return static_cast<double>(seed >> 8) / static_cast<double>(1u << 24);
  };
  const double dot = tile.width() / 28.0;
  for (int i = 0; i < 170; ++i) {
    const QPointF centre(tile.left() + next() * tile.width(), tile.top() + next() * tile.height());
    const int grey = 20 + static_cast<int>(next() * 90.0);
    p.setBrush(QColor(grey, grey, grey + 10));
    p.drawEllipse(centre, dot * (0.6 + next()), dot * (0.6 + next()));
  }
  const double step = tile.width() / 3.0;
  p.setBrush(Qt::NoBrush);
  p.setPen(QPen(QColor(220, 40, 40), std::max(1.0, tile.width() / 60.0)));
  for (int i = 1; i < 3; ++i) {
    p.drawLine(QPointF(tile.left() + i * step, tile.top()), QPointF(tile.left() + i * step, tile.bottom()));
    p.drawLine(QPointF(tile.left(), tile.top() + i * step), QPointF(tile.right(), tile.top() + i * step));
  }
  p.setPen(QPen(QColor(255, 210, 0), std::max(1.5, tile.width() / 30.0)));
  p.drawRect(QRectF(tile.left() + step, tile.top() + step, step, step));
  p.setPen(QPen(QColor(60, 60, 60), 1.0));
  p.drawRect(tile);
  p.restore();
}

class MotifPicture : public QWidget {
 public:
  MotifPicture(int side, QWidget* parent) : QWidget(parent) { setFixedSize(side, side); }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter p(this);
    PaintMotif(p, QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
  }
};

}  // namespace

QLabel* CentredCaption(const QString& text, int pointSize, bool bold, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  QFont font = label->font();
  font.setPointSize(pointSize);
  font.setBold(bold);
  label->setFont(font);
  label->setAlignment(Qt::AlignCenter);
  return label;
}

PubWindow::PubWindow(QWidget* parent) : QFrame(parent) {
  setFrameStyle(QFrame::Panel | QFrame::Raised);
  setLineWidth(2);
  setBackgroundRole(QPalette::Window);  // not the client area's darker one
  setAutoFillBackground(true);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(36, 28, 36, 28);
  layout->setSpacing(10);
  layout->addWidget(new MotifPicture(150, this), 0, Qt::AlignHCenter);
  layout->addSpacing(8);
  layout->addWidget(CentredCaption(QStringLiteral("Tessiva"), 26, true, this));
  layout->addWidget(CentredCaption(QStringLiteral("Digital image correlation workbench"), 12, false, this));
  layout->addWidget(CentredCaption(QStringLiteral("Version " TESSIVA_VERSION), 10, false, this));
  setFixedSize(sizeHint());
}

LogoPicture::LogoPicture(QWidget* parent) : QWidget(parent) {
  setFixedSize(118, 36);
  setCursor(Qt::PointingHandCursor);
  setToolTip(QStringLiteral("About Tessiva"));
}

void LogoPicture::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) Q_EMIT clicked();
}

void LogoPicture::paintEvent(QPaintEvent*) {
  QPainter p(this);
  PaintMotif(p, QRectF(1.5, 1.5, 32, 32));
  QFont font = p.font();
  font.setPointSize(14);
  font.setBold(true);
  p.setFont(font);
  p.setPen(palette().color(QPalette::WindowText));
  p.drawText(QRectF(40, 0, width() - 40, height()), Qt::AlignVCenter | Qt::AlignLeft, QStringLiteral("Tessiva"));
}

}  // namespace tessiva
