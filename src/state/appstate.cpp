#include "state/appstate.h"

namespace tessiva {

void AppState::ResizeStartPoints(int32_t count) {
  const size_t n = static_cast<size_t>(count) + 1;
  XStart.resize(n);
  YStart.resize(n);
  DuStart.resize(n);
  DvStart.resize(n);
  StartOk.resize(n);
}

void AppState::ResizeSequence(int32_t count) {
  const size_t n = static_cast<size_t>(count) + 1;
  DataFilePath.resize(n);
  DataFileName.resize(n);
}

}  // namespace tessiva
