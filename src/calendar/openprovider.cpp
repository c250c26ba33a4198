#include "calendar/openprovider.h"

#include "calendar/calendardataprovider.h"
#include "calendar/choixstore.h"
#include "calendar/mariadbcalendarstore.h"
#include "calendar/providermysql.h"
#include "calendar/providersqlserver.h"
#include "shell/base/prompt.h"

QString TexteMapiIndisponible()
{
    return QStringLiteral("Le calendrier Outlook (MAPI) n'est pas disponible sur ce système.\n"
                          "L'agenda reste sur sa base actuelle.");
}

QString TexteEchecMariaDb(const QString &erreur)
{
    return QStringLiteral("Impossible d'ouvrir la base MariaDB de l'agenda.\n") + erreur
           + QStringLiteral("\nVérifiez le serveur, la base, l'utilisateur et le mot de passe dans Fichier > Ouvrir.");
}

bool OpenProvider(CalendarDataProvider &provider, int kind, const QString &connection)
{
    switch (kind) {
    case CalendarDataProvider::MAPI:
        Prompt::informer(QStringLiteral("Agenda"), TexteMapiIndisponible(), Prompt::Icone::Exclamation);
        return false;
    case CalendarDataProvider::SQLServer: {
        provider.setStore({});
        auto p = std::make_unique<providerSQLServer>();
        p->OpenDB(connection);
        provider.setStore(std::move(p), connection);
        provider.CacheMode = 1;
        break;
    }
    case CalendarDataProvider::MySQL: {
        provider.setStore({});
        auto p = std::make_unique<providerMySQL>();
        p->OpenDB(connection);
        provider.setStore(std::move(p), connection);
        provider.CacheMode = 1;
        break;
    }
    case CalendarDataProvider::MariaDB:
        provider.setStore(std::make_unique<MariaDbCalendarStore>(connection.mid(MarqueMariaDb.size())), connection);
        break;
    case CalendarDataProvider::Memory:
    case CalendarDataProvider::Access:
        if (!provider.SetDataProvider(connection))
            return false;
        break;
    default:
        return false;
    }
    if (!provider.Open() && !provider.Create()) {
        if (kind == CalendarDataProvider::MariaDB) {
            const auto *store = static_cast<const MariaDbCalendarStore *>(provider.store());
            Prompt::informer(QStringLiteral("Agenda"), TexteEchecMariaDb(store->lastError()), Prompt::Icone::Exclamation);
        } else if (kind != CalendarDataProvider::SQLServer && kind != CalendarDataProvider::MySQL) {
            return false;
        }
    }
    provider.CacheMode = 0;
    return true;
}

bool OpenProvider(std::shared_ptr<CalendarDataProvider> &calendrier, int &kind, int newKind, const QString &connection)
{
    if (!calendrier)
        calendrier = std::make_shared<CalendarDataProvider>();
    if (!OpenProvider(*calendrier, newKind, connection))
        return false;
    kind = newKind;
    return true;
}
