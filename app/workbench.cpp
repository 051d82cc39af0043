#include "workbench.h"

#include <QDir>
#include <QGuiApplication>
#include <QScreen>

namespace tessiva {

Workbench::Workbench()
    : window_(std::make_unique<FrameWindow>(frame_, frameControls_, param_, jobs_, input_, area_, analyse_)) {
  ui_.SetDialogParent(window_.get());
}

Workbench::~Workbench() = default;

bool Workbench::Start(const QString& startDir) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  if (!frame_.Load(FromQt(QDir::toNativeSeparators(startDir)), screen.width(), screen.height())) return false;
  window_->PlaceAtStartBounds(screen.topLeft());
  window_->show();
  return true;
}

}  // namespace tessiva
