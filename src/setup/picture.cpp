#include "setup/picture.h"
// Filled in with the picture store.
namespace tessiva {
bool ChargePicArea(AppState&) { return false; }
}  // namespace tessiva
