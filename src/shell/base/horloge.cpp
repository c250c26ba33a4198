#include "shell/base/horloge.h"

namespace {
QDateTime g_fixe;
}

namespace Horloge {

QDateTime maintenant()
{
    if (g_fixe.isValid())
        return g_fixe;
    return QDateTime::currentDateTime();
}

QDate aujourdhui()
{
    return maintenant().date();
}

void fixer(const QDateTime &moment)
{
    g_fixe = moment;
}

void liberer()
{
    g_fixe = QDateTime();
}

} // namespace Horloge
