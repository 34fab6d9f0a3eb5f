#pragma once

#include <QtGlobal>

namespace vantrel {

enum class KeyState { Unknown, Down, Up };

// Whether the X server holds the key of NATIVESCANCODE (an X key code) down now; Unknown where
// there is no X server (the offscreen platform) or no code.
KeyState keyState(quint32 nativeScanCode);

} // namespace vantrel
