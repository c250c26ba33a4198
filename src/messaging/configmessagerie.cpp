#include "messaging/configmessagerie.h"

#include "messaging/mailreminder.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/dossiers.h"
#include "shell/base/profilini.h"
#include "shell/base/support.h"

#include <QDir>

#include <array>

namespace {

const QString mails = QStringLiteral("Mails");
const QString sms = QStringLiteral("SMS");
const QString premierTexteSmsDefaut =
    QStringLiteral("Le secrétariat du Cabinet médical vous rappelle votre rendez-vous avec le");

} // namespace

ConfigMessagerie LireConfigMessagerie()
{
    ConfigMessagerie c;
    c.from = LireConfig(mails, QStringLiteral("From"), QString::fromUtf16(kExpediteurMailDefaut));
    c.smtp = LireConfig(mails, QStringLiteral("SMTP"), QString());
    c.subject = LireConfig(mails, QStringLiteral("Subject"), QString::fromUtf16(kSujetMailDefaut));
    c.mailFirst = LireConfig(mails, QStringLiteral("First"), QString::fromUtf16(kPremierTexteMailDefaut));
    c.mailLast = LireConfig(mails, QStringLiteral("Last"), DernierTexteMailDefaut());
    c.mailTest = LireConfig(mails, QStringLiteral("MailTest"), QString());
    c.smsFirst = LireConfig(sms, QStringLiteral("First"), premierTexteSmsDefaut);
    c.smsLast = LireConfig(sms, QStringLiteral("Last"), QString());
    c.smsTest = LireConfig(sms, QStringLiteral("SMSTest"), QString());
    c.com = LireAgendaIni(appState().AgendaName, QStringLiteral("COM"), QStringLiteral("0"));
    return c;
}

bool EcrireConfigMessagerie(const ConfigMessagerie &c, QString *erreur)
{
    const QList<std::array<QString, 3>> lignes{
        {mails, QStringLiteral("From"), c.from},
        {mails, QStringLiteral("SMTP"), c.smtp},
        {mails, QStringLiteral("Subject"), c.subject},
        {mails, QStringLiteral("First"), c.mailFirst},
        {mails, QStringLiteral("Last"), c.mailLast},
        {mails, QStringLiteral("MailTest"), c.mailTest},
        {sms, QStringLiteral("First"), c.smsFirst},
        {sms, QStringLiteral("Last"), c.smsLast},
        {sms, QStringLiteral("SMSTest"), c.smsTest},
    };
    // All the texts or none: the reminders of another station never mix an
    // old first text with a new last one.
    if (!EcrireConfigEnBloc(lignes, erreur))
        return false;

    // Unlike the other writers of Agenda.ini, a refused write is reported.
    FichierProfil profil = FichierProfil::charger(CheminAgendaIni());
    profil.fixer(appState().AgendaName, QStringLiteral("COM"), c.com);
    if (profil.enregistrer(CheminAgendaIni()))
        return true;
    if (erreur)
        *erreur = QStringLiteral("le port du modem n'a pas pu être enregistré dans le fichier %1.")
                      .arg(QDir::toNativeSeparators(CheminAgendaIni()));
    return false;
}

const QStringList &ServeursSmtpFournisseurs()
{
    static const QStringList serveurs{
        QStringLiteral("smtp.orange.fr"),       QStringLiteral("smtp.wanadoo.fr"),
        QStringLiteral("smtp.free.fr"),         QStringLiteral("smtp.sfr.fr"),
        QStringLiteral("smtp.neuf.fr"),         QStringLiteral("smtp.bbox.fr"),
        QStringLiteral("smtp.laposte.net"),     QStringLiteral("smtp.numericable.fr"),
        QStringLiteral("smtp.aliceadsl.fr"),    QStringLiteral("mail.club-internet.fr"),
        QStringLiteral("smtp.nordnet.fr"),      QStringLiteral("smtp.dartybox.com"),
        QStringLiteral("smtp.cegetel.net"),
    };
    return serveurs;
}

QString LignePraticienExemple()
{
    return LireConfig(QStringLiteral("Praticien1"), QStringLiteral("Nom"), QString::fromUtf16(kPraticienExemple));
}

DefautMailTest VerifierMailTest(const QString &adresse, const QString &serveur)
{
    if (adresse.isEmpty() || !adresse.contains(u'@'))
        return DefautMailTest::Adresse;
    if (serveur.isEmpty())
        return DefautMailTest::Serveur;
    return DefautMailTest::Aucun;
}

QString EnvoyerMailTest(const ConfigMessagerie &c, const QString &lignePraticien, const QString &ligneDate,
                        bool *reussi)
{
    QString erreur = SendMailReminder(c.from, c.mailTest, c.smtp, c.subject, c.mailFirst, c.mailLast, ligneDate,
                                      lignePraticien);
    // Without its working file the reminder goes nowhere, silently for the
    // batch; a test must not call that a success.
    if (erreur.isEmpty() && !FichierExiste(DossierProgramme() + QStringLiteral("Html.htm")))
        erreur = QStringLiteral("Aucun mail n'a été envoyé : le fichier de travail Html.htm ne peut pas être écrit "
                                "dans %1.")
                     .arg(QDir::toNativeSeparators(DossierProgramme()));
    if (reussi)
        *reussi = erreur.isEmpty();
    if (erreur.isEmpty())
        return QStringLiteral("L'envoi s'est correctement déroulé. Veuillez consulter votre boite mail pour "
                              "vérification.");
    return QStringLiteral("L'envoi ne s'est pas correctement déroulé. Veuillez vérifier vos paramètres.\n\n")
        + erreur;
}
