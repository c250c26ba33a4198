#include "calendar/openprovider.h"

#include "calendar/calendardataprovider.h"
#include "shell/appstate.h"
#include "shell/base/prompt.h"

QString TexteMapiIndisponible()
{
    return QStringLiteral("Le calendrier Outlook (MAPI) n'est pas disponible sur ce système.\n"
                          "L'agenda reste sur sa base actuelle.");
}

QString TexteServeurSqlIndisponible()
{
    return QStringLiteral("Les bases SQL Server et MySQL ne sont pas encore disponibles dans cette version.\n"
                          "L'agenda reste sur sa base actuelle.");
}

bool OpenProvider(CalendarDataProvider &provider, int kind, const QString &connection)
{
    switch (kind) {
    case CalendarDataProvider::MAPI:
        Prompt::informer(QStringLiteral("Agenda"), TexteMapiIndisponible(), Prompt::Icone::Exclamation);
        return false;
    case CalendarDataProvider::SQLServer:
    case CalendarDataProvider::MySQL:
        Prompt::informer(QStringLiteral("Agenda"), TexteServeurSqlIndisponible(), Prompt::Icone::Exclamation);
        return false;
    case CalendarDataProvider::Memory:
    case CalendarDataProvider::Access:
        break;
    default:
        return false;
    }
    if (!provider.SetDataProvider(connection))
        return false;
    if (!provider.Open() && !provider.Create())
        return false;
    provider.CacheMode = 0;
    return true;
}

bool OpenProvider(AppState &etat, int kind, const QString &connection)
{
    if (!etat.Calendrier)
        etat.Calendrier = std::make_shared<CalendarDataProvider>();
    if (!OpenProvider(*etat.Calendrier, kind, connection))
        return false;
    etat.TypeFournisseur = kind;
    return true;
}
