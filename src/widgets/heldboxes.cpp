#include "heldboxes.h"

namespace vantrel {

void HeldBoxes::inform(const QString &message)
{
    if (m_holding)
        m_held << message;
    else
        m_program.inform(message);
}

void HeldBoxes::release(bool kept)
{
    m_holding = false;
    const QStringList held = std::exchange(m_held, {});
    if (kept)
        for (const QString &message : held)
            m_program.inform(message);
}

} // namespace vantrel
