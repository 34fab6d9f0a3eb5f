#include "keyboardstate.h"

#include <QGuiApplication>
#include <cstdlib>
#include <xcb/xcb.h>
#include <xcb/xproto.h>

namespace vantrel {

KeyState keyState(quint32 nativeScanCode)
{
    const auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || nativeScanCode == 0 || nativeScanCode > 255)
        return KeyState::Unknown;
    xcb_connection_t *connection = x11->connection();
    xcb_query_keymap_reply_t *keymap = xcb_query_keymap_reply(connection, xcb_query_keymap(connection), nullptr);
    if (!keymap)
        return KeyState::Unknown;
    const bool down = keymap->keys[nativeScanCode / 8] & (1 << (nativeScanCode % 8));
    std::free(keymap);
    return down ? KeyState::Down : KeyState::Up;
}

} // namespace vantrel
